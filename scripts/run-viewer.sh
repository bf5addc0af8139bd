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
#   MODELS=cameras/line-camera.xml,cameras/syncout-camera.xml scripts/run-viewer.sh
#
# MODELS serves each model as a camera of its own (serial number TIORIG1,
# TIORIG2, ...) on its own loopback address, 127.0.0.2, 127.0.0.3, ..., in a
# private network namespace (unshare -n: root, or unprivileged user namespaces)
# where the viewer opens them all in one window.
#   VIEWER=build/bin/triggerio-viewer scripts/run-viewer.sh   (that viewer, no set-up, no build)
#
# Relative paths (MODEL, VIEWER, SCREENSHOT and the viewer's arguments such as
# --camera fake:FILE.xml) are taken from the folder the script is run from.
set -euo pipefail
here=$PWD
viewer=${VIEWER:+$(realpath "$VIEWER")}
shot=$(realpath -m "${SCREENSHOT:-$(dirname "$0")/../build/triggerio-viewer.png}")
model=$(realpath -m "${MODEL:-$(dirname "$0")/../cameras/line-camera.xml}")
models=()
if [ -n "${MODELS:-}" ]; then
    IFS=, read -ra given <<< "$MODELS"
    for one in "${given[@]}"; do models+=("$(realpath -m "$one")"); done
fi
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

# Several models: this script again, in a network namespace of its own.
if [ "${#models[@]}" -gt 0 ] && [ "$camera_given" = no ] && [ -z "${RUN_VIEWER_NETWORK:-}" ]; then
    namespace=(unshare -n)
    [ "$(id -u)" = 0 ] || namespace=(unshare -rn)
    "${namespace[@]}" true 2> /dev/null ||
        { echo "run-viewer.sh: MODELS needs a network namespace of its own (unshare -n), not allowed here" >&2; exit 2; }
    cd "$here"
    exec "${namespace[@]}" env RUN_VIEWER_NETWORK=1 VIEWER="$viewer" SCREENSHOT="$shot" \
        MODELS="$(IFS=,; echo "${models[*]}")" "$0" "$@"
fi

servers=()
viewer_pid=""
cleanup() {
    if [ -n "$viewer_pid" ]; then kill "$viewer_pid" 2> /dev/null || true; fi
    for server in "${servers[@]}"; do
        kill "$server" 2> /dev/null || true
        wait "$server" 2> /dev/null || true
    done
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM HUP

# Serves a model on an address, the serial number given (or the server's own).
serve() {
    local model=$1 address=$2 serial=$3
    [ -f "$model" ] || { echo "run-viewer.sh: no model file $model" >&2; exit 2; }
    # The server dies with this script, however it ends.
    setpriv --pdeathsig TERM arv-fake-gv-camera-0.8 -i "$address" ${serial:+-s "$serial"} -g "$model" > /dev/null 2>&1 &
    servers+=($!)
    echo "Serving $model as a GigE Vision camera on $address"
    # Small frames cross the loopback whole; without a display the trigger is
    # set to Software so that the screenshot shows a triggered frame.
    settings=(Width=64 Height=64)
    [ "$display" = no ] && settings+=(TriggerSelector=FrameStart TriggerMode=On TriggerSource=Software)
    for _ in $(seq 50); do
        if arv-tool-0.8 -a "$address" control "${settings[@]}" 2> /dev/null | grep -q "Height = 64"; then
            break
        fi
        kill -0 "${servers[-1]}" 2> /dev/null || { echo "run-viewer.sh: the camera server ended" >&2; exit 2; }
        sleep 0.2
    done
    arguments=(--camera "$address" "${arguments[@]}")
}

if [ "$camera_given" = no ] && [ -n "${RUN_VIEWER_NETWORK:-}" ]; then
    ip link set lo up
    # The last one served comes first in the arguments: serve them backwards.
    for ((i = ${#models[@]} - 1; i >= 0; i--)); do
        ip addr add "127.0.0.$((i + 2))/8" dev lo
        serve "${models[i]}" "127.0.0.$((i + 2))" "TIORIG$((i + 1))"
    done
elif [ "$camera_given" = no ]; then
    serve "$model" 127.0.0.1 ""
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
