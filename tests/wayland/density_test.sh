#!/bin/sh
# SPDX-License-Identifier: MIT
# The density under a running program changes: its screen changes it, and its window moves to a screen
# of another one; both there and back. The text is drawn anew each time, not stretched. The screens are
# those of a headless compositor that obeys commands.
# Exit code 77: not possible here.
# Usage: density_test.sh PROGRAM PICTURES
set -eu
. "$(dirname "$0")/../support/outside.sh"
program=$1 pictures=$2
here=$(cd "$(dirname "$0")" && pwd)
. "$here/sway.sh"
need convert compare
mkdir -p "$pictures"
open_sway 2 'output HEADLESS-1 mode 900x700 position 0 0 scale 1' \
    'output HEADLESS-2 mode 2100x1500 position 900 0 scale 2' \
    'workspace 1 output HEADLESS-1' 'workspace 2 output HEADLESS-2'

: >"$work/port"
/usr/bin/python3 "$here/frame_host.py" >"$work/port" &
ends_with_us $!
mkdir "$work/root"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$(first_line "$work/port")" \
    >"$work/root/mconfig.cfg"
# The settings of a first start, whose notice is answered by itself.
QT_QPA_PLATFORM=offscreen timeout -k 5 60 "$program" --root "$work/root" --scale 1 \
    --text "$work/text" || fail "the first start ended with $?"
"$program" --root "$work/root" --scale 1 2>"$work/err" &
client=$!
ends_with_us $client

# shown_at DENSITY: whole lines, sharp text, and the very pixels of the first time at that density.
shown_at() {
    grim -g "$(window_place)" "$picture" && /usr/bin/python3 "$here/frame_check.py" "$picture" 1 "$1" &&
        if [ -e "$work/first-$1.png" ]; then
            compare -metric AE "$picture" "$work/first-$1.png" null: 2>&1
        else
            cp "$picture" "$work/first-$1.png"
        fi
}
step=0
# shows DENSITY WHAT
shows() {
    step=$((step + 1))
    picture=$pictures/density-$step.png
    await 20 shown_at "$1" || fail "$2: no whole frame at density $1 in $picture: $(shown_at "$1" 2>&1 | tail -n 1)"
}

shows 1 "at the start"
size=$(window_place | sed 's/.* //')
command_compositor output HEADLESS-1 scale 2
shows 2 "the screen became denser"
command_compositor output HEADLESS-1 scale 1
shows 1 "the screen became as it was"
command_compositor '[app_id="quill"]' move container to output HEADLESS-2, focus
shows 2 "the window moved to the denser screen"
command_compositor output HEADLESS-2 scale 1
shows 1 "the second screen became less dense"
command_compositor output HEADLESS-2 scale 2
shows 2 "the second screen became as it was"
command_compositor output HEADLESS-2 scale 3
shows 3 "the second screen became three times as dense"
command_compositor '[app_id="quill"]' move container to output HEADLESS-1, focus
shows 1 "the window moved back"
[ "$(window_place | sed 's/.* //')" = "$size" ] || fail "the window has another size: $(window_place)"
kill "$client"
code=0
wait "$client" || code=$?
[ $code -eq 0 ] || fail "the program ended with $code: $(cat "$work/err")"
echo "a screen and a window that change their density: whole lines, sharp text"
