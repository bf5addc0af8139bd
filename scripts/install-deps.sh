#!/usr/bin/env bash
# Installs the Debian 12 packages the project needs, only those that are missing.
set -euo pipefail

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
