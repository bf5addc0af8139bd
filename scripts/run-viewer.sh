#!/usr/bin/env bash
# Sets up a Debian 12 machine (only what is missing), builds the project and
# starts the viewer.
#
# Without --camera it serves the line-family demo model (or MODEL) as a GigE
# Vision camera on the loopback interface and opens that, so that triggers work
# as on a real camera: with Trigger Mode "On" and source "Software" every press
# of "SW Trigger" brings one frame. The server stops when the viewer ends.
#
# Without a display it acquires, fires one software trigger (on the served
# model with the trigger set to Software) and writes a screenshot instead, and
# says where (SCREENSHOT, default build/triggerio-viewer.png).
#
#   scripts/run-viewer.sh [viewer arguments...]   e.g. --camera fake:cameras/syncout-camera.xml
#   MODEL=cameras/routing-camera.xml scripts/run-viewer.sh
#   VIEWER=build/bin/triggerio-viewer scripts/run-viewer.sh   (that viewer, no set-up, no build)
#
# Relative paths (MODEL, VIEWER, SCREENSHOT and the viewer's arguments such as
# --camera fake:FILE.xml) are taken from the folder the script is run from.
set -euo pipefail
here=$PWD
viewer=${VIEWER:+$(realpath "$VIEWER")}
shot=$(realpath -m "${SCREENSHOT:-$(dirname "$0")/../build/triggerio-viewer.png}")
model=$(realpath -m "${MODEL:-$(dirname "$0")/../cameras/line-camera.xml}")
cd "$(dirname "$0")/.."

if [ -z "$viewer" ]; then
    scripts/install-deps.sh
    cmake -S . -B build -DCMAKE_BUILD_TYPE=Release
    cmake --build build -j"$(nproc)" --target triggerio-viewer
    viewer=$PWD/build/bin/triggerio-viewer
fi

display=no
if [ -n "${DISPLAY:-}" ] || [ -n "${WAYLAND_DISPLAY:-}" ]; then
    display=yes
fi

arguments=("$@")
camera_given=no
for argument in "$@"; do
    case $argument in --camera | --camera=* | --list | -h | --help | --help-all | -v | --version) camera_given=yes ;; esac
done

server=""
viewer_pid=""
cleanup() {
    if [ -n "$viewer_pid" ]; then kill "$viewer_pid" 2> /dev/null || true; fi
    if [ -n "$server" ]; then
        kill "$server" 2> /dev/null || true
        wait "$server" 2> /dev/null || true
    fi
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

if [ "$camera_given" = no ]; then
    [ -f "$model" ] || { echo "run-viewer.sh: no model file $model" >&2; exit 2; }
    # The server dies with this script, however it ends.
    setpriv --pdeathsig TERM arv-fake-gv-camera-0.8 -i 127.0.0.1 -g "$model" > /dev/null 2>&1 &
    server=$!
    echo "Serving $model as a GigE Vision camera on 127.0.0.1"
    # Small frames cross the loopback whole; without a display the trigger is
    # set to Software so that the screenshot shows a triggered frame.
    settings=(Width=64 Height=64)
    [ "$display" = no ] && settings+=(TriggerSelector=FrameStart TriggerMode=On TriggerSource=Software)
    for _ in $(seq 50); do
        if arv-tool-0.8 -a 127.0.0.1 control "${settings[@]}" 2> /dev/null | grep -q "Height = 64"; then
            break
        fi
        kill -0 "$server" 2> /dev/null || { echo "run-viewer.sh: the camera server ended" >&2; exit 2; }
        sleep 0.2
    done
    arguments=(--camera 127.0.0.1 "${arguments[@]}")
fi

if [ "$display" = no ]; then
    echo "No display: acquiring, one software trigger, then a screenshot to $shot"
    export QT_QPA_PLATFORM=offscreen
    arguments+=(--acquire --trigger-software --screenshot "$shot")
fi
# The viewer resolves its relative arguments against its working folder.
cd "$here"
"$viewer" "${arguments[@]}" &
viewer_pid=$!
status=0
wait "$viewer_pid" || status=$?
viewer_pid=""
exit "$status"
