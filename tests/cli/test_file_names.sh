#!/usr/bin/env bash
# File names and text files as users have them, through the command-line program: names outside
# any ANSI code page (for files, folders and the data folder), text files with CR LF line ends,
# and in the Windows build drive letters, backslashes and relative Windows paths.
#   bash test_file_names.sh /path/to/tonalmancer-cli   (env: TM_DATA_DIR, TM_UNDER_WINE)
set -u
cli="$1"
data="${TM_DATA_DIR:-$(dirname "$cli")}"
[[ -f "$data/default.prt" ]] || { echo "SKIP: no shipped data in $data"; exit 77; }
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# same NAME ARGS...: runs the program, expecting status 0; stdout goes to $work/NAME.
same() {
    local name="$1"
    shift
    "$cli" "$@" >"$work/$name" 2>"$work/err" || fail "$name: status $? ($(head -1 "$work/err"))"
}
# expect_same A B WHAT: two outputs or written files must be equal.
expect_same() { cmp -s "$1" "$2" || fail "$3: $(diff "$1" "$2" | head -4)"; }

# The reference: everything under plain ASCII names.
plain="$work/plain"
mkdir -p "$plain/data"
cp "$data/default.prt" "$data/default.bmx" "$data/default.ccl" "$data/default.ppr" "$plain/"
cp "$data/machines.ini" "$plain/data/"
same plain.info part-info "$plain/default.prt"
same plain.song song-copy "$plain/default.bmx" "$plain/copy.bmx" --data "$plain/data"
same plain.transposed transform --part "$plain/default.prt" --transpose 2 -o "$plain/up.prt"
same plain.midi midi --part "$plain/default.prt" -o "$plain/part.mid" --seed 3

# The same under names of several scripts, the data folder's included; a file given by such a
# name must be found, and one written must appear under exactly that name.
for name in "Akkorde für Café" "Ακόρντα ♯♭" "和音 コード" "𝄞 clef"; do
    dir="$work/$name"
    mkdir -p "$dir/$name data"
    cp "$data/default.prt" "$dir/$name.prt"
    cp "$data/default.bmx" "$dir/$name.bmx"
    cp "$data/machines.ini" "$dir/$name data/"
    same info part-info "$dir/$name.prt"
    expect_same "$work/plain.info" "$work/info" "part-info of \"$name.prt\""
    same song song-copy "$dir/$name.bmx" "$dir/$name copy.bmx" --data "$dir/$name data"
    expect_same "$plain/copy.bmx" "$dir/$name copy.bmx" "song-copy to \"$name copy.bmx\""
    same transposed transform --part "$dir/$name.prt" --transpose 2 -o "$dir/$name ♯2.prt"
    expect_same "$plain/up.prt" "$dir/$name ♯2.prt" "transform to \"$name ♯2.prt\""
    same midi midi --part "$dir/$name.prt" -o "$dir/$name.mid" --seed 3
    expect_same "$plain/part.mid" "$dir/$name.mid" "midi to \"$name.mid\""
    "$cli" part-info "$dir/$name missing.prt" >/dev/null 2>"$work/err" &&
        fail "a missing \"$name missing.prt\" was read"
    [ "$(head -1 "$work/err")" = "unable to open file" ] || fail "missing file: $(cat "$work/err")"
done

# Text files with CR LF line ends read as the same files with LF.
crlf="$work/crlf"
mkdir -p "$crlf"
for file in default.prt default.ccl default.ppr; do
    sed 's/$/\r/' "$plain/$file" >"$crlf/$file"
    cmp -s "$plain/$file" "$crlf/$file" && fail "$file did not get CR LF line ends"
done
same crlf.info part-info "$crlf/default.prt"
expect_same "$work/plain.info" "$work/crlf.info" "part-info of a CR LF part"
same plain.types types "$plain/default.ccl"
same crlf.types types "$crlf/default.ccl"
expect_same "$work/plain.types" "$work/crlf.types" "types of a CR LF list"
same plain.presets presets "$plain/default.ppr"
same crlf.presets presets "$crlf/default.ppr"
expect_same "$work/plain.presets" "$work/crlf.presets" "presets of a CR LF list"
grep -q $'\r' "$work/crlf.info" "$work/crlf.types" && fail "a CR of the input reached the output"

if [ -n "${TM_UNDER_WINE:-}" ]; then
    # Wine's drive Z: is the Linux root: the same files by drive letter, with backslashes, with
    # forward slashes, in lower case, and relative to the current folder.
    windows() { local p="Z:$1"; printf '%s' "${p//\//\\}"; }
    same win.info part-info "$(windows "$plain/default.prt")"
    expect_same "$work/plain.info" "$work/win.info" "part-info by a drive-letter path"
    same win.info part-info "z:$plain/default.prt"
    expect_same "$work/plain.info" "$work/win.info" "part-info by z: and forward slashes"
    same win.song song-copy "$(windows "$plain/default.bmx")" "$(windows "$plain/win copy.bmx")" \
        --data "$(windows "$plain/data")"
    expect_same "$plain/copy.bmx" "$plain/win copy.bmx" "song-copy by backslash paths"
    mkdir -p "$work/sub dir"
    (cd "$work" && "$cli" transform --part 'plain\default.prt' --transpose 2 -o 'sub dir\up.prt') ||
        fail "transform by relative backslash paths"
    expect_same "$plain/up.prt" "$work/sub dir/up.prt" "transform by relative backslash paths"
else
    echo "drive letters and backslashes: checked in the Windows build only"
fi

[[ "$failures" -eq 0 ]] || { echo "$failures failure(s)"; exit 1; }
echo "all file name checks passed"
