#!/usr/bin/env bash
# Installs the Debian packages listed in tools/debian-packages.txt that are not installed yet.
# Uses sudo when not run as root. Does nothing when everything is already there. Needs nothing but
# bash, coreutils, grep, dpkg and apt-get, so it is the first command on a fresh machine, before
# `make` itself is installed.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
list="$here/debian-packages.txt"

missing=()
while read -r pkg; do
    pkg=${pkg%%#*}
    pkg=$(echo "$pkg" | tr -d '[:space:]')
    [ -n "$pkg" ] || continue
    if ! dpkg -s "$pkg" 2>/dev/null | grep -q '^Status: install ok installed'; then
        missing+=("$pkg")
    fi
done <"$list"

[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "install-deps: installing ${missing[*]} needs root: run this as root, or install sudo" >&2
        exit 1
    fi
    sudo="sudo"
fi
echo "Installing missing packages: ${missing[*]}"
$sudo apt-get update -qq
# jackd2 asks about real-time priority; take the default without a prompt.
$sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
