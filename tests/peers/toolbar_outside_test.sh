#!/bin/sh
# SPDX-License-Identifier: MIT
# The toolbar from outside: the mouse of a real X server presses buttons, and the host gets bytes.
# Exit code 77: not possible here.
# Usage: toolbar_outside_test.sh PROGRAM PICTURE [SCALE]
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool import socat od
program=$1 picture=$2 scale=${3:-2}
open_screen

# The host sends a greeting and records what it gets.
mkfifo "$work/greeting"
: >"$work/received"
: >"$work/log"
socat -d -d - TCP-LISTEN:0,bind=127.0.0.1 <"$work/greeting" >"$work/received" 2>"$work/log" &
host=$!
ends_with_us $host
exec 4>"$work/greeting"
printf 'hello' >&4
await 10 grep -q listening "$work/log" || fail "no host"
port=$(sed -n 's/.*listening on .*:\([0-9]*\)$/\1/p' "$work/log" | head -n 1)

start_program "$port" --screen 480x300 --scale "$scale"
find_window
await 20 grep -q 'accepting connection' "$work/log" || fail "the client did not connect"
sleep 2
xdotool windowfocus "$window" || :

# press POSITION: clicks the middle of a button, which is 21 device pixels wide.
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
