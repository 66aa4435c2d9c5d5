#!/bin/sh
# SPDX-License-Identifier: MIT
# The desktop's session ends while the program is in each of its states: the program ends as by its
# Exit command, saves the settings and asks nothing. Each state begins with a larger font than the
# saved one.
# Usage: logoff_test.sh QUILL.EXE DEMO_HOST
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1 demo=$2
. "$top/tests/windows/wine.sh"
command -v socat >/dev/null || { echo "logoff_test.sh: socat is missing" >&2; exit 77; }
start_screen
prepare_prefix
: >"$work/host"
run "$demo" >"$work/host"
port=$(first_line "$work/host")
start_relay "${port##*:}"

start_session() {
    fresh_device
    printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\nconfirm_exit = 1\n' "$relay_port" \
        >"$device_root/mconfig.cfg"
    : >"$work/received"
    run wine "$program"
    client=$last
    answer_notice
    await 20 received "login:" || fail "the host's question did not come"
    await 10 is_painted || fail "the host's text was not painted"
    press_and_see 200x40+130+110 ctrl+shift+KP_Add
}

# log_off STATE: ends the desktop's session and checks the program's end.
log_off() {
    [ "$(setting fsize)" != 0x9 ] || fail "$1: the setting was saved before"
    timeout 60 wine wineboot --end-session || fail "$1: the session's end failed"
    await 20 has_ended "$client" || fail "$1: the program did not end"
    wait "$client" || fail "$1: the program ended with code $?"
    [ "$(setting fsize)" = 0x9 ] || fail "$1: fsize is $(setting fsize)"
    [ "$(setting key4)" = '\033[15~' ] || fail "$1: the keys were not saved"
}

start_session
log_off "a session at rest"

# The question of the Exit command is open, and nobody answers it.
start_session
press ctrl+shift+q has_window '^Warning$' || fail "no question"
log_off "a question open"

start_session
open_by_keys '^Properties$' alt+s p
log_off "a dialog open"

# An open menu has a message loop of its own.
start_session
open_menu alt+s || fail "no menu"
log_off "a menu open"

# A stream of 5,000 lines at full speed.
start_session
type_line anna
await 10 received "assword" || fail "the host asked for no password"
type_line secret
await 10 received "Main menu" || fail "the host showed no menu"
type_line 6
await 10 received "HS-" || fail "no stream"
log_off "a stream running"
echo "five states"
