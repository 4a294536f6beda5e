#!/usr/bin/env bash
# End-to-end checks of the part commands: part-info, render and presets on the shipped defaults
# and on a part file written by hand here.
set -u
cli="$1"
data="${TM_DATA_DIR:-$(dirname "$cli")}"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0

fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}

# expect NAME EXPECTED_EXIT EXPECTED_STDOUT COMMAND...
expect() {
    local name="$1" code="$2" want="$3"
    shift 3
    local got rc
    got="$("$@" 2>"$work/stderr")"
    rc=$?
    [ "$rc" -eq "$code" ] || fail "$name: exit $rc, expected $code ($(cat "$work/stderr"))"
    if [ "$got" != "$want" ]; then
        fail "$name: output differs"
        diff <(printf '%s\n' "$want") <(printf '%s\n' "$got") >&2
    fi
}

# expect_error NAME EXPECTED_EXIT EXPECTED_STDERR_LINE COMMAND...
expect_error() {
    local name="$1" code="$2" want="$3"
    shift 3
    "$@" >/dev/null 2>"$work/stderr"
    local rc=$?
    [ "$rc" -eq "$code" ] || fail "$name: exit $rc, expected $code"
    grep -qxF -- "$want" "$work/stderr" || fail "$name: stderr lacks \"$want\": $(cat "$work/stderr")"
}

[ -f "$data/default.prt" ] || { echo "shipped data not found in $data" >&2; exit 1; }

tab=$'\t'
expect "part-info on the default part" 0 "bpm${tab}126
tpb${tab}4
base octave${tab}4
current pattern${tab}0
selection${tab}none${tab}none
flags${tab}1 1 1 1 1 1 1 1 1 1 1 1
patterns${tab}3
pattern${tab}0${tab}Block chord${tab}32
pattern${tab}1${tab}Arpeggio up${tab}36
pattern${tab}2${tab}Alberti bass${tab}32
chords${tab}7
0${tab}C${tab}0${tab}16${tab}0 4 7
1${tab}Am${tab}0${tab}16${tab}9 12 16
2${tab}F${tab}1${tab}16${tab}5 9 12
3${tab}G${tab}1${tab}16${tab}7 11 14
4${tab}Dm7${tab}2${tab}16${tab}2 5 9 12
5${tab}G7${tab}2${tab}16${tab}7 11 14 17
6${tab}Cmaj7${tab}0${tab}32${tab}0 4 7 11" "$cli" part-info "$data/default.prt"

# The C chord through the block pattern: C E G and C again an octave up, all stopped at row 14.
expect "render of the first chord" 0 "0${tab}0${tab}0${tab}on${tab}48
0${tab}0${tab}1${tab}on${tab}52
0${tab}0${tab}2${tab}on${tab}55
0${tab}0${tab}3${tab}on${tab}60
0${tab}14${tab}0${tab}off
0${tab}14${tab}1${tab}off
0${tab}14${tab}2${tab}off
0${tab}14${tab}3${tab}off" bash -c "\"$cli\" render --part \"$data/default.prt\" | awk -F'\t' '\$1 == 0'"

expect "pattern presets" 0 "Block chord
Arpeggio up
Arpeggio down
Arpeggio up-down
Broken chord
Alberti bass
Strum
Off-beat stabs
Pedal C bass
Sparkle
Octave doubling
Root and fifth bass
Neighbour notes
Waltz" "$cli" presets "$data/default.spr"

expect "part presets" 0 "I-V-vi-IV pop in C
I-vi-IV-V doo-wop in C
ii-V-I in C
12-bar blues in A
Andalusian cadence in A minor
Canon in D
i-VI-III-VII in A minor" "$cli" presets "$data/default.ppr"

# A part written by hand: one pattern declaring 32 rows and 4 tracks (read as 64 x 8 anyway),
# track 1 in octave B-1; rows 0-4 of track 1 hold a chord note, a fixed G in octave 5, the
# sixth chord note (beyond the chord), an off-event and a chance note. One C major chord of 6 rows.
awk 'BEGIN {
    print "hand list"; print 1; print "Hand"; print 32; print 4
    for (t = 0; t < 8; t++) {
        print (t == 0 ? 9 : 0)
        for (r = 0; r < 64; r++) {
            v = 0; k = 0; o = 0
            if (t == 0 && r == 0) { v = 0; k = 1 }
            if (t == 0 && r == 1) { v = 7; k = 3; o = 5 }
            if (t == 0 && r == 2) { v = 5; k = 1 }
            if (t == 0 && r == 3) { k = 2 }
            if (t == 0 && r == 4) { k = 4 }
            print v; print k; print o
        }
    }
    print "chords"; print 1; print "C  "; print 3; print 0; print 6; print 0; print 4; print 7
    print 4; print 0; print 0; print 0; print 120; print 4
    for (i = 0; i < 12; i++) print 1
}' > "$work/hand.prt"
[ "$(wc -l < "$work/hand.prt")" -eq $((2 + 1547 + 2 + 7 + 18)) ] || fail "hand-made file has the wrong size"

expect "part-info on a hand-made part" 0 "bpm${tab}120
tpb${tab}4
base octave${tab}4
current pattern${tab}0
selection${tab}0${tab}0
flags${tab}1 1 1 1 1 1 1 1 1 1 1 1
patterns${tab}1
pattern${tab}0${tab}Hand${tab}5
chords${tab}1
0${tab}C${tab}0${tab}6${tab}0 4 7" "$cli" part-info "$work/hand.prt"

no_chance() { "$cli" render --part "$work/hand.prt" "$@" | awk -F'\t' '$2 != 4'; }
expect "render, extended chord" 0 "0${tab}0${tab}0${tab}on${tab}36
0${tab}1${tab}0${tab}on${tab}67
0${tab}3${tab}0${tab}off" no_chance
expect "render, off-event option" 0 "0${tab}0${tab}0${tab}on${tab}36
0${tab}1${tab}0${tab}on${tab}67
0${tab}2${tab}0${tab}off
0${tab}3${tab}0${tab}off" no_chance --index-option 1
expect "render, ignore option" 0 "0${tab}0${tab}0${tab}on${tab}36
0${tab}1${tab}0${tab}on${tab}67
0${tab}3${tab}0${tab}off" no_chance --index-option 2
expect "render, upper limit C,3" 0 "0${tab}0${tab}0${tab}on${tab}36
0${tab}1${tab}0${tab}on${tab}31
0${tab}3${tab}0${tab}off" no_chance --limit C,3
expect "render, track 1 switched off" 0 "" "$cli" render --part "$work/hand.prt" --tracks 01111111

# The chance note: the same seed gives the same run, and over many seeds it both sounds and not.
first="$("$cli" render --part "$work/hand.prt" --seed 42)"
[ "$first" = "$("$cli" render --part "$work/hand.prt" --seed 42)" ] || fail "a seed must repeat"
sounded=0
for n in $(seq 1 40); do
    # Spread seeds: the first draws after neighbouring small seeds lie close together.
    seed=$((n * 104729))
    line="$("$cli" render --part "$work/hand.prt" --seed "$seed" | awk -F'\t' '$2 == 4')"
    case "$line" in
    "") ;;
    "0${tab}4${tab}0${tab}on${tab}36") sounded=$((sounded + 1)) ;;
    *) fail "unexpected chance line: $line" ;;
    esac
done
{ [ "$sounded" -gt 5 ] && [ "$sounded" -lt 35 ]; } || fail "chance note sounded $sounded of 40 times"

# Failures: the formats' messages and exit 1; usage mistakes exit 2.
printf 'Something else\n' > "$work/foreign.ppr"
printf 'TONALMANCER CHORD PRESETS\n0\n' > "$work/empty.ppr"
expect_error "missing part" 1 "unable to open file" "$cli" part-info "$work/none.prt"
expect_error "missing part to render" 1 "unable to open file" "$cli" render --part "$work/none.prt"
expect_error "missing presets" 1 "Unable to open preset file" "$cli" presets "$work/none.spr"
expect_error "foreign presets" 1 "No preset file" "$cli" presets "$work/foreign.ppr"
expect "capital magic" 0 "" "$cli" presets "$work/empty.ppr"
expect_error "bad tracks" 2 "tonalmancer-cli render: --tracks needs eight switches of 0 or 1, for example 11110000" \
    "$cli" render --part "$work/hand.prt" --tracks 1111
for bad in "--index-option 3" "--limit H,4" "--limit C" "--limit C,10" "--seed -1"; do
    # shellcheck disable=SC2086
    "$cli" render --part "$work/hand.prt" $bad >/dev/null 2>&1
    [ $? -eq 2 ] || fail "render $bad must be a usage error"
done
"$cli" render >/dev/null 2>&1
[ $? -eq 2 ] || fail "render without --part must be a usage error"

# A short or foreign file is no part but must not crash the reader.
head -c 300 "$data/default.prt" > "$work/short.prt"
"$cli" part-info "$work/short.prt" >/dev/null || fail "a short part file must still be shown"
"$cli" render --part "$data/default.spr" >/dev/null || fail "a foreign file must render as nothing"

[ "$failures" -eq 0 ] || { echo "$failures check(s) failed" >&2; exit 1; }
echo "all part command checks passed"
