#!/usr/bin/env bash
# Runs every fuzzer built in a fuzz build folder for a short while and fails on any finding.
#
#   tools/fuzz-smoke.sh [BUILD_DIR] [SECONDS]
#
# BUILD_DIR defaults to build/fuzz (the "fuzz" preset), SECONDS to 30 per fuzzer. Each fuzzer
# starts from a fresh corpus: a few tiny made-up files, the files of fuzz/seeds/<fuzzer>/ when
# that folder exists, and for the song fuzzers the songs of $TM_SONG_CORPUS (or ../shared/songs).
# Crashes, leaks, timeouts and out-of-memory inputs are kept in BUILD_DIR/fuzz-findings/.
set -u
SOURCE_DIR="$(cd "$(dirname "$0")/.." && pwd)"
BUILD_DIR="${1:-$SOURCE_DIR/build/fuzz}"
SECONDS_EACH="${2:-${FUZZ_SECONDS:-30}}"
SONGS="${TM_SONG_CORPUS:-${TM_SONG_CORPUS_DEFAULT:-$SOURCE_DIR/../shared/songs}}"

shopt -s nullglob
fuzzers=("$BUILD_DIR"/bin/fuzz_*)
if [ ${#fuzzers[@]} -eq 0 ]; then
    echo "fuzz-smoke: no fuzzers in $BUILD_DIR/bin (build the \"fuzz\" preset first)" >&2
    exit 1
fi

FINDINGS="$BUILD_DIR/fuzz-findings"
mkdir -p "$FINDINGS"
WORK="$(mktemp -d)"
trap 'rm -rf "$WORK"' EXIT

failed=0
for fuzzer in "${fuzzers[@]}"; do
    [ -x "$fuzzer" ] || continue
    name="$(basename "$fuzzer")"
    corpus="$WORK/$name"
    mkdir -p "$corpus"
    # Tiny made-up inputs: empty, a bare magic, a header with an empty directory.
    printf '' >"$corpus/empty"
    printf 'Buzz' >"$corpus/magic"
    { printf 'Buzz\001\000\000\000CONN'; printf '\174\001\000\000\002\000\000\000'; head -c 360 /dev/zero; printf '\000\000'; } >"$corpus/header"
    if [ -d "$SOURCE_DIR/fuzz/seeds/$name" ]; then
        cp "$SOURCE_DIR/fuzz/seeds/$name"/* "$corpus"/ 2>/dev/null
    fi
    case "$name" in
    fuzz_song_*)
        for song in "$SONGS"/*.bmx "$SONGS"/*.bmw; do cp "$song" "$corpus"/; done
        ;;
    esac
    echo "fuzz-smoke: $name for ${SECONDS_EACH}s on $(ls "$corpus" | wc -l) seeds"
    if ! "$fuzzer" -max_total_time="$SECONDS_EACH" -timeout=10 -rss_limit_mb=2048 \
        -max_len=262144 -print_final_stats=1 -artifact_prefix="$FINDINGS/$name-" \
        "$corpus" >"$WORK/$name.log" 2>&1; then
        echo "fuzz-smoke: $name FOUND A PROBLEM; input(s) in $FINDINGS:" >&2
        grep -E "ERROR|SUMMARY|Test unit written" "$WORK/$name.log" >&2
        tail -n 40 "$WORK/$name.log" >&2
        failed=1
    else
        grep -E "stat::number_of_executed_units" "$WORK/$name.log" | sed "s/^/  /"
    fi
done
exit $failed
