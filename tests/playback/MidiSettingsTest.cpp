#include "FakePorts.h"

#include "midi/CMIDIOutException.h"
#include "midi/MidiSettings.h"
#include "midi/RtMidiOutPort.h"
#include "music/FileBytes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using midi::MidiSettings;

namespace {

std::vector<std::string> splitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

/** A settings file written by hand: header, the six leading values, a name, then the rest. */
std::string handWritten(const std::string& header, int device, const std::string& name)
{
    std::string text =
        header + "\n2\n1\n9\n100\n33\n" + std::to_string(device) + "\n" + name + "\n5\n3\n44\n";
    for (int i = 0; i < 2048; ++i)
        text += std::to_string(i % 128) + "\n";
    return text;
}

MidiSettings customSettings()
{
    MidiSettings s;
    s.setMachineFilter(1);
    s.setWriteBpm(1);
    s.setMidiFileChannel(9);
    s.setVelocity(112);
    s.setProgram(19);
    s.setDeviceNumber(1);
    s.setChannel(15);
    s.setPort(127);
    s.setProgramAt(0, 0, 1);
    s.setProgramAt(127, 15, 127);
    s.setProgramAt(3, 4, 56);
    return s;
}

class MidiSettingsFile : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_folder =
            std::filesystem::temp_directory_path() /
            ("tm-settings-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
             "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        std::filesystem::create_directories(m_folder);
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }
    std::filesystem::path file() const { return m_folder / std::string(MidiSettings::kFileName); }

    std::filesystem::path m_folder;
    FakePortList m_ports{{"Built-in synthesizer (FluidSynth)", "JACK: Synth:midi_in"}};
};

} // namespace

TEST_F(MidiSettingsFile, MissingFileGivesTheFreshStartDefaults)
{
    const MidiSettings s = MidiSettings::read(file(), m_ports);
    EXPECT_EQ(s.machineFilter(), 4);
    EXPECT_EQ(s.velocity(), 80);
    EXPECT_EQ(s.deviceNumber(), 255);
    EXPECT_EQ(s.writeBpm() + s.midiFileChannel() + s.program() + s.channel() + s.port(), 0);
    EXPECT_TRUE(std::all_of(s.programTable().begin(), s.programTable().end(),
                            [](std::uint8_t p) { return p == 0; }));
    EXPECT_EQ(s, MidiSettings());
}

TEST_F(MidiSettingsFile, WritesTheFixedLayoutAndReadsItBack)
{
    const MidiSettings s = customSettings();
    ASSERT_TRUE(s.write(file(), m_ports));
    const std::vector<std::string> lines = splitLines(*music::readFileBytes(file()));
    ASSERT_EQ(lines.size(), 2059u);
    EXPECT_EQ(std::vector<std::string>(lines.begin(), lines.begin() + 11),
              (std::vector<std::string>{"Tonalmancer Settings", "1", "1", "9", "112", "19", "1",
                                        "JACK: Synth:midi_in", "15", "127", "19"}));
    EXPECT_EQ(lines[11], "1");               // port 0, channel 0
    EXPECT_EQ(lines[11 + 3 * 16 + 4], "56"); // port 3, channel 4
    EXPECT_EQ(lines[2058], "127");           // port 127, channel 15
    EXPECT_EQ(MidiSettings::read(file(), m_ports), s);
}

TEST_F(MidiSettingsFile, NoDeviceIsWrittenAsNoAndKeepsTheRestDefault)
{
    MidiSettings s = customSettings();
    s.setDeviceNumber(255);
    const std::string text = s.serialize(m_ports);
    EXPECT_EQ(splitLines(text)[7], "no");
    const MidiSettings back = MidiSettings::parse(text, m_ports);
    EXPECT_EQ(back.deviceNumber(), 255);
    EXPECT_EQ(back.velocity(), 112);
    EXPECT_EQ(back.program(), 19); // line 6; line 11 is not reached
    EXPECT_EQ(back.channel(), 0);
    EXPECT_EQ(back.programAt(3, 4), 0);
}

TEST_F(MidiSettingsFile, DeviceCheckDecidesWhetherTheRestIsRead)
{
    struct Case
    {
        const char* what;
        std::string header;
        int device;
        std::string name;
        bool restRead;
        int deviceKept;
    };
    const std::vector<Case> cases = {
        {"matching name", "Tonalmancer Settings", 1, "JACK: Synth:midi_in", true, 1},
        {"name in other case", "Tonalmancer Settings", 1, "jack: SYNTH:MIDI_IN", true, 1},
        {"header in capitals", "TONALMANCER SETTINGS", 0, "Built-in synthesizer (FluidSynth)", true,
         0},
        {"other name", "Tonalmancer Settings", 1, "ALSA: Synth", false, 1},
        {"device gone", "Tonalmancer Settings", 3, "JACK: Synth:midi_in", false, 3},
        {"no device", "Tonalmancer Settings", 255, "no", false, 255},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const MidiSettings s =
            MidiSettings::parse(handWritten(c.header, c.device, c.name), m_ports);
        EXPECT_EQ(s.machineFilter(), 2);
        EXPECT_EQ(s.velocity(), 100);
        EXPECT_EQ(s.deviceNumber(), c.deviceKept);
        EXPECT_EQ(s.channel(), c.restRead ? 5 : 0);
        EXPECT_EQ(s.port(), c.restRead ? 3 : 0);
        EXPECT_EQ(s.program(), c.restRead ? 44 : 33);
        EXPECT_EQ(s.programAt(127, 15), c.restRead ? 127 : 0);
    }
}

TEST_F(MidiSettingsFile, WrongHeaderOrNoDevicesKeepEverythingDefault)
{
    EXPECT_EQ(MidiSettings::parse(handWritten("Tonalmancer Setting", 1, "x"), m_ports),
              MidiSettings());
    EXPECT_EQ(MidiSettings::parse("", m_ports), MidiSettings());
    FakePortList none({});
    const MidiSettings s =
        MidiSettings::parse(handWritten("Tonalmancer Settings", 0, "anything"), none);
    EXPECT_EQ(s.deviceNumber(), 0);
    EXPECT_EQ(s.channel(), 0);
}

TEST_F(MidiSettingsFile, NumbersAreReadLikeAtoiAndTruncated)
{
    std::string text = "Tonalmancer Settings\r\n260\n  7 apples\n-1\n70000\nabc\n1\n"
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

TEST_F(MidiSettingsFile, DeviceThatIsGoneAtWritingThrowsAndKeepsTheOldFile)
{
    ASSERT_TRUE(MidiSettings().write(file(), m_ports));
    const std::string before = *music::readFileBytes(file());
    MidiSettings s;
    s.setDeviceNumber(9);
    EXPECT_THROW(s.write(file(), m_ports), midi::CMIDIOutException);
    EXPECT_EQ(*music::readFileBytes(file()), before);
}

TEST_F(MidiSettingsFile, UnwritableFolderReportsFailure)
{
    EXPECT_FALSE(MidiSettings().write(m_folder / "missing" / "Tonalmancer.ini", m_ports));
}

TEST(RtMidiOutPort, StableNamesDropAlsaClientNumbersOnly)
{
    struct Case
    {
        const char* api;
        const char* port;
        const char* name;
    };
    const std::vector<Case> cases = {
        {"ALSA", "Midi Through:Midi Through Port-0 14:0", "ALSA: Midi Through:Midi Through Port-0"},
        {"ALSA", "FLUID Synth (1234):Synth input port (1234:0) 128:0",
         "ALSA: FLUID Synth (1234):Synth input port (1234:0)"},
        {"ALSA", "Device:Port 2", "ALSA: Device:Port 2"},
        {"ALSA", "Device:Port a:0", "ALSA: Device:Port a:0"},
        {"JACK", "dump:input 1:2", "JACK: dump:input 1:2"},
        {"JACK", "system:midi_playback_1", "JACK: system:midi_playback_1"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(midi::RtMidiOutPort::stableName(c.api, c.port), c.name);
}
