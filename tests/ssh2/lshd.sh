#!/bin/sh
# SPDX-License-Identifier: MIT
# lshd behind a relay that delays its first packet, on a free port of 127.0.0.1, for the user
# "visitor" with the password "warehouse7"; see tests/peers/serve.sh for output, end and exit codes.
# Usage: lshd.sh CIPHER
set -eu
here=$(cd "$(dirname "$0")" && pwd)

# use_lsh FOLDER: unpacks the programs of lsh and their libraries into that folder.
use_lsh() {
    lsh=$1/usr
    host_key=$1/lsh-host-key
    export LD_LIBRARY_PATH="$lsh/lib/x86_64-linux-gnu" LSH_YARROW_SEED_FILE="$1/lsh-seed"
}

# Two tests may need it at the same time.
make_host_key() {
    exec 9>"$host_key.lock"
    flock 9
    [ -e "$host_key" ] || write_host_key
    exec 9>&-
}

write_host_key() {
    (umask 077 && head -c 32 /dev/urandom >"$LSH_YARROW_SEED_FILE")
    rm -f "$host_key.new"
    "$lsh/bin/lsh-keygen" --server -a dsa -l 4 2>/dev/null |
        "$lsh/bin/lsh-writekey" --server -o "$host_key.new" >/dev/null 2>&1
    mv "$host_key.new" "$host_key"
}

free_port() {
    /usr/bin/python3 -c 'import socket; s = socket.create_server(("127.0.0.1", 0)); print(s.getsockname()[1])'
}

# Serves one connection inside the name spaces; the first connection starts the server.
serve_connection() {
    if [ ! -e /mnt/lsh-port ]; then
        free_port >/mnt/lsh-port
        use_lsh /mnt/peers
        $lsh/sbin/lshd --no-pid-file --no-syslog -h "$host_key" \
            --interface="127.0.0.1:$(cat /mnt/lsh-port)" --no-publickey --no-tcpwrappers \
            --crypto="$1" --mac=hmac-sha1 --compression=none >/mnt/log/lshd 2>&1 </dev/null &
        unset LD_LIBRARY_PATH
    fi
    exec "$here/relay.py" --standard-input "$(cat /mnt/lsh-port)"
}

if [ "${1:-}" = --connection ]; then
    serve_connection "$2"
fi

cipher=${1:?a cipher}
unpacked=$("$here/../peers/unpack.sh" lsh-server lsh-utils liboop4 vttest) || exit $?
use_lsh "$unpacked"
make_host_key
unset LD_LIBRARY_PATH
exec "$here/../peers/serve.sh" "$here/lshd.sh --connection $cipher"
