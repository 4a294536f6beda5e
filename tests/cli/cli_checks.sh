# Shared by the command-line checks that run the program the way a user would (sourced, not run):
# a scratch folder $WORK with an empty data folder $DATA, removed at exit, and the helpers below.
# $RUN_EXTRA holds arguments `run` appends to every command (e.g. --data "$DATA").
WORK="$(mktemp -d)"
trap 'rm -rf "$WORK"' EXIT
DATA="$WORK/data"
mkdir -p "$DATA"
failures=0
RUN_EXTRA=()

fail() {
    echo "FAIL: $*"
    failures=$((failures + 1))
}

# run EXPECTED_EXIT ARGS...: runs the program, keeps stdout and stderr in $WORK/out and $WORK/err.
# Every failure of the program says why on stderr. Under Wine a short run now and then comes back
# failing with nothing on stderr (Wine's doing: the same run succeeds on its own): such a run is
# made once more, with a note.
run() {
    local expected="$1"
    shift
    local status attempt
    for attempt in 1 2; do
        "$CLI" "$@" ${RUN_EXTRA[@]+"${RUN_EXTRA[@]}"} >"$WORK/out" 2>"$WORK/err"
        status=$?
        if [ -n "${TM_UNDER_WINE:-}" ] && [ "$attempt" -eq 1 ] && [ "$status" -ne 0 ] &&
            [ ! -s "$WORK/err" ]; then
            echo "note: under Wine '$*' exited $status with nothing on stderr; run again"
            continue
        fi
        break
    done
    if [ "$status" -ne "$expected" ]; then
        fail "'$*' exited $status, expected $expected; stderr: $(cat "$WORK/err")"
    fi
}

expect_in() { grep -qF -- "$2" "$WORK/$1" || fail "$1 lacks '$2': $(head -c 400 "$WORK/$1")"; }
expect_not_in() { ! grep -qF -- "$2" "$WORK/$1" || fail "$1 holds '$2'"; }

# finish [WHAT]: exits failing when any check failed, else says that WHAT passed (when given).
finish() {
    if [ "$failures" -ne 0 ]; then
        echo "$failures check(s) failed"
        exit 1
    fi
    [ -z "${1:-}" ] || echo "$1: all checks passed"
}
