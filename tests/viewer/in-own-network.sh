#!/bin/sh
# Runs a test in a network namespace of its own, with only the loopback
# interface up, so that its fake GigE Vision cameras share port 3956 with no
# other run on this machine. 127.0.0.2 and 127.0.0.3 are the interface's too:
# a camera served on each is found by discovery, as two cameras of a rig. Where namespaces are not allowed (no privilege),
# the test runs as it is and says so.
if unshare -n true 2>/dev/null && command -v ip >/dev/null; then
    exec unshare -n sh -c 'ip link set lo up && ip addr add 127.0.0.2/8 dev lo && ip addr add 127.0.0.3/8 dev lo &&
        exec "$0" "$@"' "$@"
fi
echo "in-own-network: no network namespace here; running on the shared loopback interface" >&2
exec "$@"
