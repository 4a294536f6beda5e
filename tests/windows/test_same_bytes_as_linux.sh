#!/usr/bin/env bash
# The Windows program reads and writes what the Linux program does, byte for byte: every song of
# the corpus copied and described, a machine database learned from them, a part written into a
# song, a MIDI file, a generated chord database and transformed parts. Each side works in a folder
# of its own with the same relative names, so that any name in the output is the same too.
#   test_same_bytes_as_linux.sh WINDOWS-CLI LINUX-CLI   (env: TM_DATA_DIR, TM_SONG_CORPUS[_DEFAULT])
set -u
windows="$1"
linux="$2"
data="${TM_DATA_DIR:?the shipped data of the build}"
corpus="${TM_SONG_CORPUS:-${TM_SONG_CORPUS_DEFAULT:-}}"
if [ ! -x "$linux" ]; then
    echo "SKIP: no Linux build of tonalmancer-cli at $linux to compare with (make test builds one)"
    exit 77
fi
songs=("$corpus"/*.bm[xw])
if [ ! -f "${songs[0]}" ]; then
    echo "SKIP: no song corpus (set TM_SONG_CORPUS)"
    exit 77
fi

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# Both sides start from the same inputs: the shipped files, and the songs under short names.
for side in linux windows; do
    mkdir -p "$work/$side/in" "$work/$side/out" "$work/$side/data"
    cp "$data"/default.* "$work/$side/in/"
    cp "$data/machines.ini" "$work/$side/data/"
    for song in "${songs[@]}"; do cp "$song" "$work/$side/in/"; done
done

# run NAME ARGS...: runs both programs in their folders; the exit status, stdout and stderr of
# the two must be equal.
run() {
    local name="$1" side cli
    shift
    for side in linux windows; do
        cli="$linux"
        [ "$side" = windows ] && cli="$windows"
        (cd "$work/$side" && "$cli" "$@" --data data >"$name.stdout" 2>"$name.stderr"
            echo $? >"$name.status")
    done
    for stream in status stdout stderr; do
        cmp -s "$work/linux/$name.$stream" "$work/windows/$name.$stream" ||
            fail "$name: $stream differs: $(diff "$work/linux/$name.$stream" "$work/windows/$name.$stream" | head -5)"
    done
}

copied=0
for song in "${songs[@]}"; do
    name="$(basename "$song")"
    run "copy $name" song-copy "in/$name" "out/$name" --learn
    run "info $name" song-info "out/$name" --json
    [ "$(cat "$work/linux/copy $name.status")" = 0 ] && copied=$((copied + 1))
done
[ "$copied" -ge 10 ] || fail "only $copied songs of the corpus could be copied at all"

run "write part" write-part --part in/default.prt --song in/neil_MadBrains_Dynamite6_demo.bmx \
    --machine Dynamite6 -o out/written.bmx --append --sequence --names-by-notes
run "midi" midi --part in/default.prt -o out/part.mid --markers --write-bpm --seed 7
run "generate" generate --types in/default.ccl --scales in/default.scl --default-scale-groups \
    -o out/default.crd
run "find" find-chord --db out/default.crd --notes C,E,G --all
run "transform" transform --part in/default.prt --transpose 3 -o out/transposed.prt
run "voice" voice --part in/default.prt --style drop2 --lead -o out/voiced.prt
run "bad song" song-copy in/default.prt out/none.bmx
run "missing file" part-info in/missing.prt

# Every file either side wrote, the learned machine database among them.
(cd "$work/linux" && find out data -type f | sort) >"$work/linux.files"
(cd "$work/windows" && find out data -type f | sort) >"$work/windows.files"
cmp -s "$work/linux.files" "$work/windows.files" ||
    fail "the two wrote different files: $(diff "$work/linux.files" "$work/windows.files" | head -5)"
while read -r file; do
    cmp -s "$work/linux/$file" "$work/windows/$file" || fail "$file differs"
done <"$work/linux.files"
[ "$(wc -l <"$work/linux.files")" -ge 20 ] || fail "too few files written: $(cat "$work/linux.files")"

if [ "$failures" -ne 0 ]; then
    echo "$failures check(s) failed"
    exit 1
fi
echo "$copied songs and $(wc -l <"$work/linux.files") files the same on both"
