#!/bin/bash
# The README's "Getting started" on a fresh minimal Debian 12, where not even make is installed:
# its first command must run from a plain shell and install make with everything else, and the
# commands after it are the make targets. The fresh machine is simulated: a PATH without make, a
# dpkg that reports nothing installed, and an apt-get and sudo that record what they are asked.
# Usage: test_getting_started.sh [ignored]
set -u
root="${TM_SOURCE_DIR:-$(cd "$(dirname "$0")/../.." && pwd)}"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# The indented command lines of the section, in order.
mapfile -t commands < <(sed -n '/^## Getting started/,/^## /p' "$root/README.md" | sed -n 's/^    //p')
[ ${#commands[@]} -ge 2 ] || { echo "FAIL: no commands under Getting started"; exit 1; }

bin="$work/bin"
mkdir -p "$bin"
for tool in bash env cat grep sed tr dirname id; do
    ln -s "$(command -v "$tool")" "$bin/$tool"
done
printf '#!/bin/sh\nexit 1\n' >"$bin/dpkg"
printf '#!/bin/sh\necho "$@" >>"%s/apt.log"\n' "$work" >"$bin/apt-get"
printf '#!/bin/sh\nexec "$@"\n' >"$bin/sudo"
chmod +x "$bin/dpkg" "$bin/apt-get" "$bin/sudo"

first="${commands[0]}"
(cd "$root" && PATH="$bin" bash -c "$first") >"$work/out" 2>&1 ||
    fail "\"$first\" failed on a machine without make: $(tail -1 "$work/out")"
grep -q "not found" "$work/out" && fail "\"$first\" needs a missing command: $(cat "$work/out")"
grep -qE '^install .*(^| )make( |$)' "$work/apt.log" 2>/dev/null ||
    fail "\"$first\" does not install make: $(cat "$work/apt.log" 2>/dev/null)"
for command in "${commands[@]:1}"; do
    [ "${command%% *}" = make ] || fail "after the first step, \"$command\" is not a make target"
done

[ "$failures" -eq 0 ] && echo "getting started works on a machine without make"
exit $((failures > 0))
