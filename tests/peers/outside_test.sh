#!/bin/sh
# SPDX-License-Identifier: MIT
# The program from outside, on a private X server: started as by ./run, operated with xdotool, and
# checked on a picture. Exit code 77: not possible here.
# Usage: outside_test.sh PROGRAM DEMO_HOST PICTURE
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool import identify
program=$1 demo=$2 picture=$3
open_screen

: >"$work/host"
"$demo" >"$work/host" &
ends_with_us $!
port=$(first_line "$work/host")
start_program "${port##*:}" --scale 2
find_window
sleep 1
xdotool windowfocus "$window" || :
sleep 0.5
xdotool type --delay 20 anna
xdotool key Return
sleep 0.5
xdotool type --delay 20 secret
xdotool key Return
sleep 1.5
import -window root "$picture" || fail "no picture"
colours=$(identify -format '%k' "$picture")
[ "$colours" -gt 3 ] || fail "the picture is empty ($colours colours)"

# Leaving by the host's menu ends the session, which the program reports in a box.
xdotool type --delay 20 0
xdotool key Return
await 20 has_window '^Error$' ||
    fail "the end of the session was not told"
echo "typed a login and left it; $colours colours in $picture"
