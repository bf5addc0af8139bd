#!/usr/bin/env bash
# Sets up a Debian 12 machine for the project (only what is missing), builds it
# in Release and runs every test.
#   scripts/build-and-test.sh [BUILD_DIR] [extra cmake arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir=${1:-build}
shift || true

scripts/install-deps.sh
cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=Release "$@"
cmake --build "$build_dir" -j"$(nproc)"
cd "$build_dir"
ctest --output-on-failure -j"$(nproc)"
