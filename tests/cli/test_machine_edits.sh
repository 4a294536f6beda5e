#!/usr/bin/env bash
# End-to-end checks of the machine edits: rename-machine, clone-machine, add-machine,
# replace-machine, transpose, invert and remove-empty-sequences, on the shipped default song with
# the shipped machine database, the way a user would run them.
set -u
CLI="$1"
SHIPPED="${TM_DATA_DIR:-$(dirname "$0")/../../data}"
SONG="$SHIPPED/default.bmx"

. "$(dirname "$0")/cli_checks.sh"
RUN_EXTRA=(--data "$DATA")
cp "$SHIPPED/machines.ini" "$DATA/"

expect_out() { [ "$(cat "$WORK/out")" = "$1" ] || fail "stdout is '$(cat "$WORK/out")', not '$1'"; }
info() { run 0 song-info "$1"; }

# Rename; a taken name is refused without writing anything.
run 0 rename-machine "$SONG" Dynamite6 Lead -o "$WORK/renamed.bmx"
info "$WORK/renamed.bmx"
expect_in out '1: "Lead"  type 1  dll "MadBrain'"'"'s Dynamite 6"'
run 1 rename-machine "$SONG" Dynamite6 master -o "$WORK/bad.bmx"
expect_in err 'There is already a machine named "Master".'
[ ! -e "$WORK/bad.bmx" ] || fail "a refused edit wrote a file"

# Clone and add: the new names are printed, and the new machines feed the master.
run 0 clone-machine "$SONG" Dynamite6 -o "$WORK/cloned.bmx"
expect_out "Dynamite62"
run 0 add-machine "$WORK/cloned.bmx" M4 -o "$WORK/added.bmx"
expect_out "M4"
info "$WORK/added.bmx"
expect_in out '3: "M4"  type 1  dll "M4"  tracks 1'
expect_in out "2 -> 0  amplitude 16384  panning 16384"
expect_in out "3 -> 0  amplitude 16384  panning 16384"
run 1 add-machine "$SONG" "No Such Synth" -o "$WORK/bad.bmx"
expect_in err 'machines.ini has no machine "No Such Synth"'

# The added machine takes a part at once.
run 0 write-part --part "$SHIPPED/default.prt" --song "$WORK/added.bmx" --machine M4 \
    -o "$WORK/part.bmx" --sequence
expect_in out "done"

# Transposing up and down again, or mirroring twice around the same note, gives the same song.
run 0 transpose "$WORK/part.bmx" M4 --by 12 -o "$WORK/up.bmx"
expect_in out "50 notes changed"
run 0 transpose "$WORK/up.bmx" M4 --by=-12 -o "$WORK/back.bmx"
cmp -s "$WORK/part.bmx" "$WORK/back.bmx" || fail "transposing up and down changed the song"
run 0 invert "$WORK/part.bmx" M4 --around F#4 -o "$WORK/mirror.bmx"
run 0 invert "$WORK/mirror.bmx" M4 --around F#4 -o "$WORK/back.bmx"
cmp -s "$WORK/part.bmx" "$WORK/back.bmx" || fail "mirroring twice changed the song"
run 0 transpose "$WORK/part.bmx" M4 --by 70 -o "$WORK/high.bmx"
expect_in out "left as they are: they would leave the tracker's range C-0 to B-9"
expect_in out '"M4" pattern "Am" row 0 track 0: A-4'
run 2 invert "$WORK/part.bmx" M4 --around H4 -o "$WORK/bad.bmx"
run 2 transpose "$WORK/part.bmx" M4 -o "$WORK/bad.bmx"

# Replace: the dry run lists the losses and writes nothing; the replacement keeps the patterns.
run 0 replace-machine "$WORK/part.bmx" M4 "MadBrain's Dynamite 6" --dry-run
expect_in out 'Replacing "M4" by "MadBrain'"'"'s Dynamite 6" would lose:'
expect_in out "the settings of 35 parameters without values in the patterns"
run 0 replace-machine "$WORK/part.bmx" M4 "MadBrain's Dynamite 6" -o "$WORK/replaced.bmx"
info "$WORK/replaced.bmx"
expect_in out '3: "M4"  type 1  dll "MadBrain'"'"'s Dynamite 6"'
expect_in out 'pattern "Cmaj7"  rows 32'
run 1 replace-machine "$SONG" Dynamite6 Master -o "$WORK/bad.bmx"
expect_in err "The master cannot be replaced"

# Remove empty sequences: the default song's generator has one.
run 0 remove-empty-sequences "$SONG" -o "$WORK/clean.bmx"
expect_out "removed 1 empty sequence"
info "$WORK/clean.bmx"
grep -q "^  machine " "$WORK/out" && fail "an empty sequence is left"

# Usage errors exit 2.
run 2 clone-machine "$SONG" Dynamite6
[ ! -e "$WORK/bad.bmx" ] || fail "a refused edit wrote a file"

finish "machine edits"
