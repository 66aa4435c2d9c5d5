# SPDX-License-Identifier: MIT
# A headless Wayland compositor of the test's own, without an input device; sourced after
# ../support/outside.sh. Nothing of the person's session is reached: there is no X server, and the
# run-time folder is below $work. Which platform the toolkit takes is left to it, as ./run does.

need weston
[ -n "$(find /usr/lib -name libqwayland-generic.so -path '*qt6*' 2>/dev/null | head -n 1)" ] ||
    { echo "$script: the toolkit has no Wayland here" >&2; exit 77; }
# What the toolkit and the graphics libraries keep until the end is theirs.
export ASAN_OPTIONS="${ASAN_OPTIONS:-}:detect_leaks=0"
export XDG_RUNTIME_DIR="$work/runtime" HOME="$work"
mkdir -m 700 "$XDG_RUNTIME_DIR"
unset DISPLAY QT_QPA_PLATFORM QT_IM_MODULE XDG_SESSION_TYPE XDG_CURRENT_DESKTOP || :

# open_compositor DENSITY: its screen has 1800x1300 pixels.
open_compositor() {
    weston --backend=headless-backend.so --use-pixman --scale="$1" \
        --width=$((1800 / $1)) --height=$((1300 / $1)) \
        --socket=quill-test --idle-time=0 --no-config --debug >"$work/weston.log" 2>&1 &
    ends_with_us $!
    export WAYLAND_DISPLAY=quill-test
    await 20 test -S "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY" || { cat "$work/weston.log" >&2; fail "no compositor"; }
}
