#!/bin/sh
# SPDX-License-Identifier: MIT
# The soft keyboard under Wayland, where only the compositor places windows: it covers nothing of the
# dialog that it types into, and a person signs on with it and goes on in the session.
# Exit code 77: not possible here.
# Usage: soft_keyboard_test.sh PROGRAM PICTURES
set -eu
. "$(dirname "$0")/../support/outside.sh"
program=$1 pictures=$2
here=$(cd "$(dirname "$0")" && pwd)
. "$here/sway.sh"
need convert compare
/usr/bin/python3 -c 'import paramiko' 2>/dev/null || { echo "$script: python3-paramiko is missing" >&2; exit 77; }
mkdir -p "$pictures"
open_sway 1 'output HEADLESS-1 mode 900x700 position 0 0 scale 1'

open_hand 900 700
mkfifo "$work/open"
: >"$work/port"
# A command of the session's shell.
mkdir "$work/bin"
printf '#!/bin/sh\n: >%s/seen\n' "$work" >"$work/bin/seen"
chmod +x "$work/bin/seen"
PATH="$work/bin:$PATH" /usr/bin/python3 -B "$here/../ssh2/paramiko_server.py" <"$work/open" >"$work/port" &
server=$!
ends_with_us $server
exec 8>"$work/open"
port=$(first_line "$work/port")

panel=80 strip=26 # heights, in pixels of the device; this one has 400 by 300
start() {
    "$program" --root "$work/root" --screen 400x300 --scale 1 "$@" 2>"$work/err" &
    client=$!
    ends_with_us $client
    await 20 window_place 'Quill T' || fail "no window"
}
end() {
    kill $client || fail "the program has gone"
    code=0
    wait $client || code=$?
    [ $code -eq 0 ] || fail "the program ended with $code: $(tail -n 3 "$work/err")"
}

# How the dialog is without a soft keyboard.
start "ssh://127.0.0.1:$port"
place_of 'Sign on'
own_width=$width own_height=$height
# It is drawn when it has many colours.
drawn() {
    grim -g "$(window_place 'Sign on')" "$1"
    [ "$(convert "$1" -unique-colors -format %w info:)" -gt 20 ]
}
await 10 drawn "$pictures/sign-on-alone.png" || fail "the dialog is not drawn"
end

# A click that comes before the window is ready is lost, so it is repeated.
grab_foot() { grim -g "$left,$((top + height - strip - panel)) ${width}x$panel" "$1"; }
has_keyboard() {
    grab_foot "$work/foot.png"
    [ "$(compare -metric AE "$work/foot.png" "$work/foot-before.png" null: 2>&1)" -gt 2000 ]
}
# The pictures of the buttons have many colours.
is_painted() {
    grim -g "$left,$top ${width}x$height" "$work/window.png" &&
        [ "$(convert "$work/window.png" -unique-colors -format %w info:)" -gt 20 ]
}
is_still() {
    is_painted && cp "$work/window.png" "$work/window-before.png" && sleep 0.5 && is_painted &&
        cmp -s "$work/window.png" "$work/window-before.png"
}
shows_keyboard() {
    await 10 is_still || fail "the window is not painted"
    for try in 1 2 3 4 5; do
        grab_foot "$work/foot-before.png"
        hand click $((left + width - 12)) $((top + height - strip / 2))
        ! await 3 has_keyboard || return 0
    done
    fail "the soft keyboard does not come"
}
# opens_box: with a soft keyboard; the server answers once it is shown. Sets `device`.
opens_box() {
    kill -STOP $server
    start "ssh://127.0.0.1:$port"
    await 20 window_place 'Quill Telnet  ' || fail "the window has no title"
    place_of 'Quill T'
    device=$width
    shows_keyboard
    kill -CONT $server
    place_of 'Sign on'
    grown() { [ "$(window_place 'Sign on' | sed 's/.* //')" = "${device}x$((own_height + panel))" ]; }
    await 10 grown ||
        fail "the dialog of ${own_width}x$own_height is $(window_place 'Sign on') with the soft keyboard of a device $device wide"
    place_of 'Sign on'
}
signs_on() {
    rm -f "$work/seen"
    opens_box
    # Its own part is the same as before; the text cursor may blink.
    looks_as_before() {
        drawn "$pictures/sign-on-keyboard.png" || return 1
        convert "$pictures/sign-on-keyboard.png" -crop "${own_width}x$own_height+$(((width - own_width) / 2))+0" \
            +repage "$work/part.png"
        different=$(compare -metric AE "$work/part.png" "$pictures/sign-on-alone.png" null: 2>&1) || :
        [ "$different" -lt 60 ]
    }
    await 10 looks_as_before || fail "$different pixels of the dialog differ in $pictures/sign-on-keyboard.png"

    hand type $left $((top + height - panel)) $width $panel visitor Tab warehouse7 Enter
    gone() { ! window_place 'Sign on'; }
    await 20 gone || { grim "$pictures/session-keyboard.png"; fail "the dialog is still there"; }
    place_of 'Quill T'
    # It is on the device again, and types into the session.
    hand type $left $((top + height - strip - panel)) $width $panel seen Enter
    await 20 test -e "$work/seen" || { grim "$pictures/session-keyboard.png"; fail "nothing was typed into the session"; }
    end
}
signs_on
# Empty, but set: with the compositor's input method.
export QT_IM_MODULE=
signs_on
# The keyboard goes back before the dialog is gone.
opens_box
end

# A dialog over a dialog takes the keyboard from it, and it comes back.
has_size() { [ "$(window_place "$1" | sed 's/.* //')" = "$2" ]; }
export WAYLAND_DEBUG=1 # it tells each size that a window draws
start
place_of 'Quill T'
shows_keyboard
hand click $((left + 30)) $((top + 14)) # the bar's button
place_of 'Connect$'
await 10 has_size 'Connect$' "400x$((68 + panel))" || fail "the first dialog: $(window_place 'Connect$')"
place_of 'Connect$'
hand click $((left + 138)) $((top + 52)) # Advanced
await 10 has_size 'Connect Advanced' "400x$((170 + panel))" || fail "the second dialog: $(window_place 'Connect Advanced')"
place_of 'Connect Advanced'
hand type $left $((top + height - panel)) $width $panel Esc
gone() { ! window_place 'Connect Advanced'; }
await 10 gone || fail "the second dialog is still there"
place_of 'Connect$'
[ $height -eq $((68 + panel)) ] || fail "the first dialog again: $place"
! grep -q "set_window_geometry(0, 0, 400, $((68 + 2 * panel)))" "$work/err" || fail "the first dialog has room for two keyboards"
hand type $left $((top + height - panel)) $width $panel Esc
gone() { ! window_place 'Connect$'; }
await 10 gone || fail "the first dialog is still there"
end
# The colour chooser has all of its height above the keyboard, though the device is lower.
unset WAYLAND_DEBUG
has_chooser() { window_place Select; }
opens_chooser() {
    place_of 'Quill T'
    for try in 1 2 3; do
        await 10 is_still || fail "the window is not painted"
        hand click $((left + 130)) $((top + height - strip / 2))
        sleep 1
        hand click $((left + 150)) $((top + height - strip - 100)) # one of the four colours
        ! await 3 has_chooser || return 0
    done
    fail "there is no chooser"
}
closes_chooser() {
    hand type $left $((top + height - panel)) $width $panel Esc
    gone() { ! has_chooser; }
    await 10 gone || fail "the chooser is still there"
}
start
opens_chooser
place_of Select
own_width=$width own_height=$height
[ $own_height -gt 300 ] || fail "the chooser is $own_height high without a keyboard"
end
start
place_of 'Quill T'
shows_keyboard
opens_chooser
await 10 has_size Select "${own_width}x$((own_height + panel))" ||
    fail "the chooser of ${own_width}x$own_height is $(window_place Select) with the soft keyboard"
place_of Select
grim "$pictures/chooser-keyboard.png"
closes_chooser
end
echo "a sign-on by the soft keyboard, which covers nothing of the dialog"
