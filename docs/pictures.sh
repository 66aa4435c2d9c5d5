#!/bin/sh
# SPDX-License-Identifier: MIT
# Takes the pictures of this folder from the running program, on an X server of its own, in sessions
# with the demo host.
# Usage: docs/pictures.sh [NAME...]      (after a build of the demo host by the preset release)
set -eu
cd "$(dirname "$0")/.."
# The program is that of the package, unpacked, started as an installed one is.
demo=build/release/demo/quill_demo_host
. tests/support/outside.sh
open_screen 1400x1000
dpkg-deb -x "$(packaging/deb.sh)" "$work/installed"
program=$work/installed/usr/bin/quill

# picture NAME SCREEN SCALE ACTIONS: a session, logged in, then the actions, then the picture. An
# empty SCREEN is the size that the program chooses.
picture() {
    name=$1 screen=$2 scale=$3 actions=$4
    : >"$work/host"
    "$demo" >"$work/host" &
    host=$!
    ends_with_us $host
    port=$(first_line "$work/host")
    start_program "${port##*:}" ${screen:+--screen $screen} --scale "$scale"
    sleep 2
    xdotool type --delay 20 anna
    xdotool key Return
    sleep 0.5
    xdotool type --delay 20 secret
    xdotool key Return
    sleep 1
    eval "$actions"
    sleep 1
    import -window root "$work/whole.png"
    kill "$client" "$host"
    wait "$client" "$host" 2>/dev/null || :
    convert "$work/whole.png" -trim +repage -colors 64 -depth 8 "docs/$name.png"
    echo "docs/$name.png"
}

# tap X Y: in pixels of the device, at the scale of the picture.
tap() { xdotool mousemove $(($1 * scale)) $(($2 * scale)) click 1; }
strike() { xdotool key --delay 50 "$@"; }

session() { picture session '' 2 ':'; }
menu() { picture menu '' 2 'strike alt+s; sleep 0.5; strike Down Down'; }
handheld() { picture handheld 240x320 2 ':'; }
panel() { picture panel 240x320 2 'tap 223 307'; }
wide() { picture wide 640x240 2 ':'; }

for each in ${*:-session menu handheld panel wide}; do $each; done
