#!/bin/bash
# End-to-end checks of `tonalmancer-cli midi` on the shipped demo part: the bytes a user gets,
# the messages and exit codes of failures, and that a failed write keeps an existing file.
# Usage: test_midi.sh PATH/TO/tonalmancer-cli
set -u
cli="$1"
part="${TM_DATA_DIR:-}/default.prt"
[ -f "$part" ] || part="${TM_SOURCE_DIR:-.}/data/default.prt"
[ -f "$part" ] || { echo "SKIP: the shipped demo part default.prt is missing"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
hex() { od -An -tx1 -v "$1" | tr -s ' \n' ' '; }

# expect CODE STDERR-TEXT ARGS...: the exit code and (when not empty) the exact first stderr line.
expect() {
    local code="$1" message="$2" got err
    shift 2
    "$cli" midi "$@" >"$work/out" 2>"$work/err"
    got=$? err=$(head -1 "$work/err")
    [ "$got" -eq "$code" ] || fail "midi $*: exit $got, expected $code ($err)"
    [ -z "$message" ] || [ "$err" = "$message" ] || fail "midi $*: \"$err\", not \"$message\""
}

# A plain run: nothing printed, a format 1 file of two tracks at 96 ticks a quarter.
expect 0 "" --part "$part" -o "$work/a.mid" --seed 7
[ -s "$work/out" ] && fail "a successful run prints nothing"
hex "$work/a.mid" | grep -q "^ 4d 54 68 64 00 00 00 06 00 01 00 02 00 60 4d 54 72 6b " ||
    fail "unexpected header: $(hex "$work/a.mid" | cut -c1-60)"
grep -q "Tonalmancer track" "$work/a.mid" || fail "the note track is not named"
hex "$work/a.mid" | grep -q " 90 " || fail "no note on channel 1 in the demo part"
hex "$work/a.mid" | grep -q " ff 51 " && fail "a tempo is written without --write-bpm"

# The same seed gives the same file; --output works like -o.
expect 0 "" --part "$part" --output "$work/b.mid" --seed 7
cmp -s "$work/a.mid" "$work/b.mid" || fail "the same seed gave different files"

# Tempo and channel options reach the file.
expect 0 "" --part "$part" -o "$work/c.mid" --write-bpm --bpm 120 --channel 9
hex "$work/c.mid" | grep -q " ff 51 03 07 a1 20 " || fail "no tempo of 120 BPM"
hex "$work/c.mid" | grep -q " 99 " || fail "no note on channel 10 (0-based 9)"

# --markers: the sequence is named after the file, each chord's name is a marker (FF 06).
expect 0 "" --part "$part" -o "$work/Demo.mid" --markers
hex "$work/Demo.mid" | grep -q " ff 03 04 44 65 6d 6f " || fail "the sequence is not named Demo"
hex "$work/Demo.mid" | grep -q " ff 06 05 43 6d 61 6a 37 " || fail "no marker Cmaj7"
grep -q "Cmaj7" "$work/a.mid" && fail "chord names are written without --markers"

# Failures: the system's message on stderr, exit 1, and an existing file kept as it was.
echo "keep me" >"$work/old.mid"
expect 1 "Ticks per beat must be 1 to 96." --part "$part" -o "$work/old.mid" --tpb 0
expect 1 "Beats per minute must be at least 4 to be written to a MIDI file." \
    --part "$part" -o "$work/old.mid" --bpm 2 --write-bpm
expect 1 "The range holds no chords." --part "$part" -o "$work/old.mid" --range 900,901
[ "$(cat "$work/old.mid")" = "keep me" ] || fail "a refused run changed the existing file"
expect 1 "unable to open file" --part "$work/missing.prt" -o "$work/d.mid"
expect 1 "failed to open file" --part "$part" -o "$work/no/such/folder/d.mid"
[ -e "$work/d.mid" ] && fail "a failed run left a file"

# Usage errors: exit 2.
for args in "--channel 16" "--velocity 0" "--range 3,1" "--range 3" "--tracks 101" extra; do
    expect 2 "" --part "$part" -o "$work/e.mid" $args
done
expect 2 "" --part "$part"
expect 2 "" -o "$work/e.mid"

[ "$failures" -eq 0 ] && echo "midi command: all checks passed"
exit $((failures > 0))
