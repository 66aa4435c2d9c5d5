#!/bin/sh
# SPDX-License-Identifier: MIT
# The keyboard's layout changes in mid-session: German, French, Swiss, American-International and
# Japanese. On each, the characters of AltGr, of plain keys and of dead keys reach the host, and Ctrl
# with a digit sends a function key. The keys have the X server's numbers, so they are the same keys
# of the keyboard on each layout.
# Usage: keyboards_test.sh QUILL.EXE DEMO_HOST
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1 demo=$2
. "$top/tests/windows/wine.sh"
for tool in socat setxkbmap; do
    command -v $tool >/dev/null || { echo "keyboards_test.sh: $tool is missing" >&2; exit 77; }
done
export LC_ALL=C # code page 1252
start_screen
prepare_prefix
: >"$work/host"
run "$demo" >"$work/host"
port=$(first_line "$work/host")
start_relay "${port##*:}"

fresh_device
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$relay_port" >"$device_root/mconfig.cfg"
run wine "$program"
client=$last
answer_notice
await 20 received "login:" || fail "the host's question did not come"
await 10 sent vt220 || fail "the negotiation did not come to its end"

strike() {
    case $1 in
        AltGr+*) xdotool keydown 108 key "${1#*+}" keyup 108 ;;
        Ctrl+*) xdotool keydown 37 key "${1#*+}" keyup 37 ;;
        *) xdotool key "$1" ;;
    esac
}

# on LAYOUT...: switches to a layout of the X server and presses the keys of the rows in its input; a
# row has a key and the bytes that it sends, if any.
on() {
    setxkbmap "$@" || fail "no keyboard $*"
    focus_on "$main"
    begin_sent
    expected=
    while read -r key bytes; do
        expected=$expected$bytes
        strike "$key"
        await 20 sent_is "$expected" || fail "on $* after $key the keys sent $(sent_bytes)"
    done
}

on de <<'END'
16 7
AltGr+16 {
AltGr+17 [
AltGr+18 ]
AltGr+19 }
AltGr+20 \\
AltGr+24 @
AltGr+26 \200
AltGr+35 ~
AltGr+94 |
Ctrl+10 \217P
29 z
47 \366
END
on fr <<'END'
AltGr+12 #
AltGr+13 {
AltGr+14 [
AltGr+15 |
AltGr+17 \\
AltGr+19 @
Ctrl+10 \217P
AltGr+20 ]
AltGr+21 }
24 a
16 \350
34
26 \352
END
on ch <<'END'
AltGr+11 @
AltGr+12 #
AltGr+16 |
Ctrl+10 \217P
AltGr+34 [
AltGr+35 ]
AltGr+48 {
AltGr+51 }
AltGr+94 \\
29 z
47 \366
35
30 \374
END
on us -variant intl <<'END'
AltGr+26 \351
AltGr+39 \337
Ctrl+10 \217P
48
26 \351
24 q
END
on jp <<'END'
34 @
Ctrl+10 \217P
35 [
51 ]
48 :
21 ^
END
on us <<'END'
34 [
24 q
Ctrl+10 \217P
END

# AltGr with the left Ctrl of Windows: the digit is no function key, unlike with a Ctrl of its own.
x86_64-w64-mingw32-gcc-posix -o "$work/alt_gr.exe" "$top/tests/windows/alt_gr.c"
focus_on "$main"
begin_sent
timeout 60 wine "$work/alt_gr.exe" || fail "the AltGr of Windows cannot be typed"
press q sent_is q || fail "AltGr with 7 sent $(sent_bytes)"
picture keyboards
leave
echo "six layouts in one session; pictures in $pictures"
