#!/usr/bin/env bash
# Installs what is needed, builds, and runs every test, the Windows lane under Wine included.
set -euo pipefail
cd "$(dirname "$0")/.."
./scripts/install-deps.sh
./scripts/build.sh build
ctest --test-dir build -j"${VARNEL_JOBS:-2}" --output-on-failure --timeout 600
