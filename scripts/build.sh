#!/usr/bin/env bash
# Configures and builds into build/ (or $1). The install folder is staged in <build>/stage.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir="${1:-build}"
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build "$build_dir" -j"${VARNEL_JOBS:-2}"
