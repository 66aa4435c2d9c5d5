#!/bin/sh
# SPDX-License-Identifier: MIT
# Size and place of the window, from run to run and from screen to screen.
# Usage: window_place_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool xwininfo xprop openbox
program=$1
. "$(dirname "$0")/desktop.sh"
place=$home/data/quill/window.cfg

field() { xwininfo -id "$window" | sed -n "s/^ *$1: *\(-\{0,1\}[0-9]*\).*/\1/p" | head -n 1; }
shape() { echo "$(field Width)x$(field Height)"; }
corner() { echo "$(field 'Absolute upper-left X'),$(field 'Absolute upper-left Y')"; }
is_shape() { [ "$(shape)" = "$1" ]; }
is_corner() { [ "$(corner)" = "$1" ]; }
opened() {
    open_window "$@"
    main_window '^Quill Telnet  \['
    await 10 shown || fail "the window is not shown"
}
# is_near X Y: a pixel of the device is at most three of the desktop's.
is_near() {
    x=$(field 'Absolute upper-left X') y=$(field 'Absolute upper-left Y')
    [ $((x - $1)) -ge -3 ] && [ $((x - $1)) -le 3 ] && [ $((y - $2)) -ge -3 ] && [ $((y - $2)) -le 3 ]
}
# move_to X Y: the frame; the program knows the new place, too. Sets `moved` to that of the window.
is_elsewhere() { ! is_corner "$before"; }
move_to() {
    before=$(corner)
    xdotool windowmove "$window" $1 $2
    await 10 is_elsewhere || fail "the window did not move to $1,$2: $before"
    caught_up "$window"
    moved=$(corner)
}
shown() { xwininfo -id "$window" | grep -q IsViewable; }
is_managed() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
use_screen() {
    open_screen "$1"
    openbox >/dev/null 2>&1 &
    ends_with_us $!
    await 10 is_managed || fail "no window manager"
}

# For another program to look for first.
use_screen 1600x1200
opened --scale 2
first=$(shape)
[ ! -e "$place" ] || fail "a place was kept before the end"
xdotool windowsize --sync "$window" 900 640
await 10 is_shape 900x640 || fail "the window did not take its size: $(shape)"
move_to 300 200
end_window
[ "$(stat -c %a "$place")" = 600 ] || fail "others may read the place"
grep -qx 'size 450 320' "$place" || fail "kept: $(cat "$place")"
! ls -A "$home/data/quill" | grep -q 'window.cfg.new' || fail "the fresh file was left"

opened --scale 2
await 10 is_shape 900x640 || fail "the size is not back: $(shape)"
await 10 is_near ${moved%,*} ${moved#*,} || fail "the place is not back: $(corner) instead of $moved"
back=$(corner)
end_window
for run in 1 2 3; do
    opened --scale 2
    await 10 is_corner "$back" || fail "the window wanders: $(corner) in place of $back"
    end_window
done

# Where a device pixel is no whole number of the desktop's, the place is rounded. It is not rounded
# again in each run.
cp "$place" "$work/kept"
for scale in 1.5 3; do
    opened --scale $scale
    move_to 311 217
    end_window
    opened --scale $scale
    await 10 is_near ${moved%,*} ${moved#*,} || fail "the place is not back at $scale: $(corner) instead of $moved"
    caught_up "$window"
    back=$(corner)
    end_window
    for run in 1 2 3; do
        opened --scale $scale
        await 10 is_corner "$back" || fail "the window wanders at $scale: $(corner) instead of $back"
        end_window
    done
done
cp "$work/kept" "$place"
# Maximised: the size of before stays behind it.
opened --scale 2
xdotool windowfocus "$window" || :
/usr/bin/python3 "$(dirname "$0")/x_window.py" maximize "$window"
is_wide() { [ "$(field Width)" -ge 1590 ]; }
await 10 is_wide || fail "not maximised: $(shape)"
end_window
grep -qx 'maximized 1' "$place" && grep -qx 'size 450 320' "$place" || fail "kept: $(cat "$place")"
opened --scale 2
await 10 is_wide || fail "not maximised again: $(shape)"
end_window

# A profile has a place of its own; a screen that was asked for keeps none.
opened --scale 2 --profile other
await 10 is_shape "$first" || fail "the profile opens as $(shape) in place of $first"
end_window
cp "$place" "$work/before"
opened --scale 2 --screen 300x300
await 10 is_shape 600x600 || fail "--screen gives $(shape)"
end_window
cmp "$place" "$work/before" || fail "--screen was kept"

# What a hand or an older desktop has left there.
try() {
    printf "$1" >"$place"
    opened --scale 2
    await 10 "$2" "$3" || fail "'$1' opens as $(shape) at $(corner)"
    on_screen || fail "'$1' opens out of sight: $(shape) at $(corner)"
    end_window
}
on_screen() {
    [ "$(field 'Absolute upper-left X')" -gt -900 ] && [ "$(field 'Absolute upper-left X')" -lt 1540 ] &&
        [ "$(field 'Absolute upper-left Y')" -ge 0 ] && [ "$(field 'Absolute upper-left Y')" -lt 1190 ]
}
try 'size 450 320\nplace 5000 100\n' is_shape 900x640
try 'size 450 320\nplace 100 -3000\n' is_shape 900x640
try 'size 450 320\nplace -999999 -999999\nmaximized 7\n' is_shape 900x640
try '' is_shape "$first"
try 'size 0 0\n' is_shape "$first"
try 'size -5 99999\nplace 1 1\n' is_shape "$first"
try 'size 999999999999999999999 3\n' is_shape "$first"
try '\001\377size\nplace\nmaximized\n' is_shape "$first"
rm "$place"
mkdir "$place"
opened --scale 2
end_window
rmdir "$place"
mkfifo "$place"
opened --scale 2
end_window

# A smaller screen: the whole window is on it, and the terminal scrolls.
printf 'size 700 650\nplace 600 500\ndesktop 1600 1200\nmaximized 0\n' >"$place"
use_screen 800x600
opened --scale 1
inside() {
    [ $(($(field 'Absolute upper-left X') + $(field Width))) -le 800 ] &&
        [ $(($(field 'Absolute upper-left Y') + $(field Height))) -le 600 ] &&
        [ "$(field 'Absolute upper-left X')" -ge 0 ] && [ "$(field 'Absolute upper-left Y')" -ge 0 ]
}
await 10 inside || fail "on a smaller screen: $(shape) at $(corner)"
end_window
printf 'size 400 300\nplace 700 500\ndesktop 1600 1200\nmaximized 0\n' >"$place"
opened --scale 1
await 10 inside && is_shape 400x300 || fail "moved from a larger screen: $(shape) at $(corner)"
end_window
# Over the edge of the same screen it stays.
printf 'size 400 300\nplace 700 500\ndesktop 800 600\nmaximized 0\n' >"$place"
opened --scale 1
hangs() { [ "$(field 'Absolute upper-left X')" -ge 698 ]; }
await 10 hangs || fail "a window over the edge was moved: $(corner)"
end_window
# The whole title bar is on the screen, also where the window was put above the edge, and where it
# fills the screen.
has_title() {
    title=$(xprop -id "$window" _NET_FRAME_EXTENTS | sed -n 's/.*= *[0-9]*, *[0-9]*, *\([0-9]*\),.*/\1/p')
    [ "${title:-0}" -gt 0 ] && [ "$(field 'Absolute upper-left Y')" -ge "$title" ]
}
for kept in 'size 400 300\nplace 100 -9\ndesktop 800 600\n' 'size 800 600\nplace 0 -5\ndesktop 800 600\n' \
    'size 800 600\nplace 0 0\ndesktop 1600 1200\n'; do
    printf "$kept" >"$place"
    opened --scale 1
    await 10 has_title || fail "'$kept' opens with its title above the screen: $(corner)"
    end_window
done
rm "$place"
opened --scale 2
await 10 has_title || fail "the first window has its title above the screen: $(corner)"
end_window
echo "the window comes back as it was, and always in sight"
