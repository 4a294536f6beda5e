#!/usr/bin/env bash
# Builds the Debian package as `make package` does (preset "package", a Release build of its own),
# unpacks it into a temporary root and runs the programs from there against the installed data;
# lintian must report no errors. Environment (set by CTest): TM_SOURCE_DIR, TM_VERSION.
set -euo pipefail

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$TM_SOURCE_DIR"
if ! { cmake --preset package && cmake --build --preset package -j2 --target package; } \
    >"$work/build.log" 2>&1; then
    tail -40 "$work/build.log" >&2
    echo "FAIL: the package did not build" >&2
    exit 1
fi
deb=build/package/tonalmancer_${TM_VERSION}_amd64.deb
[[ -f $deb ]] || { echo "FAIL: $deb was not made" >&2; exit 1; }

failures=0
fail() {
    echo "FAIL: $*" >&2
    failures=$((failures + 1))
}

# Dependencies: the libraries the programs link (from shlibdeps) and what they load at run time.
depends=$(dpkg-deb --field "$deb" Depends)
for needed in libqt6widgets6 libfluidsynth3 librtmidi6 qt6-qpa-plugins \
    "timgm6mb-soundfont | fluid-soundfont-gm"; do
    [[ $depends == *"$needed"* ]] || fail "Depends lacks $needed: $depends"
done

root=$work/root
dpkg-deb --extract "$deb" "$root"
for program in tonalmancer tonalmancer-cli; do
    version=$(env -u DISPLAY -u QT_QPA_PLATFORM "$root/usr/bin/$program" --version) ||
        fail "$program --version failed"
    [[ $version == "$program $TM_VERSION" ]] || fail "$program --version printed: $version"
done

# A first session against the installed data layout (usr/share/tonalmancer beside usr/bin).
export HOME=$work/home XDG_DATA_HOME=$work/home/.local/share
out=$("$root/usr/bin/tonalmancer-cli" find-chord --notes C,E,G,B) || fail "find-chord failed"
[[ $out == *Cmaj7* ]] || fail "find-chord printed: $out"
"$root/usr/bin/tonalmancer-cli" midi --part "$XDG_DATA_HOME/tonalmancer/default.prt" \
    -o "$work/demo.mid" || fail "midi failed"
[[ $(head -c 4 "$work/demo.mid" 2>/dev/null) == MThd ]] || fail "midi wrote no MIDI file"

complaints=$(desktop-file-validate "$root"/usr/share/applications/*.desktop 2>&1) || true
[[ -z $complaints ]] || fail "desktop-file-validate: $complaints"
appstreamcli validate --no-net "$root"/usr/share/metainfo/*.xml >/dev/null ||
    fail "appstreamcli rejects the metainfo"

# lintian: errors fail, warnings are listed.
if ! lintian --fail-on error --tag-display-limit 0 "$deb" >"$work/lintian.log" 2>&1; then
    cat "$work/lintian.log" >&2
    fail "lintian reports errors"
else
    grep -E '^[WEI]:' "$work/lintian.log" || true
fi

if [[ $failures -gt 0 ]]; then
    echo "$failures check(s) failed" >&2
    exit 1
fi
echo "package $deb: all checks passed"
