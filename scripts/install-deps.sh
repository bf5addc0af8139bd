#!/usr/bin/env bash
# Installs the Debian 12 packages the project needs, only those that are missing.
#
# Without recommended packages: Aravis's would bring ModemManager,
# wpa_supplicant and avahi-daemon along and enable them as services. What the
# build, the tests, the demo and the Debian packages need is listed here:
#   building             cmake g++ make pkg-config qtbase5-dev qttools5-dev qttools5-dev-tools
#                        libaravis-dev libusb-1.0-0-dev (aravis-0.8.pc names libusb-1.0)
#   demo and tests       aravis-tools (arv-fake-gv-camera-0.8), aravis-tools-cli (arv-tool-0.8),
#                        xvfb xauth (tests in a real window), fonts-dejavu-core (text in windows and screenshots)
#   cpack -G DEB         dpkg-dev (dpkg-shlibdeps) file; lintian checks the packages
#   tests in a network namespace of their own   iproute2 (ip)
#   the I/O Monitor's dumps read by another tool   sigrok-cli
set -euo pipefail

packages=(cmake g++ make pkg-config qtbase5-dev qttools5-dev qttools5-dev-tools
          libaravis-dev aravis-tools aravis-tools-cli libusb-1.0-0-dev xvfb xauth fonts-dejavu-core
          dpkg-dev file lintian iproute2 sigrok-cli)
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
