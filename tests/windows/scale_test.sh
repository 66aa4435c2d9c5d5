#!/bin/sh
# SPDX-License-Identifier: MIT
# The Windows program on monitors of 100, 150 and 200 %: text, menu, toolbar and a dialog grow by the
# same factor. Then the scale changes in a session, also while a dialog is open: the terminal looks as
# after a start at that scale. The script keeps a picture of each.
# Usage: scale_test.sh QUILL.EXE DEMO_HOST
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1 demo=$2
screen_size=1700x1300
. "$top/tests/windows/wine.sh"
command -v socat >/dev/null || { echo "scale_test.sh: socat is missing" >&2; exit 77; }
start_screen
prepare_prefix
: >"$work/host"
run "$demo" >"$work/host"
port=$(first_line "$work/host")
start_relay "${port##*:}"
desktop='HKCU\Control Panel\Desktop'
whole='HKCU\Software\Wine\Explorer\Desktops'
set_scale() {
    wine reg add "$desktop" /v LogPixels /t REG_DWORD /d "$(($1 * 96 / 100))" /f >/dev/null
    wine reg add "$whole" /v Default /d "$2" /f >/dev/null
    wineserver -k || :
    wineserver -w
    wineserver -p
}
trap 'set_scale 100 1024x768; clean_up' EXIT

size_of() { xdotool search --name "$1" 2>/dev/null | head -n 1 | xargs -n 1 xdotool getwindowgeometry --shell |
    tr '\n' ' ' | sed 's/.*WIDTH=\([0-9]*\) HEIGHT=\([0-9]*\).*/\1 \2/'; }

x86_64-w64-mingw32-gcc-posix -o "$work/rescale.exe" "$top/tests/windows/rescale.c"
rescale() { timeout 60 wine "$work/rescale.exe" "$@" | tr -d '\r'; }

# see_terminal FILE: the picture of the terminal whose place is in $work/place, without its bars.
see_terminal() {
    read -r left upper width height <"$work/place"
    import -window root -crop "$((width * 9 / 10))x$((height * 8 / 10))+$left+$upper" +repage "$1"
}

# looks_as_at SCALE
looks_as_at() {
    see_terminal "$work/seen.png" && [ "$(compare -metric AE "$work/seen.png" "$work/terminal-$1.png" null: 2>&1)" = 0 ]
}

# change_scale SCALE: the change of a running program.
change_scale() {
    read -r left upper width height <"$work/place-$1"
    rescale "$(($1 * 96 / 100))" "$width" "$height" >"$work/place" || fail "no window to change to $1 %"
    [ "$(cut -d ' ' -f 3- <"$work/place")" = "$width $height" ] || fail "no room at $1 %: $(cat "$work/place")"
}

# session_at SCALE: runs a session and records the sizes of the dialog and the window.
session_at() {
    set_scale "$1" "$screen_size"
    fresh_device
    printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$relay_port" >"$device_root/mconfig.cfg"
    : >"$work/received"
    run wine "$program"
    client=$last
    xdotool mousemove 300 300 # the window below the mouse has the keyboard
    answer_notice
    await 20 received "login:" || fail "the host's question did not come at $1 %"
    await 10 is_painted || fail "the host's text was not painted at $1 %"
    sleep 0.5
    type_line anna
    await 10 received "assword" || fail "the host asked for no password"
    type_line secret
    await 10 received "Main menu" || fail "the host showed no menu"
    sleep 1
    picture "scale-$1"
    size_of "^$title  \[" >"$work/window-$1"
    open_by_keys '^Properties$' alt+s p
    sleep 0.5
    picture "scale-$1-dialog"
    size_of '^Properties$' >"$work/dialog-$1"
    close_box '^Properties$' Escape
    sleep 0.5
    rescale 0 >"$work/place" || fail "no terminal at $1 %"
    cp "$work/place" "$work/place-$1"
    see_terminal "$work/terminal-$1.png"
}

# larger_by SCALE NAME: checks width and height. Wine does not scale the frame of a dialog.
larger_by() {
    paste -d ' ' "$work/$2-100" "$work/$2-$1" | awk -v scale="$1" '
        { for (i = 1; i <= 2; i++) { factor = $(i + 2) / $i * 100 / scale; if (factor < 0.85 || factor > 1.1) bad = 1 } }
        END { exit bad || NR != 1 }' || fail "the $2 at $1 %: $(cat "$work/$2-$1"), at 100 %: $(cat "$work/$2-100")"
}

for scale in 200 150; do
    session_at $scale
    leave
done
session_at 100
for scale in 150 200; do
    larger_by $scale window
    larger_by $scale dialog
done

for scale in 200 150 100; do
    change_scale $scale
    await 10 looks_as_at $scale || { picture scale-changed; fail "the terminal after a change to $scale %"; }
done
open_by_keys '^Properties$' alt+s p
change_scale 200
sleep 0.5
picture scale-changed-dialog
close_box '^Properties$' Escape
await 10 looks_as_at 200 || { picture scale-changed; fail "the terminal after a change below a dialog"; }
leave
echo "windows: $(cat "$work"/window-* | tr '\n' ','), dialogs: $(cat "$work"/dialog-* | tr '\n' ',')"
