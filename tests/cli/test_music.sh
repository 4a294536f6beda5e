#!/usr/bin/env bash
# The music commands of the command-line program: exact output forms and exit codes, on the
# shipped data and on hand-written files.
#   bash test_music.sh /path/to/tonalmancer-cli   (env: TM_DATA_DIR, the build's shipped data)
set -u
cli="$1"
data="${TM_DATA_DIR:-$(dirname "$cli")}"
[[ -f "$data/default.ccl" ]] || { echo "SKIP: no shipped data in $data"; exit 77; }
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# expect NAME EXPECTED_STATUS EXPECTED_STDOUT EXPECTED_STDERR ("*": any) -- command words...
expect() {
    local name="$1" status="$2" out="$3" err="$4" got_out got_status
    shift 5
    got_out="$("$cli" "$@" 2>"$work/stderr")"
    got_status=$?
    [[ "$got_status" == "$status" && "$got_out" == "$out" ]] &&
        [[ "$err" == "*" || "$(cat "$work/stderr")" == "$err" ]] ||
        fail "$name: status $got_status (want $status), stdout $(printf '%q' "$got_out")" \
            "(want $(printf '%q' "$out")), stderr $(printf '%q' "$(cat "$work/stderr")")"
}
tab=$'\t'
cmaj="Sorted by chord${tab}Triads${tab}maj${tab}Cmaj${tab}0 4 7"

expect "minor triad" 0 "0 3 7" "" -- intervals "1; b3 ;5;"
expect "sharp ninth" 0 "0 15" "" -- intervals "1;#9th;"
expect "unterminated" 0 "0 4" "" -- intervals "1;3;5"
expect "empty list" 0 "" "" -- intervals "135"
expect "upper case" 1 "" "No valid construction string" -- intervals "1;B3;"
expect "bare #9" 1 "" "No valid construction string" -- intervals "1;#9;"
expect "no argument" 2 "" "*" -- intervals

# a hand-written chord-type list with CRLF line ends and a lower-case magic
printf 'tonalmancer_constructchords\r\n3\r\nmaj\r\n1;3;5;\r\nm7  \r\n1;b3;5;b7;\r\n5\r\n1;5;\r\n' >"$work/mine.ccl"
expect "types" 0 "maj${tab}1;3;5;
m7${tab}1;b3;5;b7;
5${tab}1;5;" "" -- types "$work/mine.ccl"
printf 'Tonalmancer_Scales\n2\nmajor\nxoxoxxoxoxox\nminor pentatonic\nxooxoxoxooxo\n' >"$work/mine.scl"
expect "scales" 0 "major${tab}xoxoxxoxoxox${tab}7
minor pentatonic${tab}xooxoxoxooxo${tab}5" "" -- scales "$work/mine.scl"
expect "types: missing file" 1 "" "Error opening file." -- types "$work/none.ccl"
expect "types: wrong magic" 1 "" "Seems to be no valid file." -- types "$work/mine.scl"
expect "scales: missing file" 1 "" "Error opening file" -- scales "$work/none.scl"
expect "scales: wrong magic" 1 "" "Seems to be no valid file" -- scales "$work/mine.ccl"
expect "empty data folder" 1 "" "Error opening file" -- scales --data "$work/empty"

# generate, then search what was generated
expect "generate" 0 "" "" -- generate --types "$work/mine.ccl" -o "$work/mine.crd"
expect "generate with scales" 0 "" "" -- generate --types "$work/mine.ccl" --scales "$work/mine.scl" \
    --scale "minor pentatonic" -o "$work/scales.crd"
expect "generate: bad types" 1 "" "Seems to be no valid file." -- generate --types "$work/mine.scl" -o "$work/x.crd"
expect "generate: no output" 2 "" "*" -- generate --types "$work/mine.ccl"
expect "generate: unknown scale" 1 "" "*" -- generate --types "$work/mine.ccl" --scales "$work/mine.scl" \
    --scale "lydian" -o "$work/x.crd"
[[ -e "$work/x.crd" ]] && fail "a failed generate wrote a file"

expect "find-chord all" 0 "$cmaj
Sorted by chord${tab}Sevenths${tab}m7${tab}Am7${tab}9 12 16 19
Sorted by note${tab}C${tab}triads${tab}Cmaj${tab}0 4 7
Sorted by note${tab}A${tab}sevenths${tab}Am7${tab}9 12 16 19" "" -- \
    find-chord --db "$work/mine.crd" --notes C,E,G --all
expect "find-chord texts" 0 "Sorted by chord${tab}Diads${tab}5${tab}F#5${tab}6 13" "" -- \
    find-chord --db "$work/mine.crd" --include "F#" --skip M
expect "find-chord no hit" 0 "" "" -- find-chord --db "$work/mine.crd" --notes C,C#
expect "find-chord bad note" 2 "" "*" -- find-chord --db "$work/mine.crd" --notes C,Db
expect "find-chord missing db" 1 "" "Error opening file." -- find-chord --db "$work/none.crd"
expect "find-chord wrong magic" 1 "" "Seems to be no valid file." -- find-chord --db "$work/mine.ccl"
expect "find-scale" 0 "Scales${tab}C minor pentatonic
Scales${tab}F minor pentatonic" "" -- find-scale --db "$work/scales.crd" --notes C,D#
expect "find-scale text" 0 "Sorted by note${tab}F#" "" -- find-scale --db "$work/mine.crd" --include "f#"

# the first C E G chord, from the generated list, the shipped database and the default one
for db in "--db|$work/mine.crd" "--db|$data/default.crd" "--data|$data"; do
    expect "first C E G ($db)" 0 "$cmaj" "" -- find-chord "${db%%|*}" "${db#*|}" --notes C,E,G
done
expect "shipped: maj without 7" 0 "$cmaj" "" -- find-chord --db "$data/default.crd" --include Maj --skip 7
expect "shipped: C major scale" 0 "Scales${tab}C major
Scales${tab}A natural minor
Scales${tab}D dorian
Scales${tab}E phrygian
Scales${tab}F lydian
Scales${tab}G mixolydian
Scales${tab}B locrian" "" -- find-scale --db "$data/default.crd" --notes C,D,E,F,G,A,B
[[ "$("$cli" types "$data/default.ccl" | wc -l)" -ge 100 ]] || fail "fewer than 100 shipped chord types"
[[ "$("$cli" scales "$data/default.scl" | wc -l)" -ge 40 ]] || fail "fewer than 40 shipped scales"

# regenerating the shipped database from the shipped lists gives the same bytes
"$cli" generate --types "$data/default.ccl" --scales "$data/default.scl" --default-scale-groups \
    -o "$work/regen.crd"
cmp -s "$work/regen.crd" "$data/default.crd" || fail "regenerated default.crd differs"

[[ "$failures" -eq 0 ]] || { echo "$failures failure(s)"; exit 1; }
echo "all music command checks passed"
