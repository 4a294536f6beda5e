// Live playback through real ports: the command-line program plays a part to a JACK MIDI port of
// a private dummy JACK server, and through the built-in synth into a WAV file.

#include "ProcessSupport.h"
#include "TestPart.h"

#include "midi/BuiltInSynth.h"
#include "part/PartFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <sstream>
#include <thread>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::string kCli = std::string(TM_BINARY_DIR) + "/bin/tonalmancer-cli";

/** The messages of a jack_midi_dump listing: "  frame: 90 30 51 note on ...", bytes in hex. */
std::vector<std::vector<int>> parseDump(const std::string& text)
{
    std::vector<std::vector<int>> messages;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::size_t colon = line.find(':');
        if (colon == std::string::npos)
            continue;
        std::istringstream words(line.substr(colon + 1));
        std::vector<int> bytes;
        for (std::string word; words >> word;) {
            if (word.size() != 2 || !std::isxdigit(static_cast<unsigned char>(word[0])) ||
                !std::isxdigit(static_cast<unsigned char>(word[1])))
                break;
            bytes.push_back(std::stoi(word, nullptr, 16));
        }
        if (!bytes.empty())
            messages.push_back(bytes);
    }
    return messages;
}

class EndToEnd : public ::testing::Test
{
protected:
    void SetUp() override
    {
        m_folder = fs::temp_directory_path() /
                   ("tm-e2e-" + std::to_string(getpid()) + "-" +
                    ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(m_folder);
        ASSERT_TRUE(part::PartFile::save(partFile(), makeTestPart()).ok());
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::string partFile() const { return (m_folder / "test.prt").string(); }
    std::string file(const char* name) const { return (m_folder / name).string(); }

    static bool jackToolsMissing()
    {
        for (const char* tool : {"jackd", "jack_midi_dump", "jack_wait", "jack_lsp"}) {
            if (!programAvailable(tool))
                return true;
        }
        return false;
    }

    fs::path m_folder;
};

} // namespace

TEST_F(EndToEnd, JackPortReceivesExactlyTheMessagesOfThePart)
{
    if (jackToolsMissing())
        GTEST_SKIP() << "jackd or jack-tools are not installed";
    DummyJackServer server("tmtest-sequence", 48000, 1024);
    ASSERT_TRUE(server.isRunning()) << "the dummy JACK server did not start";
    ChildProcess dump({"jack_midi_dump", "tmdump"}, file("dump.txt"));
    ASSERT_TRUE(server.waitForPort("tmdump:input", 5000));

    ChildProcess play({kCli, "play", "--part", partFile(), "--device", "JACK: tmdump:input",
                       "--channel", "2", "--program", "17", "--port", "5", "--bpm", "600", "--tpb",
                       "4", "--print-messages", "--data", m_folder.string()},
                      file("play.out"), file("play.err"));
    ASSERT_EQ(play.waitForExit(15000), 0) << readText(file("play.err"));
    std::this_thread::sleep_for(std::chrono::milliseconds(300)); // the last JACK periods
    dump.signal(SIGTERM);
    dump.waitForExit(3000);

    // What the player handed to the device, port selection first...
    const std::string printed = readText(file("play.out"));
    EXPECT_EQ(printed.substr(0, 18), "ff 01 05\nc2 11 00\n");
    // ...and what arrived: the port selection is not a MIDI message and stays behind.
    const std::vector<std::vector<int>> got = parseDump(readText(file("dump.txt")));
    const std::vector<std::pair<int, int>> expectedNotes = {{0x92, 48}, {0x92, 52}, {0x82, 48},
                                                            {0x92, 53}, {0x82, 52}, {0x92, 57},
                                                            {0x82, 53}, {0x82, 57}};
    ASSERT_EQ(got.size(), 1 + expectedNotes.size()) << readText(file("dump.txt"));
    EXPECT_EQ(got[0], (std::vector<int>{0xC2, 17}));
    for (std::size_t i = 0; i < expectedNotes.size(); ++i) {
        const std::vector<int>& m = got[i + 1];
        ASSERT_EQ(m.size(), 3u);
        EXPECT_EQ(m[0], expectedNotes[i].first) << "message " << i + 1;
        EXPECT_EQ(m[1], expectedNotes[i].second) << "message " << i + 1;
        EXPECT_GE(m[2], 78); // velocity 80 - r + n / 2 with r in 0..2, or 79 for a stop
        EXPECT_LE(m[2], 81);
    }
}

TEST_F(EndToEnd, ServerThatDiesWhilePlayingEndsPlaybackWithAMessage)
{
    if (jackToolsMissing())
        GTEST_SKIP() << "jackd or jack-tools are not installed";
    DummyJackServer server("tmtest-shutdown", 48000, 1024);
    ASSERT_TRUE(server.isRunning()) << "the dummy JACK server did not start";
    ChildProcess dump({"jack_midi_dump", "tmdump"}, "/dev/null");
    ASSERT_TRUE(server.waitForPort("tmdump:input", 5000));

    // 250 ms steps: the part lasts two seconds, the server dies after half a second.
    ChildProcess play({kCli, "play", "--part", partFile(), "--device", "tmdump", "--bpm", "60",
                       "--tpb", "4", "--data", m_folder.string()},
                      file("play.out"), file("play.err"));
    ASSERT_TRUE(server.waitForPort("Tonalmancer:midi_out", 5000));
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    server.stop();

    const int status = play.waitForExit(10000);
    EXPECT_EQ(status, 1) << "the player neither failed nor ended in time";
    const std::string error = readText(file("play.err"));
    EXPECT_NE(error.find("JACK"), std::string::npos) << error;
    std::cout << "[ message  ] " << error;
}

TEST_F(EndToEnd, BuiltInSynthPlaysAudibleSound)
{
    if (midi::BuiltInSynth::findSoundFont(m_folder).empty())
        GTEST_SKIP() << "no General MIDI soundfont is installed";
    const std::string wav = file("synth.wav");
    setenv(midi::BuiltInSynth::kWavVariable, wav.c_str(), 1);
    const int status =
        runShell(kCli + " play --part '" + partFile() + "' --device 0 --bpm 240 --tpb 4 --data '" +
                 m_folder.string() + "' >'" + file("play.out") + "' 2>'" + file("play.err") + "'");
    unsetenv(midi::BuiltInSynth::kWavVariable);
    ASSERT_EQ(status, 0) << readText(file("play.err"));

    // Read the file as a WAV reader would: RIFF header, then 16-bit stereo samples.
    const std::string bytes = readText(wav);
    ASSERT_GT(bytes.size(), 44u);
    EXPECT_EQ(bytes.substr(0, 4), "RIFF");
    EXPECT_EQ(bytes.substr(8, 8), "WAVEfmt ");
    const auto le32 = [&bytes](std::size_t at) {
        std::uint32_t v = 0;
        for (int i = 3; i >= 0; --i)
            v = v << 8 | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
        return v;
    };
    EXPECT_EQ(le32(24), 44100u);
    const std::uint32_t dataBytes = le32(40);
    EXPECT_EQ(dataBytes, bytes.size() - 44);
    EXPECT_GE(dataBytes, 44100u * 4 * 4 / 10); // eight 62 ms steps: about half a second
    int peak = 0;
    for (std::size_t at = 44; at + 1 < bytes.size(); at += 2) {
        const auto sample = static_cast<std::int16_t>(
            static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1]) << 8);
        peak = std::max(peak, std::abs(static_cast<int>(sample)));
    }
    EXPECT_GT(peak, 1000) << "the synth rendered silence";
}
