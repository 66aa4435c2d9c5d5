# SPDX-License-Identifier: MIT
# A headless Wayland compositor of the test's own that obeys commands; sourced after
# ../support/outside.sh. Nothing of the person's session is reached.

need sway swaymsg grim setpriv
[ -n "$(find /usr/lib -name libqwayland-generic.so -path '*qt6*' 2>/dev/null | head -n 1)" ] ||
    { echo "$script: the toolkit has no Wayland here" >&2; exit 77; }
# What the toolkit and the graphics libraries keep until the end is theirs.
export ASAN_OPTIONS="${ASAN_OPTIONS:-}:detect_leaks=0"
export XDG_RUNTIME_DIR="$work/runtime" HOME="$work"
mkdir -m 700 "$XDG_RUNTIME_DIR"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM QT_IM_MODULE XDG_SESSION_TYPE XDG_CURRENT_DESKTOP SWAYSOCK || :

finds_sway() {
    SWAYSOCK=$(find "$XDG_RUNTIME_DIR" -name 'sway-ipc*')
    WAYLAND_DISPLAY=$(find "$XDG_RUNTIME_DIR" -name 'wayland-*' ! -name '*.lock' -printf '%f')
    [ -n "$SWAYSOCK" ] && [ -n "$WAYLAND_DISPLAY" ] && swaymsg -s "$SWAYSOCK" workspace 1
}

# open_sway SCREENS LINE...: the lines are its configuration. The program's windows have no frame.
open_sway() {
    # The compositor does not run as root.
    as_nobody=
    if [ "$(id -u)" = 0 ]; then
        chmod 755 "$work"
        chown nobody "$XDG_RUNTIME_DIR"
        as_nobody="setpriv --reuid=nobody --regid=nogroup --clear-groups"
    fi
    screens=$1
    shift
    printf '%s\n' 'xwayland disable' 'for_window [app_id="quill"] floating enable, border none' "$@" >"$work/sway"
    WLR_BACKENDS=headless WLR_HEADLESS_OUTPUTS=$screens WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman \
        $as_nobody sway -c "$work/sway" >"$work/sway.log" 2>&1 &
    ends_with_us $!
    await 20 finds_sway || { cat "$work/sway.log" >&2; fail "no compositor"; }
    export SWAYSOCK WAYLAND_DISPLAY
}

# window_place [PATTERN]: the place of the program's window whose title begins so, as X,Y WIDTHxHEIGHT.
window_place() {
    swaymsg -t get_tree | /usr/bin/python3 -c '
import json, re, sys
def windows(node):
    if node.get("app_id") == "quill" and re.match(sys.argv[1], node["name"] or ""):
        yield node["rect"]
    for each in node["nodes"] + node["floating_nodes"]:
        yield from windows(each)
print("%(x)d,%(y)d %(width)dx%(height)d" % next(windows(json.load(sys.stdin))))' "${1:-}"
}
command_compositor() { swaymsg "$@" >/dev/null || fail "the compositor does not obey: $*"; }

# place_of TITLE: waits for that window; sets left, top, width and height.
place_of() {
    await 20 window_place "$1" || fail "no window '$1'"
    place=$(window_place "$1")
    left=${place%%,*} top=${place#*,} width=${place#* }
    top=${top%% *} height=${width#*x} width=${width%x*}
}

# open_hand WIDTH HEIGHT: a pointer on a desktop of that size.
open_hand() {
    mkfifo "$work/hand"
    : >"$work/done"
    /usr/bin/python3 "$here/pointer.py" "$1" "$2" <"$work/hand" >"$work/done" &
    ends_with_us $!
    exec 7>"$work/hand"
    await 10 grep -q ready "$work/done" ||
        { echo "$script: the compositor takes no pointer of a program" >&2; exit 77; }
    commands=0
}
# hand COMMAND...: the pointer has done it.
has_done() { [ "$(wc -l <"$work/done")" -gt $commands ]; }
hand() {
    commands=$((commands + 1))
    echo "$@" >&7
    await 20 has_done || fail "the pointer did not: $*"
}
