#!/bin/sh
# SPDX-License-Identifier: MIT
# Text fields, displays and profiles under Wayland: a field has the focus where the compositor has no
# input device, a display without a name is found, and the window of a profile has a name of its own.
# Exit code 77: not possible here.
# Usage: text_field_test.sh PROGRAM PICTURES
set -eu
. "$(dirname "$0")/../support/outside.sh"
program=$1 pictures=$2
. "$(dirname "$0")/compositor.sh"
need weston-screenshooter convert
/usr/bin/python3 -c 'import paramiko' 2>/dev/null || { echo "$script: python3-paramiko is missing" >&2; exit 77; }
mkdir -p "$pictures"
open_compositor 1

mkfifo "$work/open"
: >"$work/port"
/usr/bin/python3 -B "$(dirname "$0")/../ssh2/paramiko_server.py" <"$work/open" >"$work/port" &
ends_with_us $!
exec 8>"$work/open"
port=$(first_line "$work/port")

# signs_on [NAME=VALUE]: the box of the sign-on is drawn, the cursor of an empty field blinks, and the
# program goes on. A window gets its buffers after its title.
box_is_drawn() { sed -n '/set_title("Sign on to the host")/,$p' "$work/err" | grep -q 'wl_surface.*attach(wl_buffer'; }
take_picture() {
    (cd "$work" && rm -f wayland-screenshot-*.png && weston-screenshooter) && mv "$work"/wayland-screenshot-*.png "$1"
}
# Two pictures differ by an upright line alone; the compositor's clock above does not count.
cursor_blinks() {
    mv "$pictures/sign-on.png" "$work/before.png"
    take_picture "$pictures/sign-on.png" || return 1
    line=$(convert "$work/before.png" "$pictures/sign-on.png" -compose difference -composite -crop +0+40 +repage \
        -threshold 10% -trim -format '%w %h' info: 2>/dev/null)
    [ "${line% *}" -le 4 ] && [ "${line#* }" -ge 8 ]
}
signs_on() {
    env "$@" WAYLAND_DEBUG=1 "$program" --root "$work/root" "ssh://127.0.0.1:$port" 2>"$work/err" &
    client=$!
    ends_with_us $client
    await 30 box_is_drawn || fail "$*: no box"
    take_picture "$pictures/sign-on.png" || fail "no picture"
    await 20 cursor_blinks || fail "$*: no cursor blinks in $pictures/sign-on.png"
    kill $client || fail "$*: the program has gone"
    code=0
    wait $client || code=$?
    [ $code -eq 0 ] || fail "$*: the program ended with $code"
}
signs_on
# What a person has chosen stays.
signs_on QT_IM_MODULE=compose
# The first display is found without its name, also if X has one that is not asked for.
ln -s "$WAYLAND_DISPLAY" "$XDG_RUNTIME_DIR/wayland-0"
signs_on -u WAYLAND_DISPLAY
signs_on -u WAYLAND_DISPLAY DISPLAY=:nowhere QT_QPA_PLATFORM=wayland
# A file of that name is no display.
rm "$XDG_RUNTIME_DIR/wayland-0"
: >"$XDG_RUNTIME_DIR/wayland-0"
code=0
env -u WAYLAND_DISPLAY "$program" --root "$work/root" 2>"$work/err" || code=$?
[ $code -eq 1 ] && grep -q 'there is no display' "$work/err" || fail "a file as the display: $code, $(cat "$work/err")"

# What a compositor tells windows apart by.
app_id() { sed -n 's/.*set_app_id("\([^"]*\)").*/\1/p' "$work/err" | sort -u; }
XDG_DATA_HOME="$work/data" WAYLAND_DEBUG=1 timeout -k 5 60 "$program" --text "$work/text" 2>"$work/err" ||
    fail "the program ended with $?"
[ "$(app_id)" = quill ] || fail "a window without a profile is called '$(app_id)'"
XDG_DATA_HOME="$work/data" WAYLAND_DEBUG=1 timeout -k 5 60 "$program" --profile stores --text "$work/text" \
    2>"$work/err" || fail "the program ended with $?"
[ "$(app_id)" = quill-stores ] || fail "the window of the profile is called '$(app_id)'"
echo "a sign-on without an input device and without a display's name; a name for each profile"
