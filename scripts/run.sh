#!/usr/bin/env bash
# Installs what is needed, builds, and starts Varnel from its staged install folder.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
./scripts/build.sh build
cd build/stage
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  display=":${VARNEL_XVFB_DISPLAY:-77}"
  echo "No display found: starting a virtual one ($display) for Varnel."
  echo "To see the window, from another shell:"
  echo "  DISPLAY=$display import -window root /tmp/varnel.png   # a screenshot"
  Xvfb "$display" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
  xvfb_pid=$!
  trap 'kill $xvfb_pid 2>/dev/null || true' EXIT
  sleep 1
  export DISPLAY="$display"
fi
./varnel
