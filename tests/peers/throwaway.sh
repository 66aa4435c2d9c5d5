# SPDX-License-Identifier: MIT
# A temporary machine inside private name spaces. serve.sh and the tests of tests/guide source this
# file.

# skip REASON, need_name_spaces TOOL...: end with 77 if the test is not possible here.
skip() { echo "$(basename "$0"): $1" >&2; exit 77; }

need_name_spaces() {
    [ "$(id -u)" = 0 ] || skip "needs root for a login in name spaces of its own"
    for tool in unshare useradd chpasswd mount "$@"; do
        command -v "$tool" >/dev/null || skip "$tool is missing"
    done
    [ -x /bin/login ] || skip "/bin/login is missing"
    unshare -m -p -f --mount-proc true 2>/dev/null || skip "name spaces are not allowed here"
}

# run_inside VARIABLE ARGUMENTS...: runs this script again, in private name spaces with VARIABLE=1,
# until it ends or gets SIGTERM; every process that it has started ends with it.
run_inside() {
    variable=$1
    shift
    exec 3<&0
    env "$variable=1" unshare -m -p -f --mount-proc --kill-child=KILL "$0" "$@" <&3 &
    space=$!
    exec 3<&-
    # unshare ignores SIGTERM; killing it ends every process inside.
    trap 'kill -KILL $space 2>/dev/null; exit 0' TERM INT HUP
    wait $space
}

# make_throwaway PEERS: makes a private copy of /etc with the user "visitor" (password "warehouse7",
# shell bash, prompt "$ "), and private login records and logs. The files that unpack.sh unpacked into
# PEERS are in /mnt/peers.
make_throwaway() {
    mount -t tmpfs -o mode=755 quill-peers /mnt
    mkdir /mnt/etc /mnt/home /mnt/peers /mnt/log
    mount --bind "$1/root" /mnt/peers
    cp -a /etc/. /mnt/etc/
    mount --bind /mnt/etc /etc
    mount --bind /mnt/log /var/log
    : >/mnt/utmp
    [ ! -e /run/utmp ] || mount --bind /mnt/utmp /run/utmp
    printf '%s\n' 'auth required pam_unix.so' 'account required pam_unix.so' \
        'session required pam_permit.so' >/etc/pam.d/login
    useradd -d /mnt/home/visitor -m -s /bin/bash visitor >/mnt/useradd.log 2>&1 || {
        cat /mnt/useradd.log >&2
        exit 1
    }
    echo visitor:warehouse7 | chpasswd
    : >/mnt/home/visitor/.hushlogin
    printf '%s\n' "PS1='\$ '" 'PATH=$PATH:/mnt/peers/usr/bin' 'unset PROMPT_COMMAND' \
        >/mnt/home/visitor/.bash_profile
}
