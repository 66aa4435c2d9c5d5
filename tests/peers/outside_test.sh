#!/bin/sh
# The program from outside, on an X server of its own: started by ./run's own means, typed at with
# xdotool, and seen as a picture. Exit code 77: not possible here.
# Usage: outside_test.sh PROGRAM DEMO_HOST PICTURE
set -eu
for tool in Xvfb xdotool import identify; do
    command -v $tool >/dev/null || { echo "outside_test.sh: $tool is missing" >&2; exit 77; }
done
program=$1 demo=$2 picture=$3
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-outside.XXXXXX")
server= host= client=
clean_up() {
    for each in $client $host $server; do kill "$each" 2>/dev/null || :; done
    wait
    rm -rf "$work"
}
trap clean_up EXIT
fail() { echo "outside_test.sh: $1" >&2; exit 1; }

# first_line FILE: waits for it.
first_line() {
    tries=0
    while [ "$(wc -l <"$1")" -lt 1 ]; do
        [ $tries -lt 100 ] || fail "nothing came into $1"
        sleep 0.1
        tries=$((tries + 1))
    done
    head -n 1 "$1"
}

: >"$work/display"
Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
server=$!
DISPLAY=:$(first_line "$work/display")
export DISPLAY QT_QPA_PLATFORM=xcb

: >"$work/host"
"$demo" >"$work/host" &
host=$!
port=$(first_line "$work/host")
mkdir "$work/root"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "${port##*:}" >"$work/root/mconfig.cfg"
"$program" --root "$work/root" --scale 2 2>/dev/null &
client=$!

# The notice of the import waits for a finger.
timeout 20 xdotool search --sync --name '^Quill Telnet$' >/dev/null || fail "no notice was shown"
sleep 1
xdotool key Return
title="Quill Telnet  \[127.0.0.1\]"
window=$(timeout 20 xdotool search --sync --name "$title" | head -n 1)
[ -n "$window" ] || fail "no window with the title of the session"
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

# Leaving by the host's menu ends the session, which is told in a box.
xdotool type --delay 20 0
xdotool key Return
timeout 20 xdotool search --sync --name '^Error$' >/dev/null ||
    fail "the end of the session was not told"
echo "typed a login and left it; $colours colours in $picture"
