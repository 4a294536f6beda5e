#!/usr/bin/env bash
# End-to-end checks of `tonalmancer-cli voice` on the shipped demo part (C Am F G Dm7 G7 Cmaj7,
# root positions from C0): the notes a user gets, what it prints, its failures and usage errors.
# Usage: test_voice.sh PATH/TO/tonalmancer-cli
set -u
cli="$1"
data="${TM_DATA_DIR:-$(dirname "$cli")}"
part="$data/default.prt"
[ -f "$part" ] || { echo "SKIP: the shipped demo part default.prt is missing"; exit 77; }
work="$(mktemp -d)" && trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }

# run EXIT ARGS...: runs voice, checks the exit code; stdout in $work/out, stderr in $work/err.
run() {
    local code="$1" got
    shift
    "$cli" voice "$@" >"$work/out" 2>"$work/err"
    got=$?
    [ "$got" -eq "$code" ] || fail "voice $*: exit $got, expected $code ($(head -1 "$work/err"))"
}
# The notes of chord N of a part file, as part-info prints them.
notes() { "$cli" part-info "$1" | awk -F'\t' -v n="$2" '$1 == n && NF == 5 { print $5 }'; }
value() { awk -F'\t' -v k="$1" '$1 == k { print $2 }' "$work/out"; }

# Each chord on its own, drop-2 between C1 and B3: Cmaj7 becomes G1 C2 E2 B2.
run 0 --part "$part" -o "$work/each.prt" --style drop2 --range C1,B3
[ "$(notes "$work/each.prt" 6)" = "19 24 28 35" ] || fail "drop-2 Cmaj7: $(notes "$work/each.prt" 6)"
[ "$(head -1 "$work/out")" = "chords	0	6" ] || fail "chords line: $(head -1 "$work/out")"

# Led: smaller movement than before, every chord sorted low to high within the range.
run 0 --part "$part" -o "$work/led.prt" --style drop2 --range C1,B3 --lead
[ "$(value "movement after")" -lt "$(value "movement before")" ] || fail "no smoother: $(cat "$work/out")"
for n in 0 1 2 3 4 5 6; do
    echo "$(notes "$work/led.prt" $n)" | tr ' ' '\n' |
        awk 'NR > 1 && $1 < last { bad = 1 } $1 < 12 || $1 > 47 { bad = 1 } { last = $1 } END { exit bad }' ||
        fail "chord $n out of order or range: $(notes "$work/led.prt" $n)"
done

# Only the chosen chords change; --keep-first leaves the first of them as it was.
run 0 --part "$part" -o "$work/some.prt" --chords 4-6 --range C1,B3 --lead --keep-first
for n in 0 1 2 3 4; do
    [ "$(notes "$work/some.prt" $n)" = "$(notes "$part" $n)" ] || fail "chord $n changed"
done
[ "$(notes "$work/some.prt" 5)" != "$(notes "$part" 5)" ] || fail "chord 5 was not voiced"

# The input may be the output; a note number works like its name (28 is E2).
cp "$part" "$work/same.prt"
run 0 --part "$work/same.prt" -o "$work/same.prt" --range 28,G5 --bass root
[ "$(notes "$work/same.prt" 0)" = "48 52 55" ] || fail "C with the root in the bass: $(notes "$work/same.prt" 0)"

# Failures: the system's message, exit 1, an existing output file kept.
echo "keep me" >"$work/old.prt"
run 1 --part "$part" -o "$work/old.prt" --style spread --range C2,C3
[ "$(head -1 "$work/err")" = "No spread voicing of chord 0 (C) fits between C2 and C3." ] ||
    fail "narrow range: $(cat "$work/err")"
[ "$(cat "$work/old.prt")" = "keep me" ] || fail "a refused run changed the output file"
run 1 --part "$part" -o "$work/old.prt" --chords 7-9
[ "$(head -1 "$work/err")" = "The range holds no chords." ] || fail "empty range: $(cat "$work/err")"
run 1 --part "$work/missing.prt" -o "$work/x.prt"
[ "$(head -1 "$work/err")" = "unable to open file" ] || fail "missing part: $(cat "$work/err")"
[ -e "$work/x.prt" ] && fail "a failed run left a file"

# Usage errors: exit 2.
for args in "--style drop9" "--range E2" "--range G5,E2" "--range H2,C3" "--range C1,C10" \
    "--chords 5-2" "--chords x" "--bass H" "--lead=1" extra; do
    run 2 --part "$part" -o "$work/u.prt" $args
done
run 2 -o "$work/u.prt"
"$cli" voice --help | grep -q "C0 is 0, E2 is 28" || fail "--help does not tell the octave numbering"

[ "$failures" -eq 0 ] && echo "voice command: all checks passed"
exit $((failures > 0))
