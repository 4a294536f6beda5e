#!/usr/bin/env bash
# End-to-end checks of the part commands: part-info, render and presets on the shipped defaults
# and on a part file written by hand here.
set -u
cli="$1"
data="${TM_DATA_DIR:-$(dirname "$cli")}"
work="$(mktemp -d)" && trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*" >&2; failures=$((failures + 1)); }
[ -f "$data/default.prt" ] || { echo "shipped data not found in $data" >&2; exit 1; }

# expect NAME EXPECTED_EXIT EXPECTED_STDOUT EXPECTED_STDERR_LINE ("*": any) COMMAND...
expect() {
    local name="$1" code="$2" want="$3" err="$4" got rc
    shift 4
    got="$("$@" 2>"$work/stderr")"
    rc=$?
    [ "$rc" -eq "$code" ] || fail "$name: exit $rc, expected $code ($(cat "$work/stderr"))"
    [ "$got" = "$want" ] || fail "$name: output differs:$(diff <(echo "$want") <(echo "$got"))"
    [ "$err" = "*" ] || { [ -z "$err" ] && [ ! -s "$work/stderr" ]; } ||
        grep -qxF -- "$err" "$work/stderr" || fail "$name: stderr is not \"$err\": $(cat "$work/stderr")"
}
# The command's output lines joined by "; ", tabs shown as blanks.
joined() { "$@" | tr '\t' ' ' | paste -sd';' | sed 's/;/; /g'; }
# Line count, first and last line of the command's output.
summary() { "$@" | awk 'NR == 1 { first = $0 } END { print NR ": " first " ... " $0 }'; }
tab=$'\t'

expect "part-info on the default part" 0 "18: bpm${tab}126 ... 6${tab}Cmaj7${tab}0${tab}32${tab}0 4 7 11" \
    "" summary "$cli" part-info "$data/default.prt"
expect "pattern presets" 0 "14: Block chord ... Waltz" "" summary "$cli" presets "$data/default.spr"
expect "part presets" 0 "7: I-V-vi-IV pop in C ... i-VI-III-VII in A minor" "" \
    summary "$cli" presets "$data/default.ppr"
# The C chord through the block pattern: C E G and C again an octave up, all stopped at row 14.
first_chord() { "$cli" render --part "$data/default.prt" | awk -F'\t' '$1 == 0'; }
expect "render of the first chord" 0 "0 0 0 on 48; 0 0 1 on 52; 0 0 2 on 55; 0 0 3 on 60; \
0 14 0 off; 0 14 1 off; 0 14 2 off; 0 14 3 off" "" joined first_chord

# A part written by hand: one pattern declaring 32 rows and 4 tracks (read as 64 x 8 anyway),
# track 1 in octave B-1; rows 0-4 of track 1 hold a chord note, a fixed G in octave 5, the
# sixth chord note (beyond the chord), an off-event and a chance note. One C major chord of 6 rows.
awk 'BEGIN {
    split("0 7 5 0 0", value); split("1 3 1 2 4", kind); split("0 5 0 0 0", octave)
    print "hand list\n1\nHand\n32\n4"
    for (t = 0; t < 8; t++) {
        print (t == 0 ? 9 : 0)
        for (r = 1; r <= 64; r++)
            print (t == 0 && r <= 5 ? value[r] "\n" kind[r] "\n" octave[r] : "0\n0\n0")
    }
    print "chords\n1\nC  \n3\n0\n6\n0\n4\n7\n4\n0\n0\n0\n120\n4"
    for (i = 0; i < 12; i++) print 1
}' > "$work/hand.prt"

expect "part-info on a hand-made part" 0 "bpm${tab}120
tpb${tab}4
base octave${tab}4
current pattern${tab}0
selection${tab}0${tab}0
flags${tab}1 1 1 1 1 1 1 1 1 1 1 1
patterns${tab}1
pattern${tab}0${tab}Hand${tab}5
chords${tab}1
0${tab}C${tab}0${tab}6${tab}0 4 7" "" "$cli" part-info "$work/hand.prt"

hand() { "$cli" render --part "$work/hand.prt" "$@"; }
no_chance() { hand "$@" | awk -F'\t' '$2 != 4'; }
expect "extended chord" 0 "0 0 0 on 36; 0 1 0 on 67; 0 3 0 off" "" joined no_chance
expect "off-events" 0 "0 0 0 on 36; 0 1 0 on 67; 0 2 0 off; 0 3 0 off" "" joined no_chance --index-option 1
expect "ignore option" 0 "0 0 0 on 36; 0 1 0 on 67; 0 3 0 off" "" joined no_chance --index-option 2
expect "upper limit C,3" 0 "0 0 0 on 36; 0 1 0 on 31; 0 3 0 off" "" joined no_chance --limit C,3
expect "track 1 switched off" 0 "" "" hand --tracks 01111111

# The chance note: the same seed gives the same run, and over many seeds it both sounds and not.
[ "$(hand --seed 42)" = "$(hand --seed 42)" ] || fail "a seed must repeat"
chance_lines="$(for n in $(seq 1 40); do # spread seeds: neighbouring small seeds draw alike
    hand --seed $((n * 104729)) | awk -F'\t' '$2 == 4'
done)"
sounded="$(grep -cxF "0${tab}4${tab}0${tab}on${tab}36" <<<"$chance_lines")"
[ "$(wc -w <<<"$chance_lines")" -eq $((5 * sounded)) ] || fail "unexpected chance lines: $chance_lines"
{ [ "$sounded" -gt 5 ] && [ "$sounded" -lt 35 ]; } || fail "chance note sounded $sounded of 40 times"

# Failures: the formats' messages and exit 1; usage mistakes exit 2; bad files never crash.
printf 'TONALMANCER CHORD PRESETS\n0\n' > "$work/empty.ppr"
head -c 300 "$data/default.prt" > "$work/short.prt"
expect "missing part" 1 "" "unable to open file" "$cli" part-info "$work/none.prt"
expect "missing part to render" 1 "" "unable to open file" "$cli" render --part "$work/none.prt"
expect "missing presets" 1 "" "Unable to open preset file" "$cli" presets "$work/none.spr"
expect "foreign presets" 1 "" "No preset file" "$cli" presets "$work/hand.prt"
expect "capital magic" 0 "" "" "$cli" presets "$work/empty.ppr"
expect "bad tracks" 2 "" "tonalmancer-cli render: --tracks needs eight switches of 0 or 1, for example 11110000" \
    hand --tracks 1111
for bad in "--index-option 3" "--limit H,4" "--limit C" "--limit C,10" "--seed -1"; do
    # shellcheck disable=SC2086
    expect "render $bad" 2 "" "*" hand $bad
done
expect "render without --part" 2 "" "*" "$cli" render
"$cli" part-info "$work/short.prt" >/dev/null || fail "a short part file must still be shown"
"$cli" render --part "$data/default.spr" >/dev/null || fail "a foreign file must render as nothing"

# transform: chord edits of the default part (C Am F G Dm7 G7 Cmaj7), chords counted from 0.
# chords FILE: "name:notes" of every chord on one line.
chords() { "$cli" part-info "$1" | awk -F'\t' 'found { print $2 ":" $5 } $1 == "chords" { found = 1 }' | paste -sd' '; }
tf() { "$cli" transform -o "$work/t.prt" "$@" >/dev/null && chords "$work/t.prt"; }
prt="$data/default.prt"
expect "transpose 1-3 by +2" 0 "C:0 4 7 Bm:11 14 18 G:7 11 14 A:9 13 16 Dm7:2 5 9 12 G7:7 11 14 17 Cmaj7:0 4 7 11" "" \
    tf --part "$prt" --chords 1-3 --transpose 2
"$cli" transform --part "$prt" --chords 0 --invert -o "$work/i.prt" || fail "invert once"
second_inversion() { tf --part "$work/i.prt" --chords 0 --invert | cut -d' ' -f1-6; }
expect "second inversion" 0 "C:12 16 7 Am:9 12 16" "" second_inversion
mirrored() { tf --part "$prt" --chords 0-2 --mirror D#,E | cut -d' ' -f1-9; }
expect "mirror around D#,E" 0 "C:7 3 0 Am:10 7 3 F:14 10 7" "" mirrored
expect "limits C1..B1" 0 "C:12 16 19 Am:21 12 16 F:17 21 12 G:19 23 14 Dm7:14 17 21 12 G7:19 23 14 17 Cmaj7:12 16 19 23" "" \
    tf --part "$prt" --limit C1,B1
expect "sort by notes, down" 0 "Am:9 12 16 G7:7 11 14 17 G:7 11 14 F:5 9 12 Dm7:2 5 9 12 Cmaj7:0 4 7 11 C:0 4 7" "" \
    tf --part "$prt" --sort notes --down
"$cli" transform --part "$prt" --normalize -o "$work/n.prt" && "$cli" transform --part "$work/n.prt" \
    --normalize -o "$work/n2.prt" && cmp -s "$work/n.prt" "$work/n2.prt" || fail "normalize twice must equal once"
"$cli" transform --part "$prt" --transpose 5 -o "$work/up.prt" &&
    "$cli" transform --part "$work/up.prt" --transpose -5 -o "$work/back.prt" &&
    "$cli" transform --part "$prt" --transpose 0 -o "$work/same.prt" &&
    cmp -s "$work/back.prt" "$work/same.prt" || fail "transposing +5 and -5 must give the part back"
# Remove double on the hand-made part's chord list, written three times with one G between.
awk 'found || /^chords$/ { found = 1; next } { print }' "$work/hand.prt" > "$work/dup.prt"
printf 'chords\n4\nC\n3\n0\n6\n0\n4\n7\nC\n3\n0\n6\n0\n4\n7\nG\n3\n0\n6\n7\n11\n14\nC\n3\n0\n6\n0\n4\n7\n' >> "$work/dup.prt"
printf '4\n0\n0\n3\n120\n4\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n1\n' >> "$work/dup.prt"
expect "remove double" 0 "C:0 4 7 G:7 11 14 C:0 4 7" "" tf --part "$work/dup.prt" --remove-double
expect "remove double reports" 0 "removed 1 chords" "" \
    "$cli" transform --part "$work/dup.prt" --remove-double -o "$work/t.prt"
# Refused edits and mistakes: the output file keeps its old bytes.
cp "$work/same.prt" "$work/keep.prt"
expect "transpose past B9" 1 "" "Notes of \"Am\", \"F\", \"G\", \"Dm7\", \"G7\", ... would leave the note range C0..B9; nothing was changed." \
    "$cli" transform --part "$prt" --transpose 110 -o "$work/keep.prt"
expect "narrow limits" 1 "" "The note limits must lie within C0..B9 and span at least an octave." \
    "$cli" transform --part "$prt" --limit C1,A1 -o "$work/keep.prt"
expect "chords beyond the part" 1 "" "no chord 9: the part has 7 chords, counted from 0" \
    "$cli" transform --part "$prt" --chords 3-9 --invert -o "$work/keep.prt"
for bad in "--invert --normalize" "--down --invert" "--mirror D#,F" "--mirror H" "--chords 5-2 --invert" \
    "--limit C1" "--limit C1,X2" "--sort length" "--transpose 120" ""; do
    # shellcheck disable=SC2086
    expect "transform $bad" 2 "" "*" "$cli" transform --part "$prt" -o "$work/keep.prt" $bad
done

# fill-pattern on the C chord's pattern 0 (16 rows; the block chord's offs stay on row 14).
fp() { "$cli" fill-pattern --part "$prt" -o "$work/f.prt" "$@" &&
    "$cli" render --part "$work/f.prt" | awk -F'\t' '$1 == 0'; }
expect "euclid E(3,8)" 0 "0 0 0 on 48; 0 3 0 on 48; 0 6 0 on 48; 0 8 0 on 48; 0 11 0 on 48; 0 14 0 on 48" "" \
    joined fp --pattern 0 --recipe "euclid pulses=3 steps=8 notes=1"
expect "up-down arpeggio in rows 0-7" 0 "0 0 0 on 48; 0 1 0 off; 0 2 0 on 52; 0 3 0 off; 0 4 0 on 55; \
0 5 0 off; 0 6 0 on 52; 0 7 0 off; 0 14 0 off; 0 14 1 off; 0 14 2 off; 0 14 3 off" "" \
    joined fp --pattern 0 --recipe "arpeggio order=up-down step=2 length=1" --row-range 0-7
[ "$(fp --pattern 0 --recipe "random density=60" --seed 9)" = "$(fp --pattern 0 --recipe "random density=60" --seed 9)" ] ||
    fail "fill-pattern with a seed must repeat"
expect "fill a missing pattern" 1 "" "no pattern 7: the part has 3 patterns, counted from 0" \
    "$cli" fill-pattern --part "$prt" --pattern 7 --recipe block -o "$work/keep.prt"
expect "bad recipe" 2 "" "tonalmancer-cli fill-pattern: --recipe: unknown key \"speed\"" \
    "$cli" fill-pattern --part "$prt" --pattern 0 --recipe "arpeggio speed=2" -o "$work/keep.prt"
for bad in "--track-range 0-8" "--row-range 9-3" "--index-option 3" "--seed x"; do
    # shellcheck disable=SC2086
    expect "fill-pattern $bad" 2 "" "*" "$cli" fill-pattern --part "$prt" --pattern 0 --recipe block -o "$work/keep.prt" $bad
done
cmp -s "$work/same.prt" "$work/keep.prt" || fail "failed commands must not touch the output"

[ "$failures" -eq 0 ] || { echo "$failures check(s) failed" >&2; exit 1; }
echo "all part command checks passed"
