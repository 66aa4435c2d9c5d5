#!/bin/sh
# The toolbar from outside: buttons pressed by the mouse of a real X server, and what the host gets.
# Exit code 77: not possible here.
# Usage: toolbar_outside_test.sh PROGRAM PICTURE [SCALE]
set -eu
for tool in Xvfb xdotool import socat od; do
    command -v $tool >/dev/null || { echo "toolbar_outside_test.sh: $tool is missing" >&2; exit 77; }
done
program=$1 picture=$2 scale=${3:-2}
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-toolbar.XXXXXX")
server= host= client=
clean_up() {
    for each in $client $host $server; do kill "$each" 2>/dev/null || :; done
    wait
    rm -rf "$work"
}
trap clean_up EXIT
fail() { echo "toolbar_outside_test.sh: $1" >&2; exit 1; }

# await SECONDS COMMAND...: until it succeeds.
await() {
    tries=$(($1 * 10))
    shift
    until "$@"; do
        [ $tries -gt 0 ] || return 1
        tries=$((tries - 1))
        sleep 0.1
    done
}

: >"$work/display"
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
server=$!
await 10 test -s "$work/display" || fail "no X server"
DISPLAY=:$(head -n 1 "$work/display")
export DISPLAY QT_QPA_PLATFORM=xcb

# The host greets, and keeps what it is sent.
mkfifo "$work/greeting"
: >"$work/received"
: >"$work/log"
socat -d -d - TCP-LISTEN:0,bind=127.0.0.1 <"$work/greeting" >"$work/received" 2>"$work/log" &
host=$!
exec 4>"$work/greeting"
printf 'hello' >&4
await 10 grep -q listening "$work/log" || fail "no host"
port=$(sed -n 's/.*listening on .*:\([0-9]*\)$/\1/p' "$work/log" | head -n 1)

mkdir "$work/root"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$port" >"$work/root/mconfig.cfg"
"$program" --root "$work/root" --screen 480x300 --scale "$scale" 2>/dev/null &
client=$!
timeout 30 xdotool search --sync --name '^Quill Telnet$' >/dev/null || fail "no notice was shown"
sleep 1
xdotool key Return
window=$(timeout 30 xdotool search --sync --name 'Quill Telnet  \[127.0.0.1\]' | head -n 1)
[ -n "$window" ] || fail "no window with the title of the session"
await 20 grep -q 'accepting connection' "$work/log" || fail "the client did not connect"
sleep 2
xdotool windowfocus "$window" || :

# press POSITION: the middle of a button, which is 21 device pixels wide.
press() {
    xdotool mousemove --window "$window" $((($1 * 21 + 10) * scale)) $((13 * scale))
    sleep 0.3
    xdotool click 1
    sleep 0.5
}
received() { od -An -c "$work/received" | tr -d ' \n'; }
got() { [ "$(received)" = "$1" ]; }
expect() { await 10 got "$1" || fail "the host got '$(received)', not '$1'"; }
gone() { ! kill -0 "$host" 2>/dev/null; }

expect ''
press 11
expect '033[15~'
xdotool type x
expect '033[15~x'
press 0
press 1
expect '033[15~x\r'
press 0
press 0
import -window root "$picture" || fail "no picture"
press 1
await 10 gone || fail "disconnect left the session open"
echo "P5, x, ENTER on the second bar, and disconnect reached the host"
