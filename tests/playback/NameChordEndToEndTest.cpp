// Naming chords played on a MIDI keyboard: jack_midiseq plays E G C on a private dummy JACK
// server, and the command-line program's --listen mode names it from its own input port.

#include "ScratchFolderTest.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::string kCli = TM_BINARY_DIR "/bin/tonalmancer-cli";

/**
 * Run by sh with the test folder and the command-line program. It starts a private server with
 * the dummy backend and a keyboard, jack_midiseq "tmkeys", that strikes E4, G4 and C5 together
 * every two seconds and holds them for one (together, so that a listener that connects at any
 * moment hears the whole chord or none of it). A listener names what it plays
 * (listen.out, listen.err) until SIGINT (its status in listen.status). A second listener then
 * loses the server (its status in shutdown.status, its messages in shutdown.err). Exits 77 when
 * jackd or the JACK example clients are missing, 0 when every step ran, else the failed step.
 *
 * Servers end with SIGTERM only, and their names come from a small fixed set, for the reasons
 * the playback scenario gives (JACK's registry of eight server slots).
 */
const char* const kListenScenario = R"(set -u
dir=$1 cli=$2 server= keys= listener=
for tool in jackd jack_midiseq jack_wait jack_lsp; do command -v $tool >/dev/null || exit 77; done
finish() { for pid in $listener $keys $server; do kill -TERM $pid 2>/dev/null; wait $pid 2>/dev/null; done; }
trap finish EXIT
port() { timeout 5 sh -c "until jack_lsp 2>/dev/null | grep -qxF '$1'; do sleep 0.05; done"; }
ended() { for i in $(seq 100); do kill -0 $1 2>/dev/null || return 0; sleep 0.1; done; return 1; }
export JACK_NO_AUDIO_RESERVATION=1
for attempt in 0 1 2 3 4 5 6 7; do
    export JACK_DEFAULT_SERVER=tmnamer-listen-$((attempt / 2))
    mode=--realtime; [ $((attempt % 2)) = 1 ] && mode=--no-realtime
    jackd $mode -n $JACK_DEFAULT_SERVER -d dummy -r 48000 -p 1024 >/dev/null 2>&1 & server=$!
    for i in $(seq 100); do
        jack_wait -c 2>/dev/null | grep -qx running && break 2
        kill -0 $server 2>/dev/null && sleep 0.05 || break
    done
    kill -TERM $server 2>/dev/null; wait $server 2>/dev/null; server=
done
[ -n "$server" ] || exit 1
jack_midiseq tmkeys 96000 0 64 48000 0 67 48000 0 72 48000 >/dev/null 2>&1 & keys=$!
port tmkeys:out || exit 2
"$cli" name-chord --listen "JACK: tmkeys:out" --data "$dir" >"$dir/listen.out" \
    2>"$dir/listen.err" & listener=$!
timeout 10 sh -c "until [ -s '$dir/listen.out' ]; do sleep 0.1; done" || exit 3
kill -INT $listener; ended $listener || exit 4
wait $listener; echo $? >"$dir/listen.status"; listener=
"$cli" name-chord --listen tmkeys --data "$dir" >/dev/null 2>"$dir/shutdown.err" & listener=$!
port "Tonalmancer input:midi_in" || exit 5
sleep 0.3
kill -TERM $server; wait $server 2>/dev/null; server=
ended $listener || exit 6
wait $listener; echo $? >"$dir/shutdown.status"; listener=
)";

class NameChordEndToEnd : public ScratchFolderTest
{
protected:
    NameChordEndToEnd() : ScratchFolderTest("tm-listen") {}
};

} // namespace

TEST_F(NameChordEndToEnd, JackKeyboardChordIsNamedAndAServerThatDiesEndsListening)
{
    std::ofstream(file("listen.sh")) << kListenScenario;
    const int status =
        runShell("/bin/sh '" + file("listen.sh") + "' '" + m_folder.string() + "' " + kCli);
    if (status == 77)
        GTEST_SKIP() << "jackd or the JACK example clients are not installed";
    ASSERT_EQ(status, 0) << "step " << status << " of the JACK scenario failed\n"
                         << text("listen.err") << text("shutdown.err");

    // E G C, E in the bass: the first reading is C major in first inversion.
    const std::string out = text("listen.out");
    EXPECT_EQ(out.rfind("C/E (C major, first inversion)", 0), 0u) << out;
    EXPECT_EQ(out.find('\n'), out.size() - 1) << "the chord played again was named again";
    EXPECT_EQ(text("listen.status"), "0\n") << text("listen.err");

    // The server that died while listening: the listener ends with JACK's message.
    EXPECT_EQ(text("shutdown.status"), "1\n");
    EXPECT_NE(text("shutdown.err").find("JACK"), std::string::npos) << text("shutdown.err");
}
