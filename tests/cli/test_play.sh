#!/bin/bash
# End-to-end checks of `tonalmancer-cli play` and `devices` as a user meets them: how a device is
# chosen (option, name, settings file), the messages and exit codes of failures, and what is
# handed to the device. Sound goes through the built-in synth into a WAV file, so no audio
# hardware is needed. Usage: test_play.sh PATH/TO/tonalmancer-cli
set -u
cli="$1"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# A part of two chords (C E G, F A C) of four rows, base octave 4, 120 BPM x 4 TPB.
# Row 0: track 0 plays chord note 0, track 1 chord note 1; row 2: track 0 stops.
# Each cell is value, kind, octave; each track starts with its octave setting.
part="$work/test.prt"
{
    printf '\n1\ntest\n64\n8\n'
    for t in 0 1 2 3 4 5 6 7; do
        echo 0
        for r in $(seq 0 63); do
            case $t.$r in 0.0) echo 0 1 0;; 1.0) echo 1 1 0;; 0.2) echo 0 2 0;; *) echo 0 0 0;; esac
        done
    done | tr ' ' '\n'
    printf 'test part\n2\nC\n3\n0\n4\n0\n4\n7\nF\n3\n0\n4\n5\n9\n12\n4\n0\n65000\n65000\n120\n4\n'
    yes 1 | head -12
} >"$part"
data="$work/data"
mkdir -p "$data"

# expect CODE STDERR-TEXT ARGS...: the exit code and (when not empty) the exact first stderr line.
expect() {
    local code="$1" message="$2" got err
    shift 2
    "$cli" "$@" --data "$data" >"$work/out" 2>"$work/err"
    got=$? err=$(head -1 "$work/err")
    [ "$got" -eq "$code" ] || fail "$*: exit $got, expected $code ($err)"
    [ -z "$message" ] || [ "$err" = "$message" ] || fail "$*: \"$err\", not \"$message\""
}
# A build without MIDI devices (the Windows build) marks the live commands in its help, and each
# of them says why it cannot run, with status 1.
if "$cli" --help | grep -q '^  play .*(not in this build)$'; then
    for words in "devices" "play --part $part --device 0" "inputs" "name-chord --listen keys"; do
        # shellcheck disable=SC2086 # the words are split on purpose
        expect 1 "" $words
        grep -q "is not available in this build of tonalmancer-cli" "$work/err" ||
            fail "$words: $(head -1 "$work/err")"
        [ -s "$work/out" ] && fail "$words printed on stdout"
    done
    [ "$failures" -eq 0 ] && echo "SKIP: this build has no MIDI devices; it says so for every live command"
    exit $((failures ? 1 : 77))
fi

# The first five characters (status and data 1) of each message printed.
sent() { cut -c1-5 "$work/out" | tr '\n' ' '; }

# Mistakes in the call.
expect 2 "" play
expect 2 "" play --part "$part" --channel 16
expect 2 "" play --part "$part" --tracks 1x
expect 2 "tonalmancer-cli play: --single-chord 2: the part has 2 chords, counted from 0" play --part "$part" --single-chord 2
expect 1 "unable to open file" play --part "$work/missing.prt" --device 0
expect 1 "No midi device matches \"no such synth\"." play --part "$part" --device "no such synth"
# A fresh data folder has no settings file: device 255, and the CLI has no dialog to ask with.
expect 1 "No midi output device is chosen: give --device N or NAME (tonalmancer-cli devices lists them)." \
    play --part "$part"
expect 1 "unable to open device" play --part "$part" --device 200

# The device list: number<TAB>name lines, or the one line that says there is none.
expect 0 "" devices
grep -qxE '[0-9]+	.+' "$work/out" || [ "$(cat "$work/out")" = "No midi device available" ] ||
    fail "devices printed: $(head -3 "$work/out")"
grep -qx '0	Built-in synthesizer (FluidSynth)' "$work/out" ||
    { echo "SKIP: no built-in synth here (no soundfont)"; exit $((failures ? 1 : 77)); }
export TONALMANCER_SYNTH_WAV="$work/out.wav"

# Port selection, program change, then the notes; the velocities carry a random jitter.
expect 0 "" play --part "$part" --device 0 --bpm 600 --print-messages --port 3 --program 5
[ "$(sent)" = "ff 01 c0 05 90 30 90 34 80 30 90 35 80 34 90 39 80 35 80 39 " ] ||
    fail "play part sent: $(sent)"
[ "$(head -1 "$work/out")" = "ff 01 03" ] || fail "port selection: $(head -1 "$work/out")"
[ -s "$TONALMANCER_SYNTH_WAV" ] || fail "the synth wrote no WAV file"

# One chord only, found by a part of its name in another case.
expect 0 "" play --part "$part" --device "built-in" --bpm 600 --single-chord 1 --print-messages
[ "$(sent)" = "ff 01 c0 00 90 35 90 39 80 35 80 39 " ] || fail "single chord sent: $(sent)"

# Without --device the settings file decides, with its channel and program.
{
    printf 'TONALMANCER SETTINGS\n4\n0\n0\n80\n9\n0\nBuilt-in synthesizer (FluidSynth)\n4\n0\n9\n'
    yes 0 | head -2048
} >"$data/Tonalmancer.ini"
expect 0 "" play --part "$part" --bpm 600 --single-chord 0 --print-messages
[ "$(sent)" = "ff 01 c4 09 94 30 94 34 84 30 84 34 " ] || fail "settings: $(sent)"

# Ctrl+C stops a long playback with note-offs and ends the program without a failure (timeout
# sends SIGINT after 1.5 s, and kills what still runs 5 s later).
timeout --preserve-status -k 5 -s INT 1.5 "$cli" play --part "$part" --device 0 --bpm 1 --tpb 1 \
    --print-messages --data "$data" >"$work/out" 2>"$work/err" ||
    fail "SIGINT did not end the playback successfully (status $?)"
[ "$(tail -2 "$work/out" | cut -c1-5 | tr '\n' ' ')" = "84 30 84 34 " ] ||
    fail "no note-offs after Ctrl+C: $(tail -2 "$work/out" | tr '\n' ' ')"

[ "$failures" -eq 0 ] && echo "all play checks passed"
exit $((failures > 0))
