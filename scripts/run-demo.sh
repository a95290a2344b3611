#!/usr/bin/env bash
# Runs the order-entry demo on its database in the build directory (made on the first
# run, reused afterwards). Without a display it renders offscreen and plays a scripted
# session: a picture per step in <build>/velmora-demo-steps, exit status 0 only when every
# step did what it should.
set -euo pipefail
cd "$(dirname "$0")/.."
BUILD=${1:-build}
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  export QT_QPA_PLATFORM=offscreen
fi
exec "$BUILD/apps/demo/velmora-demo" --data "$BUILD" --steps "$BUILD/velmora-demo-steps"
