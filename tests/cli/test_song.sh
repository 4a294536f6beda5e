#!/usr/bin/env bash
# End-to-end checks of the song commands: song-info, song-copy, remove-machine, remove-patterns
# and trim, run on a real song of the corpus the way a user would.
set -u
CLI="$1"
CORPUS="${TM_SONG_CORPUS:-${TM_SONG_CORPUS_DEFAULT:-}}"
SONG="$CORPUS/buzztrax_buzz2.bmx"
if [ ! -f "$SONG" ]; then
    echo "SKIP: no song corpus (set TM_SONG_CORPUS); $SONG is missing"
    exit 77
fi

. "$(dirname "$0")/cli_checks.sh"

# No machine database yet.
run 1 song-info "$SONG" --data "$DATA"
expect_in err "machines.ini not found"
expect_in err "Error loading file"
expect_in err "Code:	11"

# The database with the built-in machines only (the master among them).
{
    echo 5
    printf '%s\n' Master Master 0 0 256 3 3 0 5 0 \
        Volume 2 g 3 0 0 Bpm 2 g 3 120 120 Tpb 1 g 2 4 4
    printf '%s\n' "Jeskola Freeverb" Freeverb 2 0 8 7 7 0 7 0
    for p in "Reverberation Time" "High frequency damping" "Pre delay" "Low Cut" "High Cut" \
        "Reverb Output Level" "Dry Output Level"; do printf '%s\n' "$p" 1 g 2 0 0; done
    printf '%s\n' "Jeskola Aux Return" AuxReturn 1 1 1 1 1 0 1 0 dummy 1 g 2 0 0
    printf '%s\n' "Jeskola Mixer Aux" "Mixer Aux" 1 1 1 1 1 0 1 0 dummy 1 g 2 0 0
    printf '%s\n' "Jeskola Mixer" Mixer 2 16 16 0 0 8 0 8
    for p in Level Pan "EQ Low" "EQ Mid" "EQ High" Mode "Aux 1 Send" "Aux 2 Send"; do
        printf '%s\n' "$p" 1 t 2 0 0
    done
} >"$DATA/machines.ini"

# Unknown machines fail without --learn, with the message and code 26.
run 1 song-info "$SONG" --data "$DATA"
expect_in err "machine unknown"
expect_in err "please scan your gear-directory"
expect_in err "Code:	26"
[ -s "$WORK/out" ] && fail "a failed load printed a song"

# Without --learn a machine the song describes is offered for a DLL scan all the same.
mkdir -p "$WORK/gear/generators"
echo "plain text" >"$WORK/gear/generators/ErsKick.dll"
run 1 song-info "$SONG" --data "$DATA" --scan-dll "$WORK/gear/generators/ErsKick.dll"
expect_in err "Unable to load library"
expect_in err "Code:	26"

# With --learn the machines are learned from the song and stay known.
run 0 song-info "$SONG" --data "$DATA" --learn
expect_in out "Machines:"
expect_in out "\"ErsKick\""
expect_in out "Sequences:"
grep -q "ErsKick" "$DATA/machines.ini" || fail "the learned machine is not in machines.ini"
[ -f "$DATA/specdata.dat" ] || fail "specdata.dat was not written"
run 0 song-info "$SONG" --data "$DATA"
expect_in out "\"ErsSnare\""

# JSON output.
run 0 song-info "$SONG" --data "$DATA" --json
if command -v python3 >/dev/null; then
    python3 -c '
import json, sys
d = json.load(open(sys.argv[1]))
assert set(d) == {"sections", "machines", "connections", "sequences"}, d.keys()
assert any(m["name"] == "ErsKick" for m in d["machines"])
assert all("patterns" in m for m in d["machines"])
' "$WORK/out" || fail "song-info --json is not the expected JSON"
fi

# Copy: a second copy of the copy is byte for byte the same.
run 0 song-copy "$SONG" "$WORK/copy.bmx" --data "$DATA"
head -c 4 "$WORK/copy.bmx" | grep -q "Buzz" || fail "the copy is no song"
run 0 song-copy "$WORK/copy.bmx" "$WORK/copy2.bmx" --data "$DATA"
cmp -s "$WORK/copy.bmx" "$WORK/copy2.bmx" || fail "copying a copy changed it"

# Remove a machine.
run 0 remove-machine "$SONG" ErsSnare -o "$WORK/removed.bmx" --data "$DATA"
run 0 song-info "$WORK/removed.bmx" --data "$DATA"
expect_not_in out "ErsSnare"
expect_in out "\"ErsHihat\""
run 1 remove-machine "$SONG" NoSuchMachine -o "$WORK/x.bmx" --data "$DATA"
expect_in err "NoSuchMachine"
[ -e "$WORK/x.bmx" ] && fail "a failed removal wrote a file"
run 1 remove-machine "$SONG" Master -o "$WORK/x.bmx" --data "$DATA"
expect_in err "The master cannot be removed"
[ -e "$WORK/x.bmx" ] && fail "removing the master wrote a file"

# Remove patterns.
run 0 remove-patterns "$SONG" ErsKick --all --output "$WORK/nopatterns.bmx" --data "$DATA"
run 0 song-info "$WORK/nopatterns.bmx" --data "$DATA" --json
if command -v python3 >/dev/null; then python3 -c '
import json, sys
d = json.load(open(sys.argv[1]))
kick = [i for i, m in enumerate(d["machines"]) if m["name"] == "ErsKick"][0]
assert d["machines"][kick]["patterns"] == []
assert all(s["machine"] != kick for s in d["sequences"])
' "$WORK/out" || fail "--all left patterns or sequences"; fi
run 0 remove-patterns "$SONG" ErsKick --unused -o "$WORK/unused.bmx" --data "$DATA"
run 0 remove-patterns "$SONG" ErsKick --index 0 -o "$WORK/index.bmx" --data "$DATA"
run 1 remove-patterns "$SONG" ErsKick --index 999 -o "$WORK/index.bmx" --data "$DATA"
run 2 remove-patterns "$SONG" ErsKick -o "$WORK/none.bmx" --data "$DATA"
run 2 remove-patterns "$SONG" ErsKick --all --unused -o "$WORK/both.bmx" --data "$DATA"
run 2 remove-machine "$SONG" ErsKick --data "$DATA"

# Trim.
run 0 trim "$SONG" ErsKick -o "$WORK/trimmed.bmx" --data "$DATA"
run 0 song-info "$WORK/trimmed.bmx" --data "$DATA"

# Not a song.
printf 'RIFF0000WAVEfmt ' >"$WORK/not-a-song.bmx"
run 1 song-info "$WORK/not-a-song.bmx" --data "$DATA"
expect_in err "Error:"
expect_in err "no Buzzfile"
expect_in err "Code:	666"

# A save that cannot succeed leaves nothing behind and says so.
run 1 song-copy "$SONG" "$WORK/no/such/folder/out.bmx" --data "$DATA"
expect_in err "Error saving file"
expect_in err "Code:	112"

finish "song commands"
