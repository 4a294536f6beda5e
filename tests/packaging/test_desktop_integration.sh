#!/usr/bin/env bash
# Installs the build into a private prefix and checks it as a desktop would use it: the layout,
# the first start from the installed data, --version without a display, the desktop entry, the
# AppStream metainfo, the file types (by content and by name), the manual pages and the shell
# completion. Environment (set by CTest): TM_SOURCE_DIR, TM_BUILD_DIR, TM_VERSION, and
# TM_SONG_CORPUS or TM_SONG_CORPUS_DEFAULT for the real songs.
set -euo pipefail

failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix
cmake --install "$TM_BUILD_DIR" --prefix "$prefix" >"$work/install.log"
share=$prefix/share
desktop=$(ls "$share"/applications/*.desktop)
metainfo=$(ls "$share"/metainfo/*.metainfo.xml)
mimexml=$(ls "$share"/mime/packages/*.xml)

# The installed layout.
for path in bin/tonalmancer bin/tonalmancer-cli \
    share/tonalmancer/default.ccl share/tonalmancer/default.crd share/tonalmancer/machines.ini \
    share/doc/tonalmancer/manual/index.html share/doc/tonalmancer/copyright \
    share/doc/tonalmancer/changelog.gz share/icons/hicolor/scalable/apps/tonalmancer.svg \
    share/man/man1/tonalmancer.1.gz share/man/man1/tonalmancer-cli.1.gz \
    share/bash-completion/completions/tonalmancer-cli; do
    [[ -e $prefix/$path ]] || fail "the installation lacks $path"
done
for size in 16 22 24 32 48 64 128 256; do
    png=$share/icons/hicolor/${size}x${size}/apps/tonalmancer.png
    file "$png" | grep -q "PNG image data, $size x $size," || fail "$png is not $size pixels square"
done

# First start from the installed data: the per-user folder is filled from share/tonalmancer,
# and a later start keeps what the user changed there.
export HOME=$work/home XDG_DATA_HOME=$work/home/.local/share XDG_CONFIG_HOME=$work/home/.config
user=$XDG_DATA_HOME/tonalmancer
out=$("$prefix/bin/tonalmancer-cli" find-chord --notes C,E,G,B) || fail "find-chord failed on first start"
[[ $out == *Cmaj7* ]] || fail "find-chord on first start printed: $out"
cmp -s "$share/tonalmancer/default.crd" "$user/default.crd" || fail "the user's folder was not filled"
printf 'Tonalmancer chord presets\n0\n' >"$user/default.ppr"
"$prefix/bin/tonalmancer-cli" types >/dev/null || fail "types failed on the second start"
[[ $(head -2 "$user/default.ppr") == $'Tonalmancer chord presets\n0' ]] ||
    fail "a second start overwrote the user's part presets"

# --version and --help answer without a display.
for program in tonalmancer tonalmancer-cli; do
    version=$(env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM "$prefix/bin/$program" --version) ||
        fail "$program --version failed"
    [[ $version == "$program $TM_VERSION" ]] || fail "$program --version printed: $version"
done
env -u DISPLAY -u QT_QPA_PLATFORM "$prefix/bin/tonalmancer" --help | grep -q -- "--data DIR" ||
    fail "tonalmancer --help does not describe --data"

# The desktop entry and the metainfo pass the validators; every file type is declared in the
# MIME definitions, the desktop entry and the metainfo alike.
complaints=$(desktop-file-validate "$desktop" 2>&1) || true
[[ -z $complaints ]] || fail "desktop-file-validate: $complaints"
appstreamcli validate --no-net "$metainfo" >"$work/appstream.log" ||
    { cat "$work/appstream.log" >&2; fail "appstreamcli rejects $metainfo"; }
grep -q '^Exec=tonalmancer %f$' "$desktop" || fail "the desktop entry does not pass the file"
grep -q '^Icon=tonalmancer$' "$desktop" || fail "the desktop entry does not name the icon"
types=$(grep -o 'mime-type type="[^"]*"' "$mimexml" | cut -d'"' -f2)
[[ $(wc -w <<<"$types") -eq 5 ]] || fail "expected five file types, found: $types"
for type in $types; do
    grep -q "^MimeType=.*$type;" "$desktop" || fail "the desktop entry does not open $type"
    grep -q "<mediatype>$type</mediatype>" "$metainfo" || fail "the metainfo lacks $type"
done

# The file types, recognised through a private MIME database as a file manager would.
mimehome=$work/mimehome
mkdir -p "$mimehome/mime/packages"
cp "$mimexml" "$mimehome/mime/packages/"
XDG_DATA_HOME=$mimehome update-mime-database "$mimehome/mime"
filetype() {
    env -u XDG_CURRENT_DESKTOP -u DE XDG_DATA_HOME="$mimehome" XDG_DATA_DIRS=/usr/share \
        xdg-mime query filetype "$1" 2>/dev/null
}
samples=$work/samples
mkdir -p "$samples"
data=$TM_SOURCE_DIR/data
printf 'not a song\n' >"$samples/renamed.BMW"
# file (copied from), name, type expected
while read -r source name expected; do
    cp "$source" "$samples/$name"
    got=$(filetype "$samples/$name")
    [[ $got == "$expected" ]] || fail "$name (from $(basename "$source")) is $got, not $expected"
done <<LIST
$data/default.crd chords-without-extension application/x-tonalmancer-chords
$data/default.spr patterns-without-extension application/x-tonalmancer-pattern-presets
$data/default.ppr parts-without-extension application/x-tonalmancer-part-presets
$data/default.ccl types-without-extension text/plain
$data/default.prt mine.prt application/x-tonalmancer-part
$data/default.bmx default.bmx audio/x-buzz-song
$samples/renamed.BMW renamed.bmw audio/x-buzz-song
LIST
corpus=${TM_SONG_CORPUS:-${TM_SONG_CORPUS_DEFAULT:-}}
song=$(ls "$corpus"/*.bmx 2>/dev/null | head -1 || true)
if [[ -n $song ]]; then
    cp "$song" "$samples/song-without-extension"
    got=$(filetype "$samples/song-without-extension")
    [[ $got == audio/x-buzz-song ]] || fail "$(basename "$song") read by content is $got"
else
    echo "SKIP: no song corpus in '$corpus'; the real-song check by content did not run"
fi

# The manual pages: every command of tonalmancer-cli is described.
cli_page=$(zcat "$share/man/man1/tonalmancer-cli.1.gz")
for command in $("$prefix/bin/tonalmancer-cli" --complete); do
    grep -qF ".SS ${command//-/\\-}" <<<"$cli_page" || fail "tonalmancer-cli(1) lacks $command"
done
zcat "$share/man/man1/tonalmancer.1.gz" | grep -q '^\.SH FILES' || fail "tonalmancer(1) lacks FILES"

# Bash completion: command names first, then the options of the command.
complete_words() {
    bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tonalmancer_cli
             printf "%s\n" "${COMPREPLY[@]}"' _ "$share/bash-completion/completions/tonalmancer-cli" "$@"
}
cli=$prefix/bin/tonalmancer-cli
[[ $(complete_words "$cli" find-) == $'find-chord\nfind-scale' ]] ||
    fail "completing 'find-' gave: $(complete_words "$cli" find-)"
complete_words "$cli" midi --pa | grep -qx -- --part || fail "completing 'midi --pa' misses --part"
[[ -z $(complete_words "$cli" midi de) ]] || fail "file names should be left to bash"

if [[ $failures -gt 0 ]]; then
    echo "$failures check(s) failed" >&2
    exit 1
fi
echo "desktop integration: all checks passed"
