#!/bin/sh
# SPDX-License-Identifier: MIT
# The host of docs/hosts.md: a temporary machine (tests/peers/throwaway.sh) on which root has run STEPS,
# a shell script. The files of unpack.sh are in the machine's /usr, so that programs have the same paths
# as after an installation. The user's start-up file is .profile, and a shell starts in the home folder.
# Prints PORT as its first line when STEPS is done. Runs until its standard input closes or it gets
# SIGTERM; every process that STEPS has started ends with it.
# Exit codes: 0 ended normally, 77 not possible here, any other code an error.
# Usage: machine.sh PORT STEPS LOGS PACKAGES...     LOGS: a folder, the machine's /var/log
set -eu
[ $# -ge 3 ] || { echo "usage: machine.sh PORT STEPS LOGS PACKAGES..." >&2; exit 2; }
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../peers/throwaway.sh"
peers=${QUILL_PEERS_DIR:-$here/../../build/peers}

machine_inside() {
    make_throwaway "$peers"
    mount --bind "$3" /var/log
    unpacked=$(cd "$peers" && pwd)/root
    mount -t overlay -o "lowerdir=$unpacked/usr:/usr" quill-usr /usr || exit 77
    for folder in bin sbin lib; do
        [ ! -d "$unpacked/$folder" ] ||
            mount -t overlay -o "lowerdir=$unpacked/$folder:/usr/$folder" quill-usr "/usr/$folder"
    done
    mkdir /mnt/run
    mount --bind /mnt/run /run
    mkdir /run/lock
    cp -an /mnt/peers/etc/. /etc/
    cp -n /etc/pam.d/login /etc/pam.d/sshd.quill && mv /etc/pam.d/sshd.quill /etc/pam.d/sshd
    id sshd >/dev/null 2>&1 || useradd -r -d /run/sshd -s /usr/sbin/nologin sshd
    mv /mnt/home/visitor/.bash_profile /mnt/home/visitor/.profile
    chown -R visitor /mnt/home/visitor
    cd /
    env -i PATH="/usr/sbin:/usr/bin:/sbin:/bin" HOME=/mnt TERM=vt100 SHELL=/bin/sh \
        sh -eu "$2" </dev/null >"$3/steps" 2>&1 3>&- || {
        cat "$3/steps" >&2
        exit 1
    }
    echo "$1"
    exec >/dev/null
    cat >/dev/null
}

if [ "${QUILL_MACHINE_INSIDE:-}" = 1 ]; then
    machine_inside "$@"
    exit 0
fi

need_name_spaces
port=$1 steps=$2 logs=$3
shift 3
"$here/../peers/unpack.sh" "$@" >/dev/null || exit $?
run_inside QUILL_MACHINE_INSIDE "$port" "$steps" "$logs"
