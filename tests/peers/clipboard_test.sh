#!/bin/sh
# The clipboard between the program and xclip, both ways, on an X server of its own, with a session to
# a host that keeps what it gets. Exit code 77: not possible here.
# Usage: clipboard_test.sh PROGRAM
set -eu
for tool in Xvfb xdotool xclip socat; do
    command -v $tool >/dev/null || { echo "clipboard_test.sh: $tool is missing" >&2; exit 77; }
done
program=$1
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-clipboard.XXXXXX")
server= host= client= owner=
clean_up() {
    for each in $owner; do kill -KILL "$each" 2>/dev/null || :; done
    for each in $client $host $server; do kill "$each" 2>/dev/null || :; done
    wait
    rm -rf "$work"
}
trap clean_up EXIT
fail() { echo "clipboard_test.sh: $1" >&2; exit 1; }

# await SECONDS WHAT COMMAND...: until the command holds.
await() {
    tries=$(($1 * 10)) what=$2
    shift 2
    while ! "$@"; do
        [ $tries -gt 0 ] || fail "$what"
        sleep 0.1
        tries=$((tries - 1))
    done
}
has_line() { [ "$(wc -l <"$1")" -ge 1 ]; }
received() { cmp -s "$work/received" "$1"; }
listening() { grep -q 'listening on' "$work/log"; }

# own FILE [TYPE]: xclip offers it, and nobody else does.
offered() { timeout 5 xclip -selection clipboard -t "$2" -o 2>/dev/null | cmp -s - "$1"; }
own() {
    [ -z "$owner" ] || { kill -KILL "$owner"; wait "$owner" 2>/dev/null || :; }
    xclip -quiet -selection clipboard -t "${2:-UTF8_STRING}" -i "$1" 2>/dev/null &
    owner=$!
    await 20 "xclip does not offer $1" offered "$1" "${2:-UTF8_STRING}"
}
paste_key() { xdotool key ctrl+shift+v; }

: >"$work/display"
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
server=$!
await 10 "no X server" has_line "$work/display"
DISPLAY=:$(head -n 1 "$work/display")
export DISPLAY QT_QPA_PLATFORM=xcb

# The screen is full of the letter Q.
printf '%1920s' '' | tr ' ' Q >"$work/screen"
: >"$work/log"
socat -d -d -lf"$work/log" TCP4-LISTEN:0,bind=127.0.0.1,nodelay \
    SYSTEM:"cat $work/screen; cat >$work/received" &
host=$!
await 10 "no host" listening
port=$(sed -n 's/.*listening on .*127\.0\.0\.1:\([0-9]*\).*/\1/p' "$work/log")
mkdir "$work/root"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$port" >"$work/root/mconfig.cfg"
"$program" --root "$work/root" --scale 2 2>/dev/null &
client=$!
timeout 20 xdotool search --sync --name '^Quill Telnet$' >/dev/null || fail "no notice was shown"
sleep 1
xdotool key Return
window=$(timeout 20 xdotool search --sync --name 'Quill Telnet  \[127.0.0.1\]' | head -n 1)
[ -n "$window" ] || fail "no window with the title of the session"
await 10 "no session" test -e "$work/received"
sleep 1
xdotool windowfocus "$window" || :
sleep 0.5

# From the desktop to the host.
printf 'a\r\nb\nc' >"$work/text"
printf 'a\rb\rc' >"$work/expected"
own "$work/text"
paste_key
await 20 "the host got no paste" received "$work/expected"

# A megabyte comes in pieces of its own protocol.
seq 1 160000 | head -c 1048576 >"$work/text"
tr '\n' '\r' <"$work/text" >>"$work/expected"
own "$work/text"
paste_key
await 60 "the host did not get the whole megabyte" received "$work/expected"

# A picture is nothing to send.
printf 'P6 1 1 255 abc' >"$work/picture"
own "$work/picture" image/png
paste_key

# An owner that does not answer holds the program up for seconds, not for ever.
own "$work/text"
kill -STOP "$owner"
paste_key
xdotool key z
printf z >>"$work/expected"
await 60 "no key reached the host after an owner that hangs" received "$work/expected"
kill -CONT "$owner"

# From the screen to the desktop, by the mouse.
eval "$(xdotool getwindowgeometry --shell "$window")"
xdotool mousemove $((X + 100)) $((Y + 120)) mousedown 1 mousemove $((X + 200)) $((Y + 160)) \
    mousemove $((X + 300)) $((Y + 200)) mouseup 1
sleep 0.5
xdotool key ctrl+shift+c
is_copied() {
    timeout 5 xclip -selection clipboard -o >"$work/copied" 2>/dev/null || return 1
    [ "$(sort -u "$work/copied" | wc -l)" = 1 ] && grep -q '^QQQQ*$' "$work/copied" &&
        [ "$(wc -l <"$work/copied")" -gt 2 ]
}
await 20 "the marked text did not reach the clipboard: $(cat "$work/copied" 2>/dev/null)" is_copied
received "$work/expected" || fail "the host got more than was pasted and typed"
echo "pasted $(wc -c <"$work/expected") bytes, copied $(wc -l <"$work/copied") rows"
