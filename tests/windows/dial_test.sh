#!/bin/sh
# SPDX-License-Identifier: MIT
# A dial is in progress when the desktop's session ends: the program hangs up, waits
# until the modem is free, and saves the settings.
# The modem is a library in the system's folder (modem.c). The script runs in a separate network
# without a route to the host.
# Usage: dial_test.sh QUILL.EXE
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
if [ -z "${QUILL_OWN_NETWORK:-}" ]; then
    unshare -rn true 2>/dev/null && command -v ip >/dev/null || {
        echo "dial_test.sh: no network of its own can be made" >&2
        exit 77
    }
    QUILL_OWN_NETWORK=yes exec unshare -rn "$0" "$@"
fi
program=$1
ip link set lo up
ip route add unreachable 192.0.2.0/24
. "$top/tests/windows/wine.sh"
start_screen
prepare_prefix
x86_64-w64-mingw32-gcc-posix -shared -o "$work/modem.dll" "$top/tests/windows/modem.c"
library=$WINEPREFIX/drive_c/windows/system32/rasapi32.dll
log=$WINEPREFIX/drive_c/modem.log
rm -f "$log"
[ -e "$library.kept" ] || mv "$library" "$library.kept"
put_back() { [ ! -e "$library.kept" ] || mv -f "$library.kept" "$library"; }
trap 'put_back; clean_up' EXIT
cp "$work/modem.dll" "$library"
export WINEDLLOVERRIDES="$WINEDLLOVERRIDES;rasapi32=n"

logged() { [ "$(tr -d '\r' <"$log" 2>/dev/null | tr '\n' ' ')" = "$1" ]; }

fresh_device
printf 'host = "192.0.2.9"\nautoconnect = 1\n' >"$device_root/mconfig.cfg"
run wine "$program"
client=$last
await_notice
close_box '^Quill Telnet$' Return
await 20 has_window '^Request$' || fail "nobody asked whether to dial"
sleep 0.5
picture dial-question
press_in '^Request$' Return logged "dial " || fail "no dial began"
await_rest 300x60+0+68
picture dial
press_and_see 300x12+4+70 ctrl+shift+KP_Add
timeout 60 wine wineboot --end-session || fail "the session's end failed"
await 20 has_ended "$client" || fail "the program did not end"
wait "$client" || fail "the program ended with code $?"
logged "dial hang up busy free " || fail "the modem heard: $(cat "$log")"
[ "$(setting fsize)" = 0x9 ] || fail "fsize is $(setting fsize)"
[ "$(setting ras)" = office ] || fail "ras is $(setting ras)"
echo "a dial and its end"
