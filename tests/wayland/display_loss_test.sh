#!/bin/sh
# SPDX-License-Identifier: MIT
# The desktop ends under the program: the X server dies, with a screen reader or without one, or the
# compositor does. The program ends without a crash, has its settings and its window's size and place
# saved, and starts again on another desktop.
# Exit code 77: not possible here.
# Usage: display_loss_test.sh PROGRAM x|reader|weston|sway
set -eu
. "$(dirname "$0")/../support/outside.sh"
program=$1 desktop=$2
here=$(cd "$(dirname "$0")" && pwd)
need convert

# Each desktop has `opens`, which sets `server`, `resizes`, `press X Y` in the window, and what is kept.
kept='place 150 100'
case $desktop in
    x | reader)
        need Xvfb xdotool
        if [ $desktop = reader ]; then
            need dbus-daemon dbus-send
            . "$here/../accessibility/bus.sh"
            open_buses
            export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1
        fi
        opens() {
            : >"$work/display"
            Xvfb -noreset -displayfd 3 -screen 0 1600x1200x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
            server=$!
            ends_with_us $server
            DISPLAY=:$(first_line "$work/display")
            export DISPLAY QT_QPA_PLATFORM=xcb
        }
        is_shown() { finds_window && xdotool getwindowgeometry "$window" >"$work/place"; }
        has_place() { is_shown && grep -q 'Position: 300,200' "$work/place" && grep -q '900x640' "$work/place"; }
        resizes() {
            await 20 is_shown || fail "no window"
            xdotool windowsize "$window" 900 640 windowmove "$window" 300 200
        }
        press() { xdotool mousemove $((300 + $1)) $((200 + $2)) click 1; }
        ;;
    sway)
        . "$here/sway.sh"
        opens() {
            [ -d "$XDG_RUNTIME_DIR" ] || mkdir -m 700 "$XDG_RUNTIME_DIR"
            open_sway 1 'output HEADLESS-1 mode 1600x1200 position 0 0 scale 1'
            server=${started%% *}
            open_hand 1600 1200
        }
        has_place() { [ "$(window_place 'Quill Telnet  ' | sed 's/.* //')" = 900x640 ]; }
        resizes() {
            await 20 window_place 'Quill Telnet  ' || fail "no window"
            command_compositor '[app_id="quill"] resize set width 900 px height 640 px'
        }
        press() {
            place_of 'Quill Telnet  '
            hand click $((left + $1)) $((top + $2))
        }
        kept='desktop 800 600'
        ;;
    weston)
        . "$here/compositor.sh"
        need weston-screenshooter
        opens() { open_compositor 1; server=${started%% *}; }
        shows_white() {
            (cd "$work" && rm -f wayland-screenshot-*.png && weston-screenshooter) &&
                [ "$(convert "$work"/wayland-screenshot-*.png -fill black +opaque white -format '%[fx:int(mean*w*h)]' info:)" -gt 100000 ]
        }
        ;;
esac

: >"$work/port"
/usr/bin/python3 "$here/frame_host.py" >"$work/port" &
ends_with_us $!
mkdir "$work/root"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$(first_line "$work/port")" >"$work/root/mconfig.cfg"
# The settings of a first start, whose notice is answered by itself.
QT_QPA_PLATFORM=offscreen timeout -k 5 60 "$program" --root "$work/root" --screen 400x300 --text "$work/text" ||
    fail "the first start ended with $?"
exported() { "$program" --root "$work/root" --export | sed -n "s/^$1 = //p"; }
before=$(exported fsize)
host_before=$(exported host)
[ -n "$before" ] && [ -n "$host_before" ] || fail "no settings"

starts() {
    "$program" --root "$work/root" --scale 2 2>"$work/err" &
    client=$!
    ends_with_us $client
}
# The server dies, and then the program ends.
dies() {
    kill -9 "$server"
    code=0
    wait $client || code=$?
    [ $code -eq 1 ] || fail "the program ended with $code: $(tail -n 20 "$work/err")"
    grep -q 'connection broke' "$work/err" || fail "it tells $(cat "$work/err")"
    ! grep -q Sanitizer "$work/err" || fail "$(cat "$work/err")"
}
has_saved() { grep -qx "$1" "$work/root/window.cfg" || fail "no '$1' but $(cat "$work/root/window.cfg")"; }

if [ $desktop = weston ]; then
    opens
    starts
    await 20 shows_white || fail "no window"
    dies
    has_saved 'desktop 900 650'
    exit 0
fi
# A click that comes before the window is ready is lost, so it is repeated, later and on a new desktop.
for try in 1 2 3 4; do
    opens
    starts
    resizes
    await 20 has_place || fail "the window did not take its size"
    for press in 1 2 3; do
        press 188 28 # the button for larger letters
        sleep 1
    done
    dies
    has_saved 'size 450 320'
    has_saved "$kept"
    [ "$(exported host)" = "$host_before" ] || fail "the host is $(exported host)"
    [ "$(exported fsize)" = "$before" ] || break
    [ $desktop != sway ] || rm -rf "$work/runtime" "$work/hand"
done
[ "$(exported fsize)" -gt "$before" ] || fail "letters of $(exported fsize), as before"
echo "$desktop: settings, size and place outlive the desktop"
