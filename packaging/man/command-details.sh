#!/usr/bin/env bash
# Writes the "COMMANDS IN DETAIL" section of tonalmancer-cli(1) as a help2man include file: the
# program's own usage text of every command, so that the manual page never drifts from it.
#   command-details.sh PATH/TO/tonalmancer-cli OUTPUT
set -euo pipefail
cli=$1
out=$2

# Verbatim text in roff: escape backslashes and minus signs, and keep lines that start with a
# dot or an apostrophe from being read as requests.
roff() {
    sed -e 's/\\/\\e/g' -e 's/-/\\-/g' -e "s/^\\([.']\\)/\\\\\\&\\1/"
}

{
    echo "[COMMANDS IN DETAIL]"
    "$cli" --complete | while read -r command; do
        echo ".SS $(roff <<<"$command")"
        echo ".nf"
        "$cli" "$command" --help | roff
        echo ".fi"
    done
} >"$out.tmp"
mv "$out.tmp" "$out"
