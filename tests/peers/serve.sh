#!/bin/sh
# SPDX-License-Identifier: MIT
# Serves a command, inetd style, on a free port of 127.0.0.1, in private name spaces: a temporary copy
# of /etc with the user "visitor" (password "warehouse7", shell bash, prompt "$ ", vttest on its path),
# temporary login records, and a private process name space, so that every process that it has started
# ends with it. It does not write the files of the machine.
# Prints the port as its first line. Runs until its standard input closes or it gets SIGTERM.
# Exit codes: 0 ended normally, 77 not possible here (not root, no name spaces, a tool missing),
# any other code an error.
# Usage: serve.sh "COMMAND ARGUMENTS"; the files of unpack.sh are in /mnt/peers.
set -eu
[ $# -eq 1 ] || { echo "usage: serve.sh COMMAND" >&2; exit 2; }

here=$(cd "$(dirname "$0")" && pwd)
. "$here/throwaway.sh"

# Inside the name spaces.
serve_inside() {
    make_throwaway "${QUILL_PEERS_DIR:-$here/../../build/peers}"
    cd /

    # Debug level 2 makes socat print its port.
    # The environment is always the same: no variables of the caller and no start-up files.
    env -i PATH="$PATH" HOME=/mnt TERM=vt100 SHELL=/bin/sh socat -d -d -lf/mnt/socat.log \
        TCP4-LISTEN:0,bind=127.0.0.1,reuseaddr,fork,nodelay EXEC:"$1",nofork </dev/null >&2 &
    port=
    tries=0
    while [ -z "$port" ] && [ $tries -lt 100 ]; do
        sleep 0.05
        port=$(sed -n 's/.*listening on .*127\.0\.0\.1:\([0-9]*\).*/\1/p' /mnt/socat.log 2>/dev/null) || :
        tries=$((tries + 1))
    done
    [ -n "$port" ] || { cat /mnt/socat.log >&2; exit 1; }
    echo "$port"
    exec >/dev/null
    cat >/dev/null
}

if [ "${QUILL_PEERS_INSIDE:-}" = 1 ]; then
    serve_inside "$1"
    exit 0
fi

need_name_spaces socat
run_inside QUILL_PEERS_INSIDE "$1"
