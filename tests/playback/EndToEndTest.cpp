// Live playback through real ports: the command-line program plays a part to a JACK MIDI port of
// a private dummy JACK server, and through the built-in synth into a WAV file.

#include "PlaybackTestSupport.h"
#include "ScratchFolderTest.h"

#include "midi/BuiltInSynth.h"
#include "music/FileBytes.h"
#include "part/PartFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <sstream>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::string kCli = TM_BINARY_DIR "/bin/tonalmancer-cli";

/**
 * The JACK scenario, run by sh with the test folder (holding test.prt) and the command-line
 * program as arguments. It starts a private server with the dummy backend and a jack_midi_dump
 * client "tmdump" recording to dump.txt, plays the part to it (play.out, play.err), then plays
 * again to a fresh dump client and shuts the server down half-way; that player's exit status
 * goes to shutdown.status, its messages to shutdown.err. Exits 77 when jackd or jack-tools are
 * missing, 0 when every step ran, else the number of the step that failed.
 *
 * Servers and clients end with SIGTERM only: JACK's registry has eight server slots, and a killed
 * server never frees its slot. JACK reclaims an entry for the same name, so a few fixed names
 * (rather than one per run) never fill it up; the next is tried when another test run holds
 * one. TM_JACK_SERVER_PREFIX (default "tmtest") keeps the names of parallel checkouts apart.
 * Real-time scheduling first where the system allows it: on a loaded machine a server without it
 * misses cycles, and JACK drops the MIDI events of a missed cycle.
 */
const char* const kJackScenario = R"(set -u
dir=$1 cli=$2 server= dump=
for tool in jackd jack_midi_dump jack_wait jack_lsp; do command -v $tool >/dev/null || exit 77; done
finish() { for pid in $dump $server; do kill -TERM $pid 2>/dev/null; wait $pid 2>/dev/null; done; }
trap finish EXIT
port() { timeout 5 sh -c "until jack_lsp 2>/dev/null | grep -qxF '$1'; do sleep 0.05; done"; }
export JACK_NO_AUDIO_RESERVATION=1
for attempt in 0 1 2 3 4 5 6 7; do
    export JACK_DEFAULT_SERVER=${TM_JACK_SERVER_PREFIX:-tmtest}-sequence-$((attempt / 2))
    mode=--realtime; [ $((attempt % 2)) = 1 ] && mode=--no-realtime
    jackd $mode -n $JACK_DEFAULT_SERVER -d dummy -r 48000 -p 1024 >/dev/null 2>&1 & server=$!
    for i in $(seq 100); do
        jack_wait -c 2>/dev/null | grep -qx running && break 2
        kill -0 $server 2>/dev/null && sleep 0.05 || break
    done
    kill -TERM $server 2>/dev/null; wait $server 2>/dev/null; server=
done
[ -n "$server" ] || exit 1
jack_midi_dump tmdump >"$dir/dump.txt" 2>/dev/null & dump=$!
port tmdump:input || exit 2
timeout 15 "$cli" play --part "$dir/test.prt" --data "$dir" --device "JACK: tmdump:input" \
    --channel 2 --program 17 --port 5 --bpm 600 --print-messages >"$dir/play.out" \
    2>"$dir/play.err" || exit 3
sleep 0.3 # the last JACK periods
kill -TERM $dump; wait $dump 2>/dev/null
jack_midi_dump tmdump >/dev/null 2>&1 & dump=$!
port tmdump:input || exit 4
# 250 ms steps: the part lasts two seconds, the server dies after half a second.
timeout 10 "$cli" play --part "$dir/test.prt" --data "$dir" --device tmdump --bpm 60 \
    2>"$dir/shutdown.err" & player=$!
port Tonalmancer:midi_out || exit 5
sleep 0.3
kill -TERM $server; wait $server 2>/dev/null; server=
wait $player; echo $? >"$dir/shutdown.status"
)";

/** The messages of a jack_midi_dump listing: "  frame: 90 30 51 note on ...", bytes in hex. */
std::vector<std::vector<int>> parseDump(const std::string& text)
{
    std::vector<std::vector<int>> messages;
    const std::regex line(R"(:((?: [0-9a-fA-F]{2}\b)+))");
    for (auto it = std::sregex_iterator(text.begin(), text.end(), line);
         it != std::sregex_iterator(); ++it) {
        std::istringstream hex((*it)[1].str());
        std::vector<int>& bytes = messages.emplace_back();
        for (int byte = 0; hex >> std::hex >> byte;)
            bytes.push_back(byte);
    }
    return messages;
}

class EndToEnd : public ScratchFolderTest
{
protected:
    EndToEnd() : ScratchFolderTest("tm-e2e") {}
    void SetUp() override
    {
        ScratchFolderTest::SetUp();
        ASSERT_TRUE(part::PartFile::save(file("test.prt"), makeTestPart()).ok());
    }
};

} // namespace

TEST_F(EndToEnd, JackPortGetsExactlyThePartsMessagesAndAServerThatDiesEndsPlayback)
{
    std::ofstream(file("jack.sh")) << kJackScenario;
    const int status =
        runShell("/bin/sh '" + file("jack.sh") + "' '" + m_folder.string() + "' " + kCli);
    if (status == 77)
        GTEST_SKIP() << "jackd or jack-tools are not installed";
    ASSERT_EQ(status, 0) << "step " << status << " of the JACK scenario failed\n"
                         << text("play.err");

    // What the player handed to the device, port selection first...
    EXPECT_EQ(text("play.out").substr(0, 18), "ff 01 05\nc2 11 00\n");
    // ...and what arrived: the port selection is not a MIDI message and stays behind.
    const std::vector<std::vector<int>> got = parseDump(text("dump.txt"));
    const std::vector<std::pair<int, int>> expectedNotes = {{0x92, 48}, {0x92, 52}, {0x82, 48},
                                                            {0x92, 53}, {0x82, 52}, {0x92, 57},
                                                            {0x82, 53}, {0x82, 57}};
    ASSERT_EQ(got.size(), 1 + expectedNotes.size()) << text("dump.txt");
    EXPECT_EQ(got[0], (std::vector<int>{0xC2, 17}));
    for (std::size_t i = 0; i < expectedNotes.size(); ++i) {
        const std::vector<int>& m = got[i + 1];
        ASSERT_EQ(m.size(), 3u);
        EXPECT_EQ(std::make_pair(m[0], m[1]), expectedNotes[i]) << "message " << i + 1;
        // velocity 80 - r + n / 2 with r in 0..2, or 79 for a stop
        EXPECT_TRUE(m[2] >= 78 && m[2] <= 81) << "velocity " << m[2];
    }

    // The server that died while playing: the player fails in time, naming JACK.
    EXPECT_EQ(text("shutdown.status"), "1\n") << "the player neither failed nor ended in time";
    EXPECT_NE(text("shutdown.err").find("JACK"), std::string::npos) << text("shutdown.err");
}

TEST_F(EndToEnd, BuiltInSynthPlaysADenseChordNearMinusSixDbfsWithoutClipping)
{
    if (midi::BuiltInSynth::findSoundFont(m_folder).empty())
        GTEST_SKIP() << "no General MIDI soundfont is installed";
    // Eight notes at once for half a second: a five-note chord on tracks 0..4, and three fixed
    // notes below and above it. The default program and velocity (80).
    part::Part dense = part::Part::makeNew();
    dense.setBaseOctave(4);
    part::Pattern& pattern = dense.patterns().pattern(0);
    for (std::uint8_t track = 0; track < 5; ++track)
        pattern.setCell(track, 0, {part::CellKind::ChordNote, track, 0});
    pattern.setCell(5, 0, {part::CellKind::FixedNote, 0, 3});
    pattern.setCell(6, 0, {part::CellKind::FixedNote, 7, 3});
    pattern.setCell(7, 0, {part::CellKind::FixedNote, 4, 6});
    part::PartChord chord;
    chord.setNotes({0, 4, 7, 11, 14});
    chord.length = 4;
    dense.append(chord);
    ASSERT_TRUE(part::PartFile::save(file("dense.prt"), dense).ok());

    const std::string wav = file("synth.wav");
    setenv(midi::BuiltInSynth::kWavVariable, wav.c_str(), 1);
    const int status =
        runShell(kCli + " play --part '" + file("dense.prt") + "' --data '" + m_folder.string() +
                 "' --device 0 --bpm 120 --tpb 2 >/dev/null 2>'" + file("play.err") + "'");
    unsetenv(midi::BuiltInSynth::kWavVariable);
    ASSERT_EQ(status, 0) << text("play.err");

    // Read the file as a WAV reader would: RIFF header, then 16-bit stereo samples.
    const std::string bytes = text("synth.wav");
    ASSERT_GT(bytes.size(), 44u);
    EXPECT_EQ(bytes.substr(0, 4), "RIFF");
    EXPECT_EQ(bytes.substr(8, 8), "WAVEfmt ");
    const auto le32 = [&bytes](std::size_t at) {
        std::uint32_t v = 0;
        for (std::size_t i = 4; i-- > 0;)
            v = v << 8 | static_cast<unsigned char>(bytes[at + i]);
        return v;
    };
    EXPECT_EQ(le32(24), 44100u);
    EXPECT_EQ(le32(40), bytes.size() - 44);
    EXPECT_GE(le32(40), 44100u * 4 * 4 / 10); // four 250 ms steps: more than a second
    int peak = 0;
    int fullScale = 0;
    for (std::size_t at = 44; at + 1 < bytes.size(); at += 2) {
        const int sample = std::abs(static_cast<int>(
            static_cast<std::int16_t>(static_cast<unsigned char>(bytes[at]) |
                                      static_cast<unsigned char>(bytes[at + 1]) << 8)));
        peak = std::max(peak, sample);
        fullScale += sample >= 32767;
    }
    const double dbfs = 20.0 * std::log10(std::max(peak, 1) / 32768.0);
    EXPECT_GT(dbfs, -10.0) << "too quiet to audition with";
    EXPECT_LT(dbfs, -2.0) << "no headroom left";
    EXPECT_EQ(fullScale, 0) << "clipped samples";
}
