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
write_part() {
    local t r
    {
        printf '\n1\ntest\n64\n8\n'
        for t in 0 1 2 3 4 5 6 7; do
            echo 0
            for r in $(seq 0 63); do
                if [ "$t" = 0 ] && [ "$r" = 0 ]; then printf '0\n1\n0\n'
                elif [ "$t" = 1 ] && [ "$r" = 0 ]; then printf '1\n1\n0\n'
                elif [ "$t" = 0 ] && [ "$r" = 2 ]; then printf '0\n2\n0\n'
                else printf '0\n0\n0\n'; fi
            done
        done
        printf 'test part\n2\nC\n3\n0\n4\n0\n4\n7\nF\n3\n0\n4\n5\n9\n12\n'
        printf '4\n0\n65000\n65000\n120\n4\n'
        for t in $(seq 12); do echo 1; done
    } >"$1"
}
part="$work/test.prt"
write_part "$part"
data="$work/data"
mkdir -p "$data"

# expect CODE STDERR-TEXT ARGS...: the exit code and (when not empty) the exact first stderr line.
expect() {
    local code="$1" message="$2"
    shift 2
    "$cli" "$@" --data "$data" >"$work/out" 2>"$work/err"
    local got=$?
    [ "$got" -eq "$code" ] || fail "$*: exit $got, expected $code ($(head -1 "$work/err"))"
    if [ -n "$message" ] && [ "$(head -1 "$work/err")" != "$message" ]; then
        fail "$*: stderr \"$(head -1 "$work/err")\", expected \"$message\""
    fi
}

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
if ! grep -qxE '[0-9]+	.+' "$work/out" && [ "$(cat "$work/out")" != "No midi device available" ]; then
    fail "devices printed: $(head -3 "$work/out")"
fi
if ! grep -qx '0	Built-in synthesizer (FluidSynth)' "$work/out"; then
    echo "SKIP: the built-in synth is not available here (no soundfont)"
    [ "$failures" -eq 0 ] && exit 77
    exit 1
fi

export TONALMANCER_SYNTH_WAV="$work/out.wav"

# Port selection, program change, then the notes; the velocities carry a random jitter.
expect 0 "" play --part "$part" --device 0 --bpm 600 --print-messages --port 3 --program 5
notes=$(cut -c1-5 "$work/out" | tr '\n' ' ')
[ "$notes" = "ff 01 c0 05 90 30 90 34 80 30 90 35 80 34 90 39 80 35 80 39 " ] ||
    fail "play part sent: $notes"
[ "$(head -1 "$work/out")" = "ff 01 03" ] || fail "port selection: $(head -1 "$work/out")"
[ -s "$TONALMANCER_SYNTH_WAV" ] || fail "the synth wrote no WAV file"

# One chord only, found by a part of its name in another case.
expect 0 "" play --part "$part" --device "built-in" --bpm 600 --single-chord 1 --print-messages
notes=$(cut -c1-5 "$work/out" | tr '\n' ' ')
[ "$notes" = "ff 01 c0 00 90 35 90 39 80 35 80 39 " ] || fail "single chord sent: $notes"

# Without --device the settings file decides, with its channel and program.
{
    printf 'TONALMANCER SETTINGS\n4\n0\n0\n80\n9\n0\nBuilt-in synthesizer (FluidSynth)\n4\n0\n9\n'
    for i in $(seq 2048); do echo 0; done
} >"$data/Tonalmancer.ini"
expect 0 "" play --part "$part" --bpm 600 --single-chord 0 --print-messages
[ "$(sed -n 2p "$work/out")" = "c4 09 00" ] || fail "settings program change: $(sed -n 2p "$work/out")"
[ "$(sed -n 3p "$work/out" | cut -c1-5)" = "94 30" ] || fail "settings channel: $(sed -n 3p "$work/out")"

# Ctrl+C stops a long playback with note-offs and ends the program.
"$cli" play --part "$part" --device 0 --bpm 1 --tpb 1 --print-messages --data "$data" \
    >"$work/out" 2>"$work/err" &
pid=$!
sleep 1.5
kill -INT "$pid"
for _ in $(seq 50); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
if kill -0 "$pid" 2>/dev/null; then
    kill -KILL "$pid"
    fail "SIGINT did not stop the playback"
fi
wait "$pid"
[ $? -eq 0 ] || fail "an interrupted playback is not a failure"
[ "$(tail -2 "$work/out" | cut -c1-5 | tr '\n' ' ')" = "84 30 84 34 " ] ||
    fail "no note-offs after Ctrl+C: $(tail -2 "$work/out" | tr '\n' ' ')"

[ "$failures" -eq 0 ] && echo "all play checks passed"
exit $((failures > 0))
