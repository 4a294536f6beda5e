#!/usr/bin/env bash
# Regenerates data/default.crd from data/default.ccl and data/default.scl: "Generate List" over
# the shipped chord types plus the base group "Scales" of the shipped database. Run it after
# changing either file; a unit test fails while the shipped database is stale. The build target
# regenerate-defaults runs it together with the writer of the default part and presets.
#   tools/make-default-crd.sh [path/to/tonalmancer-cli]
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
cli="${1:-$root/build/dev/bin/tonalmancer-cli}"
if [[ ! -x "$cli" ]]; then
    echo "make-default-crd: build the command-line program first (or pass its path): $cli" >&2
    exit 1
fi
"$cli" generate --types "$root/data/default.ccl" --scales "$root/data/default.scl" \
    --default-scale-groups -o "$root/data/default.crd"
echo "Wrote $root/data/default.crd"
