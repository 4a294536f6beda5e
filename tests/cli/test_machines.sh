#!/usr/bin/env bash
# End-to-end checks of scan-gear, scan-dll and dll-info, run as a user would.
# Usage: test_machines.sh /path/to/tonalmancer-cli
set -u
cli="$1"
build="$(cd "$(dirname "$cli")/.." && pwd)"
gear="$build/tests/song/gear"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
failures=0

fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

# expect_run EXIT_CODE EXPECTED_STDERR -- command...
expect_run() {
    local code="$1" message="$2"
    shift 3
    "$@" >"$work/out" 2>"$work/err"
    local got=$?
    [ "$got" = "$code" ] || fail "$* exited $got, expected $code"
    if [ -n "$message" ] && [ "$(cat "$work/err")" != "$(printf '%b' "$message")" ]; then
        fail "$* printed '$(cat "$work/err")'"
    fi
}

# A gear directory without DLLs: the built-in entries, counted as three.
mkdir -p "$work/empty/generators" "$work/data"
expect_run 0 "" -- "$cli" scan-gear "$work/empty" --data "$work/data"
[ "$(cat "$work/out")" = "OK" ] || fail "scan-gear did not print OK"
[ "$(head -n 1 "$work/data/machines.ini")" = "3" ] || fail "count line of an empty scan is not 3"
[ "$(grep -c '^Jeskola' "$work/data/machines.ini")" = "4" ] || fail "built-in entries missing"
[ ! -e "$work/data/tmpmach.nam" ] || fail "tmpmach.nam left behind"

# Failures carry the program's messages and exit 1; the database stays as it was.
cp "$work/data/machines.ini" "$work/before.ini"
mkdir -p "$work/other" "$work/gear/generators"
echo "plain text" >"$work/other/fake.dll"
echo "plain text" >"$work/gear/generators/fake.dll"
expect_run 1 'Error:\nSorry, but the parentfolder must be ..\\effects or ..\\generators' -- \
    "$cli" scan-dll "$work/other/fake.dll" --data "$work/data"
expect_run 1 'Error:\nUnable to load library\nmaybe it is no dynamic link library' -- \
    "$cli" scan-dll "$work/gear/generators/fake.dll" --data "$work/data"
expect_run 1 'Error:\nUnable to load library\nmaybe it is no dynamic link library' -- \
    "$cli" dll-info "$work/gear/generators/fake.dll"
cmp -s "$work/before.ini" "$work/data/machines.ini" || fail "a failed scan changed machines.ini"
expect_run 1 "" -- "$cli" scan-gear "$work/no-such-folder" --data "$work/data"
expect_run 2 "" -- "$cli" dll-info
expect_run 2 "" -- "$cli" scan-dll a.dll b.dll

# Learning the machines of a real song from its own parameter descriptions.
songs="${TM_SONG_CORPUS:-${TM_SONG_CORPUS_DEFAULT:-}}"
song="$songs/bm_Elak_SVF_Elak_SVF.bmx"
if [ -f "$song" ]; then
    mkdir -p "$work/learn"
    expect_run 0 "" -- "$cli" learn-machines "$song" --data "$work/learn"
    grep -q '^created machines.ini' "$work/out" || fail "learn-machines did not start a fresh machines.ini"
    grep -q '^learned	Jeskola Bass	' "$work/out" || fail "learn-machines did not learn Jeskola Bass"
    [ "$(head -n 1 "$work/learn/machines.ini")" = "5" ] || fail "count after learning two machines is not 5"
    cp "$work/learn/machines.ini" "$work/learned.ini"
    expect_run 0 "" -- "$cli" learn-machines "$song" --data "$work/learn"
    [ "$(cat "$work/out")" = "every machine of the song is known" ] || fail "second learn-machines learned again"
    cmp -s "$work/learned.ini" "$work/learn/machines.ini" || fail "learning known machines changed machines.ini"
else
    echo "song corpus not found (set TM_SONG_CORPUS): learn-machines checks skipped"
fi

if [ ! -d "$gear/generators" ]; then
    echo "test machine DLLs not built (build song_tests with mingw-w64 installed): DLL checks skipped"
    [ "$failures" = 0 ] || exit 1
    exit 77
fi

# The generator built four ways describes itself the same way each time.
for build_kind in 32O0 32O2 64O0 64O2; do
    expect_run 0 "" -- "$cli" dll-info "$gear/generators/TestGen$build_kind.dll"
    grep -q '^Row sizes:   global 4, track 1 (bytes)$' "$work/out" || fail "row sizes of TestGen$build_kind"
    grep -q "^3	track	0 note	1	0	0	1	156	Note$" "$work/out" || fail "note parameter of TestGen$build_kind"
done

# A full scan, then scanning a DLL it already holds: the file stays byte for byte the same.
mkdir -p "$work/data2"
expect_run 0 "" -- "$cli" scan-gear "$gear" --data "$work/data2" --list
[ "$(grep -c '^added' "$work/out")" = "8" ] || fail "scan-gear did not add the eight test DLLs"
[ "$(head -n 1 "$work/data2/machines.ini")" = "11" ] || fail "count line after a full scan is not 11"
cp "$work/data2/machines.ini" "$work/scanned.ini"
expect_run 0 "" -- "$cli" scan-dll "$gear/generators/TestGen32O0.dll" --data "$work/data2"
grep -q '^already known' "$work/out" || fail "scan-dll of a known DLL did not say so"
cmp -s "$work/scanned.ini" "$work/data2/machines.ini" || fail "scanning a known DLL changed machines.ini"

# A new DLL from a folder named "Generators" goes first and raises the count by one.
mkdir -p "$work/gear2/Generators"
cp "$gear/generators/TestGen32O2.dll" "$work/gear2/Generators/Fresh.dll"
expect_run 0 "" -- "$cli" scan-dll "$work/gear2/Generators/Fresh.dll" --data "$work/data2"
[ "$(sed -n 1,3p "$work/data2/machines.ini" | tr '\n' ' ')" = "12 Fresh TestGen " ] ||
    fail "the scanned DLL is not the first entry"

[ "$failures" = 0 ]
