#!/usr/bin/env bash
# End-to-end checks of write-part: the shipped demo part written into a real song's generator,
# read back with song-info the way a user would check it.
set -u
CLI="$1"
CORPUS="${TM_SONG_CORPUS:-${TM_SONG_CORPUS_DEFAULT:-}}"
SONG="$CORPUS/neil_MadBrains_Dynamite6_demo.bmx"
SHIPPED="${TM_DATA_DIR:-$(dirname "$0")/../../data}"
PART="${TM_SOURCE_DIR:-$(dirname "$0")/../..}/data/default.prt"

. "$(dirname "$0")/cli_checks.sh"
# The song's machines are learned into this copy, never into the build's data folder.
cp "$SHIPPED/machines.ini" "$DATA/"

# The patterns song-info lists under machine $2, one "name rows" a line, into $WORK/$1.
patterns_of() {
    sed -n "/^  [0-9]*: \"$2\"/,/^  [0-9]*: /p" "$WORK/out" | grep '^    pattern' |
        sed 's/^    pattern "\(.*\)"  rows \([0-9]*\)$/\1 \2/' >"$WORK/$1"
}

# The shipped default song takes the shipped part as it is: its generator is in the shipped
# database (nothing is learned) and has tracks enough for every chord.
SHIPPED_DATA="$WORK/shipped"
mkdir -p "$SHIPPED_DATA"
cp "$SHIPPED/machines.ini" "$SHIPPED_DATA/"
run 0 write-part --part "$SHIPPED/default.prt" --song "$SHIPPED/default.bmx" --machine Dynamite6 \
    -o "$WORK/default.bmx" --sequence --data "$SHIPPED_DATA"
[ "$(cat "$WORK/out")" = "done" ] || fail "default song: stdout is not 'done': $(cat "$WORK/out")"
cmp -s "$SHIPPED/machines.ini" "$SHIPPED_DATA/machines.ini" || fail "default song: a machine was learned"
run 0 song-info "$WORK/default.bmx" --data "$SHIPPED_DATA"
patterns_of patterns Dynamite6
printf '%s\n' "Am 16" "C 16" "Cmaj7 32" "Dm7 16" "F 16" "G 16" "G7 16" >"$WORK/expected"
diff -u "$WORK/expected" "$WORK/patterns" || fail "default song: patterns of Dynamite6 differ"

# machines.ini without the generator's track parameter "Volume": the song's own descriptions are
# used, with a warning, and the copy is the same as with the right database.
if command -v python3 >/dev/null; then
    mkdir -p "$WORK/misfit"
    python3 - "$SHIPPED/machines.ini" "$WORK/misfit/machines.ini" <<'EOF2'
import sys
text = open(sys.argv[1]).read()
head = "MadBrain's Dynamite 6\nDynamite6\n1\n1\n32\n"
assert head + "27\n25\n2\n44\n2\n" in text
text = text.replace(head + "27\n25\n2\n44\n2\n", head + "26\n25\n1\n44\n1\n")
text = text.replace("Volume\n1\nt\n2\n255\n128\nM4\n", "M4\n")
open(sys.argv[2], "w").write(text)
EOF2
    run 0 song-copy "$SHIPPED/default.bmx" "$WORK/misfit.bmx" --data "$WORK/misfit"
    expect_in err "describes the parameters of machine Dynamite6 (MadBrain's Dynamite 6) differently"
    run 0 song-copy "$SHIPPED/default.bmx" "$WORK/fit.bmx" --data "$SHIPPED_DATA"
    cmp -s "$WORK/misfit.bmx" "$WORK/fit.bmx" || fail "a misdescribed machine changed the copy"
fi

# Past 112 patterns a sequence stores its values in two bytes, below in one; the header must
# follow the pattern count both ways. 17 appends give 119 patterns, then removals go back below.
cp "$SHIPPED/default.bmx" "$WORK/many.bmx"
for i in $(seq 17); do
    run 0 write-part --part "$SHIPPED/default.prt" --song "$WORK/many.bmx" --machine Dynamite6 \
        -o "$WORK/many.bmx" --append --sequence --data "$SHIPPED_DATA"
done
# sequence_names FILE: the pattern each sequence event of Dynamite6 plays, "position name" a line.
sequence_names() {
    run 0 song-info "$1" --json --data "$SHIPPED_DATA"
    python3 -c '
import json, sys
d = json.load(open(sys.argv[1]))
m = [i for i, x in enumerate(d["machines"]) if x["name"] == "Dynamite6"][0]
patterns = d["machines"][m]["patterns"]
for s in d["sequences"]:
    if s["machine"] == m:
        for e in s["events"]:
            v = e["value"]
            print(e["position"], patterns[v - 16]["name"] if v >= 16 else v)
' "$WORK/out"
}
if command -v python3 >/dev/null; then
    sequence_names "$WORK/many.bmx" >"$WORK/many.seq"
    [ "$(wc -l <"$WORK/many.seq")" = 7 ] || fail "119 patterns: the sequence reads $(cat "$WORK/many.seq")"
    run 0 remove-patterns "$WORK/many.bmx" Dynamite6 --unused -o "$WORK/fewer.bmx" --data "$SHIPPED_DATA"
    sequence_names "$WORK/fewer.bmx" >"$WORK/fewer.seq"
    diff -u "$WORK/many.seq" "$WORK/fewer.seq" || fail "--unused below 112 changed what the sequence plays"
    # The sequence plays patterns 0 to 6: removing 7 to 14 leaves 111.
    run 0 remove-patterns "$WORK/many.bmx" Dynamite6 $(printf -- '--index %s ' $(seq 7 14)) \
        -o "$WORK/fewer.bmx" --data "$SHIPPED_DATA"
    sequence_names "$WORK/fewer.bmx" >"$WORK/fewer.seq"
    diff -u "$WORK/many.seq" "$WORK/fewer.seq" || fail "--index down to 111 patterns changed what the sequence plays"
fi

if [ ! -f "$SONG" ]; then
    finish
    echo "SKIP: the default song passed; no song corpus for the rest (set TM_SONG_CORPUS); $SONG is missing"
    exit 77
fi

# Replace the machine's patterns by the part's seven chords, with a sequence.
run 0 write-part --part "$PART" --song "$SONG" --machine Dynamite6 -o "$WORK/one.bmx" \
    --sequence --learn --data "$DATA"
[ "$(cat "$WORK/out")" = "done" ] || fail "stdout is not 'done': $(cat "$WORK/out")"

run 0 song-info "$WORK/one.bmx" --data "$DATA"
patterns_of patterns Dynamite6
printf '%s\n' "Am 16" "C 16" "Cmaj7 32" "Dm7 16" "F 16" "G 16" "G7 16" >"$WORK/expected"
diff -u "$WORK/expected" "$WORK/patterns" || fail "patterns of Dynamite6 differ"
expect_in out '1: "Dynamite6"  type 1  dll "MadBrain'"'"'s Dynamite 6"  tracks 4'
# Chords C Am F G Dm7 G7 Cmaj7 play one after another, each naming its pattern in name order.
[ "$(grep -c '^  machine 1:' "$WORK/out")" = 1 ] || fail "machine 1 should have one sequence"
expect_in out "  machine 1: 0:17 16:16 32:20 48:21 64:19 80:22 96:18"
# The other machines keep their patterns.
patterns_of other Dynamite62
[ -s "$WORK/other" ] || fail "Dynamite62 lost its patterns"

# Appending with names from the notes keeps the old patterns and sorts everything by name.
run 0 write-part --part "$PART" --song "$WORK/one.bmx" --machine Dynamite6 -o "$WORK/two.bmx" \
    --append --sequence --names-by-notes --data "$DATA"
run 0 song-info "$WORK/two.bmx" --data "$DATA"
patterns_of patterns Dynamite6
[ "$(wc -l <"$WORK/patterns")" = 14 ] || fail "expected 14 patterns: $(cat "$WORK/patterns")"
expect_in patterns "C0 E0 G0 16"
expect_in patterns "C0 E0 G0 B0 32"
sed 's/ [0-9]*$//' "$WORK/patterns" | LC_ALL=C sort -c || fail "patterns are not in name order"

# Failures print the message on stderr, exit 1 and write nothing.
run 1 write-part --part "$PART" --song "$SONG" --machine Reverb2 -o "$WORK/bad.bmx" --data "$DATA"
expect_in err "Error:	 unable to find Noteparameter"
[ ! -e "$WORK/bad.bmx" ] || fail "a failed write saved the song"
run 1 write-part --part "$PART" --song "$SONG" --machine Nobody -o "$WORK/bad.bmx" --data "$DATA"
expect_in err 'no machine named "Nobody"'
run 1 write-part --part "$PART" --song "$SONG" --machine Dynamite6 -o "$WORK/bad.bmx" \
    --tracks 00000000 --data "$DATA"
expect_in err "nothing to write"
run 1 write-part --part "$WORK/missing.prt" --song "$SONG" --machine Dynamite6 \
    -o "$WORK/bad.bmx" --data "$DATA"
expect_in err "unable to open file"
run 1 write-part --part "$PART" --song "$WORK/missing.bmx" --machine Dynamite6 \
    -o "$WORK/bad.bmx" --data "$DATA"
expect_in err "Error loading file"
run 1 write-part --part "$PART" --song "$SONG" --machine Dynamite6 \
    -o "$WORK/no-such-folder/out.bmx" --data "$DATA"
expect_in err "Error saving file"
[ ! -e "$WORK/bad.bmx" ] || fail "a failed write saved the song"

# Usage errors exit 2.
run 2 write-part --part "$PART" --song "$SONG" --machine Dynamite6 --data "$DATA"

finish "write-part"
