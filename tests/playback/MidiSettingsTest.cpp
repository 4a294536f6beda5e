#include "PlaybackTestSupport.h"

#include "midi/CMIDIOutException.h"
#include "midi/MidiSettings.h"
#include "midi/RtMidiOutPort.h"
#include "music/FileBytes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

using midi::MidiSettings;

namespace {

/**
 * A settings file written by hand: header, machine filter, write-BPM flag, MIDI file channel,
 * velocity, program, device number and name, channel, port, program again, then the program
 * table, port by port (entry n holds n % 128).
 */
std::string handWritten(const std::string& header, int device, const std::string& name,
                        int firstProgram = 33)
{
    std::string text = header + "\n2\n1\n9\n100\n" + std::to_string(firstProgram) + "\n" +
                       std::to_string(device) + "\n" + name + "\n5\n3\n44\n";
    for (int i = 0; i < 2048; ++i)
        text += std::to_string(i % 128) + "\n";
    return text;
}

class MidiSettingsFile : public ::testing::Test
{
protected:
    void SetUp() override { std::filesystem::create_directories(m_folder); }
    void TearDown() override { std::filesystem::remove_all(m_folder); }
    std::filesystem::path file() const { return m_folder / "Tonalmancer.ini"; }

    const std::filesystem::path m_folder =
        std::filesystem::temp_directory_path() /
        ("tm-settings-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
         ::testing::UnitTest::GetInstance()->current_test_info()->name());
    FakePortList m_ports{{"Built-in synthesizer (FluidSynth)", "JACK: Synth:midi_in"}};
};

} // namespace

TEST_F(MidiSettingsFile, WritesTheFixedLayoutByteForByteAndReadsItBack)
{
    const std::string text = handWritten("Tonalmancer Settings", 1, "JACK: Synth:midi_in", 44);
    MidiSettings s = MidiSettings::parse(text, m_ports);
    ASSERT_TRUE(s.write(file(), m_ports));
    EXPECT_EQ(music::readFileBytes(file()), text);
    EXPECT_EQ(MidiSettings::read(file(), m_ports), s);

    s.setDeviceNumber(255); // no device: its name is written as "no"
    EXPECT_EQ(s.serialize(m_ports), handWritten("Tonalmancer Settings", 255, "no", 44));
}

TEST_F(MidiSettingsFile, DeviceCheckDecidesWhetherTheRestIsRead)
{
    // Header, device number and name in the file; whether the rest is read.
    const std::string header = "Tonalmancer Settings";
    const std::vector<std::tuple<std::string, int, std::string, bool>> cases = {
        {header, 1, "JACK: Synth:midi_in", true},
        {header, 1, "jack: SYNTH:MIDI_IN", true}, // the name in another case
        {"TONALMANCER SETTINGS", 0, "Built-in synthesizer (FluidSynth)", true},
        {header, 1, "ALSA: Synth", false},         // another name
        {header, 3, "JACK: Synth:midi_in", false}, // the device is gone
        {header, 255, "no", false},
    };
    for (const auto& [top, device, name, restRead] : cases) {
        SCOPED_TRACE(top + ", " + std::to_string(device) + ", " + name);
        const MidiSettings s = MidiSettings::parse(handWritten(top, device, name), m_ports);
        EXPECT_EQ(s.velocity(), 100);
        EXPECT_EQ(s.deviceNumber(), device);
        EXPECT_EQ(s.port(), restRead ? 3 : 0);
        EXPECT_EQ(s.program(), restRead ? 44 : 33); // the leading value, or the later line
        EXPECT_EQ(s.programAt(3, 4), restRead ? 3 * 16 + 4 : 0); // port 3, channel 4
        EXPECT_EQ(s.programAt(127, 15), restRead ? 127 : 0);
    }
}

TEST_F(MidiSettingsFile, AMissingFileOrAWrongHeaderGivesTheFreshStartDefaults)
{
    const MidiSettings fresh = MidiSettings::read(file(), m_ports);
    EXPECT_EQ(fresh.machineFilter(), 4);
    EXPECT_EQ(fresh.velocity(), 80);
    EXPECT_EQ(fresh.deviceNumber(), 255);
    EXPECT_EQ(fresh, MidiSettings());
    EXPECT_EQ(MidiSettings::parse(handWritten("Tonalmancer Setting", 1, "x"), m_ports), fresh);
    EXPECT_EQ(MidiSettings::parse("", m_ports), fresh);
    FakePortList none({}); // no devices: the device-dependent rest is not read
    const MidiSettings s =
        MidiSettings::parse(handWritten("Tonalmancer Settings", 0, "anything"), none);
    EXPECT_EQ(s.deviceNumber(), 0);
    EXPECT_EQ(s.channel(), 0);
}

TEST_F(MidiSettingsFile, NumbersAreReadLikeAtoiAndTruncated)
{
    const std::string text = "Tonalmancer Settings\r\n260\n  7 apples\n-1\n70000\nabc\n1\n"
                             "JACK: Synth:midi_in  \n3\n2\n9\n";
    const MidiSettings s = MidiSettings::parse(text, m_ports); // the table lines are missing
    EXPECT_EQ(s.machineFilter(), 4);                           // 260 as a byte
    EXPECT_EQ(s.writeBpm(), 7);
    EXPECT_EQ(s.midiFileChannel(), 65535); // -1 in 16 bits
    EXPECT_EQ(s.velocity(), 70000 & 0xFFFF);
    EXPECT_EQ(s.program(), 9); // "abc" gives 0, then line 11 says 9
    EXPECT_EQ(s.channel(), 3);
    EXPECT_EQ(s.programAt(0, 0), 0);
}

TEST_F(MidiSettingsFile, FailedWriteKeepsTheOldFile)
{
    ASSERT_TRUE(MidiSettings().write(file(), m_ports));
    const std::string before = *music::readFileBytes(file());
    MidiSettings s;
    s.setDeviceNumber(9); // gone at writing: throws before touching the file
    EXPECT_THROW(s.write(file(), m_ports), midi::CMIDIOutException);
    EXPECT_EQ(*music::readFileBytes(file()), before);
    EXPECT_FALSE(MidiSettings().write(m_folder / "missing" / "Tonalmancer.ini", m_ports));
}

TEST(RtMidiOutPort, StableNamesDropAlsaClientNumbersOnly)
{
    // The system's API and port name, then the name kept in the settings file.
    const std::vector<std::tuple<const char*, const char*, const char*>> cases = {
        {"ALSA", "Midi Through:Midi Through Port-0 14:0", "ALSA: Midi Through:Midi Through Port-0"},
        {"ALSA", "FLUID Synth (1234):Synth input port (1234:0) 128:0",
         "ALSA: FLUID Synth (1234):Synth input port (1234:0)"},
        {"ALSA", "Device:Port 2", "ALSA: Device:Port 2"},
        {"ALSA", "Device:Port a:0", "ALSA: Device:Port a:0"},
        {"JACK", "dump:input 1:2", "JACK: dump:input 1:2"},
        {"JACK", "system:midi_playback_1", "JACK: system:midi_playback_1"},
    };
    for (const auto& [api, port, name] : cases)
        EXPECT_EQ(midi::RtMidiOutPort::stableName(api, port), name);
}

TEST_F(MidiSettingsFile, InputDeviceFollowsTheFixedLinesAndOldFilesStillRead)
{
    const std::string fixed = handWritten("Tonalmancer Settings", 1, "JACK: Synth:midi_in");
    // The fixed lines alone, then with the input line, with other lines, and after a file whose
    // device is gone (the fixed lines after the device name are then not read).
    const std::vector<std::tuple<std::string, std::string, std::vector<std::string>>> cases = {
        {fixed, "", {}},
        {fixed + "midi-input=JACK: keys:out\n", "JACK: keys:out", {}},
        {fixed + "\nfuture=1\r\nMIDI-INPUT=ALSA: Keystation 49:Keystation 49 MIDI 1\n",
         "ALSA: Keystation 49:Keystation 49 MIDI 1",
         {"future=1"}},
        {handWritten("Tonalmancer Settings", 3, "JACK: Gone") + "midi-input=JACK: keys:out\n",
         "JACK: keys:out",
         {}},
    };
    for (const auto& [text, input, others] : cases) {
        SCOPED_TRACE(input);
        const MidiSettings s = MidiSettings::parse(text, m_ports);
        EXPECT_EQ(s.velocity(), 100);
        EXPECT_EQ(s.inputDeviceName(), input);
        EXPECT_EQ(s.otherLines(), others);
        // Written back, the fixed lines come first, unchanged in number, then ours, then others.
        MidiSettings kept = s;
        if (kept.deviceNumber() == 3)
            kept.setDeviceNumber(MidiSettings::kNoDevice); // a gone device cannot be written
        const std::string written = kept.serialize(m_ports);
        std::vector<std::string> lines;
        std::istringstream stream(written);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        ASSERT_GE(lines.size(), std::size_t{MidiSettings::kLineCount});
        EXPECT_EQ(lines.size(), MidiSettings::kLineCount + (input.empty() ? 0 : 1) + others.size());
        if (!input.empty()) {
            EXPECT_EQ(lines[MidiSettings::kLineCount], "midi-input=" + input);
        }
        EXPECT_EQ(MidiSettings::parse(written, m_ports).inputDeviceName(), input);
    }

    // A header that is not ours reads nothing, the extra line included.
    EXPECT_EQ(MidiSettings::parse("Other\n" + fixed.substr(fixed.find('\n') + 1) +
                                      "midi-input=JACK: keys:out\n",
                                  m_ports),
              MidiSettings());

    MidiSettings s;
    s.setInputDeviceName("JACK: two\nlines\r");
    EXPECT_EQ(s.inputDeviceName(), "JACK: twolines");
}
