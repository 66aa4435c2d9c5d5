#!/bin/sh
# SPDX-License-Identifier: MIT
# inetutils telnetd on a free port of 127.0.0.1; see serve.sh for output, end and exit codes.
# Usage: telnetd.sh                a login: user "visitor", password "warehouse7"
#        telnetd.sh -E PROGRAM     PROGRAM instead of the login, run as root
set -eu
here=$(cd "$(dirname "$0")" && pwd)
"$here/unpack.sh" inetutils-telnetd vttest >/dev/null || exit $?

case ${1:-} in
    '') command="/mnt/peers/usr/sbin/telnetd -h" ;;
    -E) command="/mnt/peers/usr/sbin/telnetd -h -E ${2:?a program}" ;;
    *) echo "usage: telnetd.sh [-E PROGRAM]" >&2; exit 2 ;;
esac
exec "$here/serve.sh" "$command"
