#!/usr/bin/env bash
# Takes the screenshots of the manual: starts the desktop program on a virtual X display (Xvfb)
# with a copy of the shipped data, opens the main window and each dialog, and saves them as PNG.
#   tools/screenshot.sh [BUILD_DIR] [OUTPUT_DIR]      (defaults: build/dev, docs/images)
set -euo pipefail

BUILD_DIR=${1:-build/dev}
OUTPUT_DIR=${2:-docs/images}
TOOL="$BUILD_DIR/bin/tonalmancer-screenshots"
if [[ ! -x "$TOOL" ]]; then
    echo "Build the target tonalmancer-screenshots first: cmake --build $BUILD_DIR --target tonalmancer-screenshots" >&2
    exit 1
fi
command -v Xvfb >/dev/null || { echo "Xvfb is missing: tools/install-deps.sh installs it" >&2; exit 1; }

# A free display number.
DISPLAY_NUMBER=99
while [[ -e /tmp/.X${DISPLAY_NUMBER}-lock ]]; do
    DISPLAY_NUMBER=$((DISPLAY_NUMBER + 1))
done

WORK=$(mktemp -d)
Xvfb ":$DISPLAY_NUMBER" -screen 0 1600x1000x24 -nolisten tcp >/dev/null 2>&1 &
XVFB_PID=$!
trap 'kill "$XVFB_PID" 2>/dev/null || true; rm -rf "$WORK"' EXIT
for _ in $(seq 50); do
    [[ -e /tmp/.X11-unix/X$DISPLAY_NUMBER ]] && break
    sleep 0.1
done

# The program's own data, copied so that its settings file is written there and not in the build.
mkdir -p "$WORK/data" "$WORK/home" "$OUTPUT_DIR"
cp "$BUILD_DIR"/bin/default.* "$BUILD_DIR"/bin/machines.ini "$WORK/data/" 2>/dev/null || true

# The built-in synth plays into a file: the virtual display has no sound card beside it.
DISPLAY=":$DISPLAY_NUMBER" QT_QPA_PLATFORM=xcb HOME="$WORK/home" XDG_RUNTIME_DIR="$WORK" \
    TONALMANCER_SYNTH_WAV="$WORK/playing.wav" \
    "$TOOL" "$OUTPUT_DIR" --data "$WORK/data"
echo "Screenshots are in $OUTPUT_DIR"
