#!/usr/bin/env bash
# Runs the demo form; without a display it renders offscreen and writes a PNG.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build}
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  export QT_QPA_PLATFORM=offscreen
fi
exec "$BUILD/apps/demo/velmora-demo" --png "$BUILD/velmora-demo.png"
