#!/bin/sh
# SPDX-License-Identifier: MIT
# The real pppd, unpacked, with an entry "depot" in a temporary copy of /etc.
# Usage: real_pppd.sh PPPD-ARGUMENTS...
here=$(cd "$(dirname "$0")" && pwd)
peers=${QUILL_PEERS_DIR:-$here/../../build/peers}
exec unshare -m sh -c '
    mount -t tmpfs -o mode=755 quill-peers /mnt && cp -a /etc /mnt/etc && mkdir -p /mnt/etc/ppp/peers &&
    printf "%s\n" /dev/ptmx 115200 noauth nolock >/mnt/etc/ppp/peers/depot &&
    mount --bind /mnt/etc /etc && exec "$0" "$@"' "$peers/root/usr/sbin/pppd" "$@"
