#!/bin/sh
# SPDX-License-Identifier: MIT
# The density under a running program changes: its screen changes it, and its window moves to a screen
# of another one; both there and back. The text is drawn anew each time, not stretched. The screens are
# those of a headless compositor that obeys commands.
# Exit code 77: not possible here.
# Usage: density_test.sh PROGRAM PICTURES
set -eu
. "$(dirname "$0")/../support/outside.sh"
need sway swaymsg grim convert compare setpriv
program=$1 pictures=$2
here=$(cd "$(dirname "$0")" && pwd)
[ -n "$(find /usr/lib -name libqwayland-generic.so -path '*qt6*' 2>/dev/null | head -n 1)" ] ||
    { echo "$script: the toolkit has no Wayland here" >&2; exit 77; }
mkdir -p "$pictures"

# What the toolkit and the graphics libraries keep until the end is theirs.
export ASAN_OPTIONS="${ASAN_OPTIONS:-}:detect_leaks=0"
export XDG_RUNTIME_DIR="$work/runtime" HOME="$work"
mkdir -m 700 "$XDG_RUNTIME_DIR"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM XDG_SESSION_TYPE XDG_CURRENT_DESKTOP SWAYSOCK || :

# The compositor does not run as root.
as_nobody=
if [ "$(id -u)" = 0 ]; then
    chmod 755 "$work"
    chown nobody "$XDG_RUNTIME_DIR"
    as_nobody="setpriv --reuid=nobody --regid=nogroup --clear-groups"
fi
printf '%s\n' 'xwayland disable' 'for_window [app_id="quill"] floating enable, border none' \
    'output HEADLESS-1 mode 900x700 position 0 0 scale 1' \
    'output HEADLESS-2 mode 1400x1000 position 900 0 scale 2' \
    'workspace 1 output HEADLESS-1' 'workspace 2 output HEADLESS-2' >"$work/sway"
WLR_BACKENDS=headless WLR_HEADLESS_OUTPUTS=2 WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman \
    $as_nobody sway -c "$work/sway" >"$work/sway.log" 2>&1 &
ends_with_us $!
finds_compositor() {
    SWAYSOCK=$(find "$XDG_RUNTIME_DIR" -name 'sway-ipc*')
    WAYLAND_DISPLAY=$(find "$XDG_RUNTIME_DIR" -name 'wayland-*' ! -name '*.lock' -printf '%f')
    [ -n "$SWAYSOCK" ] && [ -n "$WAYLAND_DISPLAY" ] && swaymsg -s "$SWAYSOCK" workspace 1
}
await 20 finds_compositor || { cat "$work/sway.log" >&2; fail "no compositor"; }
export SWAYSOCK WAYLAND_DISPLAY

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

# The window's place on the screens, as X,Y WIDTHxHEIGHT.
window_place() {
    swaymsg -t get_tree | /usr/bin/python3 -c '
import json, sys
def windows(node):
    if node.get("app_id") == "quill":
        yield node["rect"]
    for each in node["nodes"] + node["floating_nodes"]:
        yield from windows(each)
print("%(x)d,%(y)d %(width)dx%(height)d" % next(windows(json.load(sys.stdin))))'
}
command_compositor() { swaymsg "$@" >/dev/null || fail "the compositor does not obey: $*"; }
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
command_compositor '[app_id="quill"]' move container to output HEADLESS-1, focus
shows 1 "the window moved back"
[ "$(window_place | sed 's/.* //')" = "$size" ] || fail "the window has another size: $(window_place)"
kill "$client"
code=0
wait "$client" || code=$?
[ $code -eq 0 ] || fail "the program ended with $code: $(cat "$work/err")"
echo "a screen and a window that change their density: whole lines, sharp text"
