#!/bin/sh
# SPDX-License-Identifier: MIT
# The Windows program in SSH sessions with a real shell: a sign-on typed into its dialog, with a wrong
# password first; a command whose result the shell writes into a file; the end of the session by the
# host; and a second start, which signs on with the remembered password.
# Usage: ssh_test.sh QUILL.EXE 1|2
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1 version=$2
. "$top/tests/windows/wine.sh"
command -v socat >/dev/null || { echo "ssh_test.sh: socat is missing" >&2; exit 77; }

case $version in
    1) server=$top/tests/ssh1/server.py lines='SSH-1\.5-' cipher=2 ;;         # Blowfish
    2) server=$top/tests/ssh2/paramiko_server.py lines='SSH-2\.0-' cipher=1 ;; # triple DES
    *) fail "there is no SSH-$version" ;;
esac

start_server /usr/bin/python3 -B "$server"
start_screen
prepare_prefix
start_relay "$server_port"

# sign_on NAME PASSWORD [KEY...]: types into the dialog, presses the keys, and closes it by Enter.
sign_on() {
    await 20 has_window '^Sign on to the host$' || fail "nobody asked for name and password"
    sleep 0.5
    xdotool type --delay 40 "$1"
    xdotool key Tab
    xdotool type --delay 40 "$2"
    shift 2
    [ $# -eq 0 ] || xdotool key --delay 80 "$@"
    picture "ssh$version-sign-on"
    heard=$(wc -c <"$work/received")
    xdotool key Return
    await 20 has_answered || fail "the sign-on had no answer"
}
has_answered() { [ "$(wc -c <"$work/received")" -gt "$heard" ]; }

# The shell is ready once it has sent its prompt. The session is encrypted, so the byte count decides.
rest_for_prompt() {
    was=-1
    while [ "$(wc -c <"$work/received")" -ne $was ]; do
        was=$(wc -c <"$work/received")
        sleep 1
    done
}

# shell_writes FILE: types a command with which the shell writes the file.
shell_writes() {
    rest_for_prompt
    # shellcheck disable=SC2016
    type_line 'echo $TERM $((6*7)) '">$work/$1"
    await 10 has_line "$work/$1" || fail "the command did not reach the shell"
    [ "$(cat "$work/$1")" = "vt220 42" ] || fail "the shell wrote $(cat "$work/$1")"
}

# The relay logs the end of each connection.
connection_has_ended() { grep -q 'exiting with status' "$work/relay.log"; }

leave() {
    xdotool key ctrl+shift+q
    await 20 has_ended "$client" || fail "the program did not end"
    wait "$client" || fail "the program ended with code $?"
}

fresh_device
cat >"$device_root/mconfig.cfg" <<END
host = "127.0.0.1"
port = $relay_port
autoconnect = 1
ssh = 1
ssh_type2 = $((version - 1))
ssh_type = $cipher
END
run wine "$program"
client=$last
await 30 has_window '^Quill Telnet$' || fail "no notice of the import"
sleep 0.5
answer_notice

# After a wrong password the dialog opens again. With "Remember Password" marked, the program stores
# the new values.
sign_on visitor warehouse8
[ "$version" -eq 2 ] || {
    await 10 has_window '^Error$' || fail "the wrong password was not told"
    xdotool key Return
}
sign_on visitor warehouse7 Tab space
shell_writes first
picture "ssh$version"
received "^$lines" || fail "the server did not speak SSH-$version"
sent "^$lines" || fail "the program did not speak SSH-$version"
! sent 'visitor\|warehouse\|echo' || fail "what was typed went over the wire in the clear"
! received 'vt220 42' || fail "the shell's output came in the clear"

# The host ends the session; the program reports it and keeps running.
type_line exit
await 20 connection_has_ended || fail "the session did not end"
! has_window '^Error$' || xdotool key Return
sleep 0.5
! has_ended "$client" || fail "the program ended with the session"
leave
[ "$(setting ssh_def)" = 0x1 ] || fail "ssh_def: $(setting ssh_def)"
[ "$(setting ssh_u)" = visitor ] || fail "ssh_u: $(setting ssh_u)"
[ "$(setting ssh_p)" = warehouse7 ] || fail "ssh_p was not remembered"

# With a remembered password no dialog opens.
run wine "$program"
client=$last
await 30 has_window "^$title  \[127.0.0.1\]$" || fail "no window at the second run"
shell_writes second
leave
echo "two sessions of SSH-$version; pictures in $pictures"
