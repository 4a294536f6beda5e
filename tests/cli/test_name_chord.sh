#!/usr/bin/env bash
# `tonalmancer-cli name-chord` as scripts meet it: the ranked names of note names and of MIDI note
# numbers, key spelling, the JSON form, the user's own chord types, and the messages and exit
# codes of bad calls. Input devices are exercised by the JACK test of the playback tests.
#   bash test_name_chord.sh /path/to/tonalmancer-cli   (env: TM_DATA_DIR, the build's shipped data)
set -u
cli="$1"
data="${TM_DATA_DIR:-$(dirname "$cli")}"
[[ -f "$data/default.ccl" ]] || { echo "SKIP: no shipped data in $data"; exit 77; }
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }
tab=$'\t'

# top NAME EXPECTED_FIRST_LINE -- command words...: status 0 and the first line of stdout.
top() {
    local name="$1" want="$2" got
    shift 3
    got="$("$cli" name-chord "$@" --data "$data" 2>"$work/stderr" | head -1)"
    [[ "$got" == "$want" ]] ||
        fail "$name: $(printf '%q' "$got") (want $(printf '%q' "$want")), stderr $(cat "$work/stderr")"
}
# status NAME STATUS STDERR_START -- command words...: the exit status, the start of stderr.
status() {
    local name="$1" want="$2" message="$3" got
    shift 4
    "$cli" name-chord "$@" --data "$data" >"$work/stdout" 2>"$work/stderr"
    got=$?
    [[ "$got" == "$want" && "$(head -1 "$work/stderr")" == "$message"* ]] ||
        fail "$name: status $got (want $want), stderr $(head -1 "$work/stderr")"
    [[ "$want" == 0 || ! -s "$work/stdout" ]] || fail "$name: printed on stdout after a failure"
}

top "dominant seventh" "C7${tab}C dominant seventh${tab}185${tab}C${tab}dominant seventh${tab}0 4 7 10${tab}-${tab}0${tab}-${tab}-${tab}C E G Bb" -- C,E,G,Bb
top "first inversion" "C/E${tab}C major, first inversion${tab}175${tab}C${tab}major${tab}0 4 7${tab}E${tab}1${tab}-${tab}-${tab}C E G" -- --midi 52,60,64,67
top "foreign bass" "D/E${tab}D major over E${tab}155${tab}D${tab}major${tab}0 4 7${tab}E${tab}-1${tab}-${tab}-${tab}E D F# A" -- --midi 40,62,66,69
top "no fifth" "C7(no5)${tab}C dominant seventh without the 5th${tab}165${tab}C${tab}dominant seventh${tab}0 4 7 10${tab}-${tab}0${tab}5${tab}-${tab}C E Bb" -- c,e,bb
top "flats in Eb" "Ab/C${tab}Ab major, first inversion${tab}175${tab}Ab${tab}major${tab}0 4 7${tab}C${tab}1${tab}-${tab}-${tab}Ab C Eb" -- --midi 48,56,63 --key Eb
top "sharps in E" "G#/B#${tab}G# major, first inversion${tab}175${tab}G#${tab}major${tab}0 4 7${tab}B#${tab}1${tab}-${tab}-${tab}G# B# D#" -- --midi 48,56,63 --key E
top "scale key" "F#m${tab}F# minor${tab}190${tab}F#${tab}minor${tab}0 3 7${tab}-${tab}0${tab}-${tab}-${tab}F# A C#" -- Gb,A,Db --key "D dorian"
top "cluster" "C Db D cluster${tab}cluster of C, Db and D${tab}0${tab}C${tab}cluster${tab}-${tab}C${tab}0${tab}-${tab}-${tab}C Db D" -- --midi 60,61,62

# five readings at most, every one with --all, each line of eleven fields
[[ "$("$cli" name-chord C,E,G,A --data "$data" | wc -l)" -le 5 ]] || fail "more than five without --all"
all="$("$cli" name-chord C,D,E,G,A --all --data "$data")"
[[ "$(wc -l <<<"$all")" -gt 5 ]] || fail "--all printed five or fewer readings"
awk -F'\t' 'NF != 11 { bad = 1 } END { exit bad }' <<<"$all" || fail "a line without eleven fields"

# the same readings as JSON, read by an independent parser
json="$("$cli" name-chord --midi 52,60,64,67 --json --data "$data")"
python3 - "$json" <<'PY' || fail "JSON output"
import json, sys
c = json.loads(sys.argv[1])
assert c[0]["name"] == "C/E" and c[0]["inversion"] == 1 and c[0]["bass"] == "E", c[0]
assert c[0]["type"]["intervals"] == [0, 4, 7] and "maj" in c[0]["type"]["userTypes"], c[0]
assert c[0]["notes"] == ["C", "E", "G"] and c[0]["cluster"] is False
assert all(a["score"] >= b["score"] for a, b in zip(c, c[1:]))
PY
cjson="$("$cli" name-chord C,C#,D --json --data "$data")"
python3 -c 'import json,sys; c=json.loads(sys.argv[1]); assert c[0]["cluster"] and c[0]["type"] is None' "$cjson" ||
    fail "cluster JSON"

# the user's own chord types
printf 'Tonalmancer_ConstructChords\n1\nquartal\n1;4;b7;\n' >"$work/mine.ccl"
"$cli" name-chord C,F,Bb --all --types "$work/mine.ccl" --data "$data" | grep -q "^Cquartal${tab}" ||
    fail "the user's type is not among the readings"

status "ok" 0 "" -- C
status "no notes" 2 "tonalmancer-cli name-chord: give the notes" --
status "two sources" 2 "tonalmancer-cli name-chord: give the notes" -- C,E --midi 60
status "bad note" 2 "tonalmancer-cli name-chord: \"H\" is no note name" -- C,H
status "empty note" 2 "tonalmancer-cli name-chord: NOTES: give the notes" -- C,,E
status "trailing comma" 2 "tonalmancer-cli name-chord: NOTES: give the notes" -- C,E,
status "note out of range" 2 "tonalmancer-cli name-chord: --midi must lie between 0 and 127" -- --midi 60,128
status "no number" 2 "tonalmancer-cli name-chord: --midi needs a whole number" -- --midi 60,x
status "bad key" 2 "tonalmancer-cli name-chord: Unknown key \"H minor\"" -- C,E,G --key "H minor"
status "missing types" 1 "Error opening file." -- C,E,G --types "$work/none.ccl"
status "wrong types file" 1 "Seems to be no valid file." -- C,E,G --types "$data/default.scl"
if "$cli" --help | grep -q '^  inputs .*(not in this build)$'; then
    status "no MIDI input" 1 "MIDI input is not available in this build" -- --listen "no such keyboard"
else
    status "no such input" 1 "No MIDI input device matches \"no such keyboard\"" -- --listen "no such keyboard"
fi

[[ "$failures" -eq 0 ]] || { echo "$failures failure(s)"; exit 1; }
echo "all name-chord checks passed"
