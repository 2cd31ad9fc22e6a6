#!/usr/bin/env bash
# Builds Varnel for Windows and its setup program; prints where the setup program is.
# The setup program installs under Program Files with a Start-menu entry and an uninstaller.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir="${1:-build}"
./scripts/install-deps.sh
./scripts/build.sh "$build_dir"
setup=$(ls "$build_dir"/win-app/Varnel-*-setup.exe)
echo "Windows setup program: $setup"
