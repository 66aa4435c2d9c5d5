#!/bin/sh
# SPDX-License-Identifier: MIT
# ./run under Wayland, from its start to the painted window and to its end, with the display's name and
# without it. The window is the notice of a first start and, where there is a pointer to press its button,
# then that of a session on the demo host. The build is the one that the tests have: here the script's
# builder does nothing, and its installer refuses.
# Exit code 77: not possible here.
# Usage: run_test.sh BUILD-FOLDER PICTURES weston|sway
set -eu
. "$(dirname "$0")/../support/outside.sh"
build=$1 pictures=$2 compositor=$3
here=$(cd "$(dirname "$0")" && pwd)
need convert
mkdir -p "$pictures" "$work/bin" "$work/tree/build" "$work/tmp"
case $compositor in
    weston)
        . "$here/compositor.sh"
        need weston-screenshooter
        open_compositor 1
        answer() { :; }
        color=#efefef least=50000 # the notice
        shoot() {
            rm -f "$work"/wayland-screenshot-*.png
            (cd "$work" && weston-screenshooter) && mv "$work"/wayland-screenshot-*.png "$1"
        }
        ;;
    sway)
        . "$here/sway.sh"
        open_sway 1 'output HEADLESS-1 mode 1800x1300 position 0 0 scale 1'
        open_hand 1800 1300
        answer() {
            place_of 'Quill Telnet$'
            hand click $((left + width * 8 / 10)) $((top + height * 7 / 10)) # OK
            await 20 has_session || fail "$how: no session: $(cat "$work/out") $(tail -n 3 "$work/err")"
        }
        color=white least=300000 # the session
        shoot() { grim "$1"; }
        ;;
esac

tree=$(cd "$here/../.." && pwd)
cp -r "$tree/run" "$tree/scripts" "$work/tree"
ln -s "$build" "$work/tree/build/release"
printf '#!/bin/sh\necho "$@" >>"%s/built"\n' "$work" >"$work/bin/cmake"
printf '#!/bin/sh\nexit 1\n' >"$work/bin/apt-get"
chmod +x "$work/bin/cmake" "$work/bin/apt-get"

# The screen has few pixels of the window's colour.
seen() { convert "$1" -fill black +opaque "$color" -fill white -opaque "$color" -format '%[fx:int(mean*w*h)]' info:; }
shot=$pictures/run-$compositor.png
is_painted() { shoot "$shot" && [ "$(seen "$shot")" -gt $least ]; }
is_gone() { shoot "$shot" && [ "$(seen "$shot")" -lt 10000 ]; }
has_notice() { grep -q 'set_title("Quill Telnet")' "$work/err"; }
has_session() { grep -q 'set_title("Quill Telnet  \[127.0.0.1\]")' "$work/err"; }

await 20 is_gone || fail "the screen has a window before the start"
# runs HOW [ENV-OPTIONS]: to the painted window, and to the end.
runs() {
    how=$1
    shift
    env "$@" WAYLAND_DEBUG=1 PATH="$work/bin:$PATH" TMPDIR="$work/tmp" "$work/tree/run" >"$work/out" 2>"$work/err" &
    ran=$!
    ends_with_us $ran
    await 60 has_notice || fail "$how: no window: $(cat "$work/out") $(tail -n 3 "$work/err")"
    answer
    await 20 is_painted || fail "$how: no window in $shot"
    grep -q 'Connecting to 127.0.0.1, port' "$work/out" || fail "$how: it tells $(cat "$work/out")"
    cp "$shot" "$pictures/run-$compositor-$how.png"
    kill $ran || fail "$how: it has ended"
    code=0
    wait $ran || code=$?
    [ $code -eq 143 ] || fail "$how: it ended with $code"
    await 20 is_gone || fail "$how: the window is still there in $shot"
    ! ls -d "$work/tmp"/quill-run.* 2>/dev/null || fail "$how: it leaves its folder"
}
runs named
grep -q -- '--build --preset release' "$work/built" || fail "nothing was to be built: $(cat "$work/built")"
ln -s "$WAYLAND_DISPLAY" "$XDG_RUNTIME_DIR/wayland-0" 2>/dev/null || [ "$WAYLAND_DISPLAY" = wayland-0 ]
runs unnamed -u WAYLAND_DISPLAY
echo "./run under $compositor, with and without the display's name: a painted window"
