#!/bin/sh
# SPDX-License-Identifier: MIT
# busybox telnetd on a free port of 127.0.0.1; see serve.sh for output, end and exit codes.
# Usage: busybox_telnetd.sh                a login: user "visitor", password "warehouse7"
#        busybox_telnetd.sh -E PROGRAM     PROGRAM instead of the login, run as root
set -eu
here=$(cd "$(dirname "$0")" && pwd)
"$here/unpack.sh" busybox-static vttest >/dev/null || exit $?

case ${1:-} in
    '') program=/bin/login ;;
    -E) program=${2:?a program} ;;
    *) echo "usage: busybox_telnetd.sh [-E PROGRAM]" >&2; exit 2 ;;
esac
exec "$here/serve.sh" "/mnt/peers/bin/busybox telnetd -i -K -f /dev/null -l $program"
