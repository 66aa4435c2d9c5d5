#!/bin/sh
# SPDX-License-Identifier: MIT
# OpenSSH's sshd with the algorithms that the client has, on a free port of 127.0.0.1, for the user
# "visitor" with the password "warehouse7"; see tests/peers/serve.sh for output, end and exit codes.
# Usage: sshd.sh [OPTION=VALUE]...     options of sshd_config(5) to add
set -eu
here=$(cd "$(dirname "$0")" && pwd)

# Serves one connection inside the name spaces, where /etc and /mnt are temporary copies.
serve_connection() {
    if [ ! -e /mnt/sshd_config ]; then
        mkdir -p /mnt/run/sshd
        mount --bind /mnt/run /run
        id sshd >/dev/null 2>&1 || useradd -r -d /run/sshd -s /usr/sbin/nologin sshd
        ssh-keygen -q -t dsa -N '' -f /mnt/host_key </dev/null
        printf '%s\n' 'HostKey /mnt/host_key' 'PidFile none' \
            'KexAlgorithms diffie-hellman-group1-sha1' 'HostKeyAlgorithms ssh-dss' \
            'Ciphers 3des-cbc' 'MACs hmac-sha1' 'UsePAM no' 'PasswordAuthentication yes' \
            'KbdInteractiveAuthentication no' 'PubkeyAuthentication no' 'UseDNS no' \
            'StrictModes no' 'PrintMotd no' 'PrintLastLog no' "$@" >/mnt/sshd_config
    fi
    exec /mnt/peers/usr/sbin/sshd -i -E /mnt/log/sshd -f /mnt/sshd_config
}

if [ "${1:-}" = --connection ]; then
    shift
    serve_connection "$@"
fi

"$here/../peers/unpack.sh" openssh-server vttest >/dev/null || exit $?
command -v ssh-keygen >/dev/null || { echo "sshd.sh: ssh-keygen is missing" >&2; exit 77; }
command="$here/sshd.sh --connection"
for option; do command="$command $option"; done
exec "$here/../peers/serve.sh" "$command"
