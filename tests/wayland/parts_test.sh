#!/bin/sh
# SPDX-License-Identifier: MIT
# Parts of windows that are painted anew, by the program and by the toolkit, at the scales that desktops
# offer: the text changes, a menu opens and closes, a dialog's button lights up. No line is left at
# their edges.
# Exit code 77: not possible here.
# Usage: parts_test.sh PROGRAM PICTURES DENSITY
set -eu
. "$(dirname "$0")/../support/outside.sh"
program=$1 pictures=$2 density=$3
here=$(cd "$(dirname "$0")" && pwd)
. "$here/sway.sh"
need convert compare
mkdir -p "$pictures"
mode=$(/usr/bin/python3 -c "print('%dx%d' % (1300 * $density, 900 * $density))")
open_sway 1 "output HEADLESS-1 mode $mode position 0 0 scale $density"
open_hand 1300 900

: >"$work/port"
/usr/bin/python3 "$here/frame_host.py" live >"$work/port" &
ends_with_us $!
mkdir "$work/root"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$(first_line "$work/port")" \
    >"$work/root/mconfig.cfg"
# The settings of a first start, whose notice is answered by itself.
QT_QPA_PLATFORM=offscreen timeout -k 5 60 "$program" --root "$work/root" --scale 1 \
    --snapshot "$work/first.png" || fail "the first start ended with $?"

# scaled PIXELS: of the device, in the compositor's units.
scaled() { /usr/bin/python3 -c "print(int($1 * $scale))"; }
grab() {
    picture=$pictures/part-$1-$scale-$density.png
    grim -g "$left,$top ${width}x$height" "$picture"
}
# The menu bar without its keyboard.
grab_strip() { grim -g "$left,$((top + height - $(scaled 26))) $(scaled 300)x$(scaled 25)" "$1"; }
strip_differs() {
    grab_strip "$work/strip.png"
    [ "$(compare -metric AE "$work/strip.png" "$1" null: 2>&1)" != 0 ]
}
strip_is() { ! strip_differs "$1"; }
is_whole() { grab "$1" && /usr/bin/python3 "$here/frame_check.py" "$picture" "$scale" "$density"; }
shows_whole() { await 10 is_whole "$1" || fail "$2 in $picture: $(is_whole "$1" 2>&1 | tail -n 1)"; }
is_clean() { grab "$1" && /usr/bin/python3 "$here/frame_check.py" "$picture" "$scale" "$density" none; }

# A click on the bar while it is made again is lost.
opens_dialog() { window_place 'Connect$' || { click_button && window_place 'Connect$'; }; }

for scale in 1 1.25 1.5 2 3; do
    "$program" --root "$work/root" --scale "$scale" 2>"$work/err" &
    client=$!
    ends_with_us $client
    place_of 'Quill T'
    shows_whole start "at the start"
    grab_strip "$work/closed.png"
    hand click $((left + $(scaled 20))) $((top + height - $(scaled 13)))
    await 10 strip_differs "$work/closed.png" || fail "no menu opens at $scale"
    shows_whole open "with an open menu"
    hand click $((left + $(scaled 300))) $((top + height - $(scaled 60)))
    await 10 strip_is "$work/closed.png" || { grab closed; fail "the menu bar is not as before in $picture"; }
    shows_whole closed "after a menu"

    click_button() { hand click $((left + $(scaled 30))) $((top + $(scaled 14))); }
    click_button # off line
    await 20 opens_dialog || fail "no dialog opens at $scale"
    place_of 'Connect$'
    has_buttons() { grab dialog && [ "$(convert "$picture" -unique-colors -format %w info:)" -gt 20 ]; }
    await 10 has_buttons || fail "the dialog is not drawn in $picture"
    cp "$picture" "$work/dialog.png"
    hand move $((left + $(scaled 138))) $((top + $(scaled 52))) # Advanced
    has_changed() { grab dialog && [ "$(compare -metric AE "$picture" "$work/dialog.png" null: 2>&1)" != 0 ]; }
    await 10 has_changed || fail "no button lights up in $picture"
    await 10 is_clean dialog || fail "in the dialog in $picture: $(is_clean dialog 2>&1 | tail -n 1)"
    kill "$client"
    code=0
    wait "$client" || code=$?
    [ $code -eq 0 ] || fail "the program ended with $code: $(tail -n 3 "$work/err")"
done
echo "parts painted anew at 1, 1.25, 1.5, 2 and 3 on density $density: no line at their edges"
