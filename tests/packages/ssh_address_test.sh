#!/bin/sh
# SPDX-License-Identifier: MIT
# An address ssh://USER@HOST:PORT: the sign-on has that user, and with the password it opens a shell
# on a real server.
# Usage: ssh_address_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool pgrep
program=$1
. "$(dirname "$0")/desktop.sh"
/usr/bin/python3 -c 'import paramiko' 2>/dev/null || { echo "$script: python3-paramiko is missing" >&2; exit 77; }
open_screen

mkfifo "$work/open"
: >"$work/port"
/usr/bin/python3 -B "$(dirname "$0")/../ssh2/paramiko_server.py" <"$work/open" >"$work/port" 2>/dev/null &
server=$!
ends_with_us $server
exec 8>"$work/open"
port=$(first_line "$work/port")

# The server takes no other user. The field of the user has the focus.
open_window "ssh://visitor@127.0.0.1:$port/"
main_window '^Sign on to the host$'
caught_up "$window"
xdotool windowfocus --sync "$window" key --delay 80 Tab type --delay 40 warehouse7
xdotool key Return
main_window "$session_title"
await 30 pgrep -P $server -x bash || fail "the server has started no shell: $(cat "$work/err")"
# What is typed before the client knows of the shell is lost, so it is typed again.
for try in 1 2 3 4 5; do
    xdotool windowfocus --sync "$window" type --delay 40 "echo \$((6*7)) >$work/answer"
    xdotool key Return
    ! await 5 has_line "$work/answer" || break
done
[ -e "$work/answer" ] || fail "the shell got no line: $(cat "$work/err")"
[ "$(cat "$work/answer")" = 42 ] || fail "the shell wrote $(cat "$work/answer")"
end_window
[ -z "$(stored "$home/data/quill" host)$(stored "$home/data/quill" ssh_u)" ] || fail "the address was stored"
echo "an address opens a shell for its user"
