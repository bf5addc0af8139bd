#!/usr/bin/env bash
# Sets up a Debian 12 machine for the project (only what is missing), builds it
# in Release and runs every test.
#   scripts/build-and-test.sh [BUILD_DIR] [extra cmake arguments...]
set -euo pipefail
cd "$(dirname "$0")/.."

build_dir=${1:-build}
shift || true

packages=(cmake g++ make pkg-config qtbase5-dev qttools5-dev qttools5-dev-tools
          libaravis-dev aravis-tools aravis-tools-cli libusb-1.0-0-dev xvfb xauth)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq "${missing[@]}"
fi

cmake -S . -B "$build_dir" -DCMAKE_BUILD_TYPE=Release "$@"
cmake --build "$build_dir" -j"$(nproc)"
cd "$build_dir"
ctest --output-on-failure -j"$(nproc)"
