#!/bin/sh
# SPDX-License-Identifier: MIT
# The program under Wayland: a session on a headless compositor of the test's own, at one scale, with
# pictures of the program's own and of the compositor's screen. Afterwards nothing is painted any more.
# Exit code 77: not possible here.
# Usage: wayland_test.sh PROGRAM SCALE PICTURES [OUTPUT-SCALE]
set -eu
. "$(dirname "$0")/../support/outside.sh"
need weston-screenshooter convert
program=$1 scale=$2 pictures=$3 density=${4:-1}
. "$(dirname "$0")/compositor.sh"
mkdir -p "$pictures"
open_compositor "$density"

: >"$work/port"
/usr/bin/python3 "$(dirname "$0")/frame_host.py" >"$work/port" &
ends_with_us $!
mkdir "$work/root"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$(first_line "$work/port")" \
    >"$work/root/mconfig.cfg"

# Text at a scale with a fraction is not that of scale 1, enlarged.
reference=
case $scale:$density in
    *.*:1)
        reference=$pictures/one-for-$scale.png
        timeout -k 5 60 "$program" --root "$work/root" --scale 1 --snapshot "$reference" ||
            fail "the program ended with $?"
        ;;
esac
frame_check() { /usr/bin/python3 "$(dirname "$0")/frame_check.py" "$1" "$scale" "$density" ${reference:+"$reference"}; }

# A start saves a picture of its own.
own=$pictures/own-$scale-$density.png
timeout -k 5 60 "$program" --root "$work/root" --scale "$scale" --snapshot "$own" --text "$work/text" ||
    fail "the program ended with $?"
grep -q 'twelve pallets' "$work/text" || fail "the session's text is missing"
frame_check "$own" || fail "see $own"

# The next one has its settings, and its window is on the compositor's screen. A window there keeps
# its size within the frame that the toolkit draws.
WAYLAND_DEBUG=1 "$program" --root "$work/root" --scale "$scale" 2>"$work/err" &
client=$!
ends_with_us $client
shown() {
    rm -f "$work"/wayland-screenshot-*.png
    (cd "$work" && weston-screenshooter) || return 1
    mv "$work"/wayland-screenshot-*.png "$pictures/screen-$scale-$density.png"
    frame_check "$pictures/screen-$scale-$density.png" >/dev/null
}
await 30 shown || fail "no whole frame in $pictures/screen-$scale-$density.png"
paints() { grep -c 'wl_surface@.*commit' "$work/err"; }
rests() { before=$(paints) && sleep 1 && [ "$before" = "$(paints)" ]; }
await 2 rests || fail "the window is painted without end" # 20 tries of a second
kill "$client"
code=0
wait "$client" || code=$?
[ $code -eq 0 ] || fail "the program ended with $code"
echo "scale $scale on a screen of density $density: whole lines, sharp text, and a window at rest"
