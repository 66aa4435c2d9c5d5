#!/bin/sh
# SPDX-License-Identifier: MIT
# The size of the window under Wayland, from run to run. The compositor alone decides its place.
# Exit code 77: not possible here.
# Usage: window_size_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
program=$1
here=$(cd "$(dirname "$0")" && pwd)
. "$here/sway.sh"
open_sway 1 'output HEADLESS-1 mode 1600x1200 position 0 0 scale 1'

size() { window_place | sed 's/.* //'; }
has_size() { [ "$(size)" = "$1" ]; }
start() {
    WAYLAND_DEBUG=1 "$program" --root "$work/root" "$@" 2>"$work/err" &
    client=$!
    ends_with_us $client
    await 20 window_place || fail "no window"
}
end() {
    kill $client || fail "the program has gone"
    code=0
    wait $client || code=$?
    [ $code -eq 0 ] || fail "the program ended with $code: $(tail -n 3 "$work/err")"
}
# What the program tells of a window that it draws anew.
has_drawn() { grep -q "set_window_geometry(0, 0, $1, $2)" "$work/err"; }
resize() {
    command_compositor "[app_id=\"quill\"] resize set width $1 px height $2 px"
    await 10 has_drawn "$1" "$2" || fail "the window did not take its size: $(size)"
}

start --scale 2
first=$(size)
resize 900 640
end
grep -qx 'size 450 320' "$work/root/window.cfg" || fail "kept: $(cat "$work/root/window.cfg")"
! grep -q '^place' "$work/root/window.cfg" || fail "a place was kept: $(cat "$work/root/window.cfg")"
for run in 1 2; do
    start --scale 2
    await 10 has_size 900x640 || fail "the size is not back: $(size)"
    end
done
# The same in the device's pixels at another scale, and back.
start --scale 1.5
await 10 has_size 675x480 || fail "the size at another scale: $(size)"
end
start --scale 2
await 10 has_size 900x640 || fail "the size wanders: $(size)"
resize 700 500
end
start --scale 2
await 10 has_size 700x500 || fail "the second size is not back: $(size)"
end
# A screen that was asked for has its own size, and is not kept.
start --scale 2 --screen 300x300
await 10 has_size 600x600 || fail "--screen gives $(size)"
end
start --scale 2
await 10 has_size 700x500 || fail "--screen was kept: $(size)"
end
# A place that X has left there does no harm.
printf 'size 450 320\nplace 5000 -70\ndesktop 1600 1200\nmaximized 0\n' >"$work/root/window.cfg"
start --scale 2
await 10 has_size 900x640 || fail "with a place of X: $(size)"
end
rm "$work/root/window.cfg"
start --scale 2
await 10 has_size "$first" || fail "without a file: $(size) in place of $first"
end
echo "the window has its size from run to run"
