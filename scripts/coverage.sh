#!/usr/bin/env bash
# Line coverage of the program by the Linux test suite: a separate --coverage build in
# build-coverage/ (or $1), every Linux test run once, then gcovr over the program's own
# sources (tests, benchmark and generated files left out). Prints gcovr's summary.
# Slow (a full unoptimised build and a test run): not part of the test command.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir="${1:-build-coverage}"
if ! command -v gcovr > /dev/null; then
  sudo_cmd=()
  [ "$(id -u)" -ne 0 ] && sudo_cmd=(sudo)
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends gcovr
fi
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
  -DCMAKE_CXX_FLAGS=--coverage -DCMAKE_C_FLAGS=--coverage \
  -DVARNEL_WINDOWS_LANE=OFF -DVARNEL_SANITIZER_LANE=OFF \
  -DVARNEL_CCACHE=OFF # coverage notes hold absolute paths: no shared cache
cmake --build "$build_dir" -j"${VARNEL_JOBS:-2}"
find "$build_dir" -name '*.gcda' -delete
ctest --test-dir "$build_dir" -j"${VARNEL_JOBS:-2}" --output-on-failure || true
gcovr --root . --object-directory "$build_dir" \
  --exclude 'tests/' --exclude 'bench/' --exclude "$build_dir/" \
  --gcov-ignore-parse-errors --print-summary -o "$build_dir/coverage.txt"
