#!/bin/sh
# SPDX-License-Identifier: MIT
# Replaces pppd on machines whose kernel has no PPP: dials the modem QUILL_MODEM with the real chat
# (QUILL_CHAT) like the connect script of an entry, writes pppd's lines in order, and ends with its exit
# codes. SIGTERM hangs up the modem.
# Usage: pppd_on_modem.sh call NAME nodetach
set -u
[ "$1 $3" = "call nodetach" ] || exit 2

running=
hang_up() {
    [ -z "$running" ] || { kill "$running" 2>/dev/null; wait "$running"; }
    echo "Terminating on signal 15"
    # The time-out must be longer than the wait of \d, or chat ends before the modem has answered.
    "$QUILL_CHAT" -t 20 '' '\d+++\d\c' OK ATH OK <"$QUILL_MODEM" >"$QUILL_MODEM"
    echo "Exit."
    exit 5
}
trap hang_up TERM

stty raw -echo <"$QUILL_MODEM" || { echo "Failed to open $QUILL_MODEM"; exit 7; }
"$QUILL_CHAT" -s -v -t 45 ABORT BUSY ABORT 'NO CARRIER' ABORT 'NO ANSWER' ABORT 'NO DIALTONE' \
    '' ATZ OK ATDT5551234 CONNECT <"$QUILL_MODEM" >"$QUILL_MODEM" &
running=$!
wait $running || { echo "Connect script failed"; exit 8; }
running=
echo "Serial connection established."
echo "Using interface ppp0"
echo "Connect: ppp0 <--> $QUILL_MODEM"
echo "PAP authentication succeeded"
echo "local  IP address 10.0.0.2"
echo "remote IP address 10.0.0.1"
while :; do sleep 0.05; done
