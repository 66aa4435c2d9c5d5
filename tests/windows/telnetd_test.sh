#!/bin/sh
# SPDX-License-Identifier: MIT
# The Windows program with a real telnetd: login, a command, the end of the session by the host, and
# a request that is refused.
# Usage: telnetd_test.sh QUILL.EXE
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1
. "$top/tests/windows/wine.sh"
command -v socat >/dev/null || { echo "telnetd_test.sh: socat is missing" >&2; exit 77; }

start_server "$top/tests/peers/telnetd.sh"
start_screen
prepare_prefix
start_relay "$server_port"

fresh_device
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$relay_port" >"$device_root/mconfig.cfg"
run wine "$program"
client=$last
await 30 has_window '^Quill Telnet$' || fail "no notice of the import"
sleep 0.5
answer_notice
await 30 received "login:" || fail "telnetd asked for no name"
type_line visitor
await 20 received "assword" || fail "telnetd asked for no password"
type_line warehouse7
await 20 received '\$ ' || fail "no prompt of the shell"
# shellcheck disable=SC2016
type_line 'echo $TERM $((6*7))'
await 10 received 'vt220 42' || fail "the command gave nothing"
sleep 0.5
picture telnetd

# The host ends the session: the program reports it and keeps running.
type_line exit
await 20 has_window '^Error$' || fail "the end of the session was not told"
picture closed
xdotool key Return
await 10 has_no_window '^Error$' || fail "the box did not close"
has_ended "$client" && fail "the program ended with the session"

xdotool key ctrl+shift+q
await 20 has_ended "$client" || fail "the program did not end"
wait "$client" || fail "the program ended with code $?"

# Nobody listens any more: the connect of the next start is refused, and the program reports it.
exec 9>&-
stop_relay
run wine "$program"
client=$last
await 30 has_window '^Error$' || fail "the refusal was not told"
sleep 0.5
picture refused
xdotool key Return
await 10 has_no_window '^Error$' || fail "the box did not close"
xdotool key ctrl+shift+q
await 20 has_ended "$client" || fail "the program did not end"
wait "$client" || fail "the program ended with code $?"
echo "a login, a command and the end; pictures in $pictures"
