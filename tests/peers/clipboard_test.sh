#!/bin/sh
# SPDX-License-Identifier: MIT
# The clipboard between the program and xclip, in both directions, on a private X server, with a session
# to a host that records what it gets. Exit code 77: not possible here.
# Usage: clipboard_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool xclip socat import
program=$1
owner=
# A stopped owner ends only by SIGKILL.
trap '[ -z "$owner" ] || kill -KILL "$owner" 2>/dev/null || :; clean_up' EXIT

received() { cmp -s "$work/received" "$1"; }

# own FILE [TYPE]: lets xclip own the clipboard with that file, and no other process.
offered() { timeout 5 xclip -selection clipboard -t "$2" -o 2>/dev/null | cmp -s - "$1"; }
own() {
    [ -z "$owner" ] || { kill -KILL "$owner"; wait "$owner" 2>/dev/null || :; }
    xclip -quiet -selection clipboard -t "${2:-UTF8_STRING}" -i "$1" 2>/dev/null &
    owner=$!
    await 20 offered "$1" "${2:-UTF8_STRING}" || fail "xclip does not offer $1"
}
paste_key() { xdotool key ctrl+shift+v; }

open_screen

# The screen is full of the letter Q.
printf '%1920s' '' | tr ' ' Q >"$work/screen"
: >"$work/log"
socat -d -d -lf"$work/log" TCP4-LISTEN:0,bind=127.0.0.1,nodelay \
    SYSTEM:"cat $work/screen; cat >$work/received" &
ends_with_us $!
await 10 grep -q 'listening on' "$work/log" || fail "no host"
port=$(sed -n 's/.*listening on .*127\.0\.0\.1:\([0-9]*\).*/\1/p' "$work/log")
start_program "$port" --scale 2
find_window
await 10 test -e "$work/received" || fail "no session"
sleep 1
xdotool windowfocus "$window" || :
sleep 0.5

# From the desktop to the host.
printf 'a\r\nb\nc' >"$work/text"
printf 'a\rb\rc' >"$work/expected"
own "$work/text"
paste_key
await 20 received "$work/expected" || fail "the host got no paste"

# X11 transfers a megabyte in pieces, by a special protocol.
seq 1 160000 | head -c 1048576 >"$work/text"
tr '\n' '\r' <"$work/text" >>"$work/expected"
own "$work/text"
paste_key
await 60 received "$work/expected" || fail "the host did not get the whole megabyte"

# The program does not send a picture.
printf 'P6 1 1 255 abc' >"$work/picture"
own "$work/picture" image/png
paste_key

# An owner that does not answer blocks the program for some seconds only.
own "$work/text"
kill -STOP "$owner"
paste_key
xdotool key z
printf z >>"$work/expected"
await 60 received "$work/expected" || fail "no key reached the host after an owner that hangs"
kill -CONT "$owner"

# From the screen to the desktop, by the mouse.
eval "$(xdotool getwindowgeometry --shell "$window")"
picture() { import -window "$window" -crop 200x60+100+120 rgb:- | md5sum; }
before=$(picture)
is_marked() { [ "$(picture)" != "$before" ]; }
xdotool mousemove $((X + 100)) $((Y + 120)) mousedown 1 mousemove $((X + 200)) $((Y + 160)) \
    mousemove $((X + 300)) $((Y + 200)) mouseup 1
await 10 is_marked || fail "the mouse marked nothing"
xdotool key ctrl+shift+c
is_copied() {
    timeout 5 xclip -selection clipboard -o >"$work/copied" 2>/dev/null || return 1
    [ "$(sort -u "$work/copied" | wc -l)" = 1 ] && grep -q '^QQQQ*$' "$work/copied" &&
        [ "$(wc -l <"$work/copied")" -gt 2 ]
}
await 20 is_copied ||
    fail "the marked text did not reach the clipboard: $(cat "$work/copied" 2>/dev/null)"
received "$work/expected" || fail "the host got more than was pasted and typed"
echo "pasted $(wc -c <"$work/expected") bytes, copied $(wc -l <"$work/copied") rows"
