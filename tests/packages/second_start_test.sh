#!/bin/sh
# SPDX-License-Identifier: MIT
# A second start on the same settings, under a window manager: the open window is the active one and
# above all others afterwards, wherever it was. Another profile has a window of its own.
# Usage: second_start_test.sh PROGRAM DEMO_HOST
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool xwininfo xprop openbox
program=$1 demo=$2
. "$(dirname "$0")/desktop.sh"
open_screen 640x480
small=$DISPLAY # the usual scale is too large for it
open_screen 1600x1200
openbox >/dev/null 2>&1 &
ends_with_us $!
is_managed() { xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
await 10 is_managed || fail "no window manager"
start_demo

# The window manager names windows by hexadecimal numbers.
number() { printf '%d' "$1"; }
active() { number "$(xprop -root _NET_ACTIVE_WINDOW | sed 's/.*# //')"; }
highest() { number "$(xprop -root _NET_CLIENT_LIST_STACKING | sed 's/.*[ ,]//')"; }
is_active() { [ "$(active)" = "$1" ]; }
is_front() { is_active "$1" && [ "$(highest)" = "$1" ]; }
count_windows() { [ "$(xprop -root _NET_CLIENT_LIST | grep -o 0x | wc -l)" -eq "$1" ]; }

open_window --profile stores "telnet://127.0.0.1:$port"
stores=$client
main_window "$session_title"
first=$window
await 10 is_front "$first" || fail "the first window is not in front"
# The window of another profile comes over it, and stays there when its own program is started again.
open_window --profile depot
depot=$client
main_window '^Quill Telnet  \[\]'
second=$window
await 10 is_front "$second" || fail "the window of another profile is not in front"
count_windows 2 || fail "there are other windows"

# comes_to_front WINDOW WHERE ARGUMENTS...
comes_to_front() {
    expected=$1 where=$2 word=
    shift 2
    case " $* " in *' --screen '* | *' --scale '*)
        word="quill: Quill already runs on $home/data/quill/profiles/$2, so its window keeps its size and scale" ;;
    esac
    DISPLAY=${start_on:-$DISPLAY} timeout -k 5 30 "$program" "$@" 2>"$work/said" || fail "a second start on a window $where ended with $?"
    [ "$(cat "$work/said")" = "$word" ] || fail "a second start by $* said: $(cat "$work/said")"
    await 10 is_front "$expected" || fail "a window $where does not come to the front by $*"
    xwininfo -id "$expected" | grep -q IsViewable || fail "a window $where is not shown"
    count_windows 2 || fail "a second start opened a window"
}
comes_to_front "$first" "below another" --profile stores
comes_to_front "$second" "below another" --profile depot
xdotool windowminimize "$first"
is_minimized() { ! xwininfo -id "$first" | grep -q IsViewable; }
await 10 is_minimized || fail "the window is not minimised"
comes_to_front "$first" "that is minimised" --profile stores
comes_to_front "$first" "in front already" --profile stores

# A size or a scale: the window keeps its own, and the second start says so, once.
size=$(xdotool getwindowgeometry "$first" | grep Geometry)
comes_to_front "$second" "below another" --profile depot --scale 1
comes_to_front "$first" "below another" --profile stores --screen 320x240
comes_to_front "$second" "below another" --profile depot --screen 320x240 --scale 3
comes_to_front "$first" "below another" --profile stores
# Where the start chooses a scale by itself, nobody has asked for one.
start_on=$small
comes_to_front "$second" "of another screen" --profile depot
start_on=
comes_to_front "$first" "below another" --profile stores
[ "$(xdotool getwindowgeometry "$first" | grep Geometry)" = "$size" ] || fail "the window has another size"

# With a host: the window comes to the front, its session stays, and nothing is connected to.
xdotool windowactivate --sync "$second"
await 10 is_front "$second" || fail "the second window is not in front"
"$program" --profile stores 127.0.0.1 1 2>"$work/said" &
third=$!
ends_with_us $third
await 20 has_window '^Quill Telnet$' || fail "no box: $(cat "$work/said")"
grep -q 'already runs on these settings. For a second window with 127.0.0.1, start: quill --profile NAME 127.0.0.1$' "$work/said" ||
    fail "said: $(cat "$work/said")"
answer_box
code=0
wait $third || code=$?
[ $code -eq 1 ] || fail "a second start with a host ended with $code"
await 10 is_front "$first" || fail "a second start with a host does not bring the window to the front"
[ "$(xdotool getwindowname "$first")" = 'Quill Telnet  [127.0.0.1]' ] || fail "the session has ended"

# A picture or the text: the open window stays where it is.
xdotool windowactivate --sync "$second"
await 10 is_front "$second" || fail "the second window is not in front"
ends_with 1 'has no session to save' --profile stores --text "$work/text"
is_front "$second" || fail "a start for a text moved a window"
kill -TERM $stores $depot
for each in $stores $depot; do wait "$each" || fail "a program ended with $?"; done
echo "a second start brings its window to the front"
