# SPDX-License-Identifier: MIT
# Functions for the scripts of this folder, which source this file with `top` set to the source tree.
# Wine's prefix is a folder below build/, which is created once and kept. Its windows are on a virtual
# desktop of Wine, on a screen of Xvfb.
#
# Exit code 77 of a script means: the test is not possible on this machine.

for tool in wine wineserver Xvfb xdotool import convert; do
    command -v $tool >/dev/null || { echo "$0: $tool is missing" >&2; exit 77; }
done

export WINEPREFIX="${QUILL_WINE_PREFIX:-$top/build/wine}"
export WINEDLLOVERRIDES=mscoree,mshtml= WINEDEBUG=-all
settings_key='HKCU\Software\QUILLWARE\TELNET'
title="Quill Telnet"
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-wine.XXXXXX")
started=
step="its first line"
told=

fail() {
    told=yes
    printf '%s: %s\n' "$(basename "$0")" "$1" >&2
    [ -z "${DISPLAY:-}" ] || import -window root "$pictures/failed-$(basename "$0" .sh).png" || :
    exit 1
}

# run COMMAND...: runs it in the background and ends it with the script.
run() {
    "$@" &
    last=$!
    started="$last $started"
}

# A command that ends the script without a message is reported with what came before it.
clean_up() {
    case $? in
        0 | 77) ;;
        *) [ -n "$told" ] || echo "$(basename "$0"): a command failed after $step" >&2 ;;
    esac
    trap - EXIT
    ! wineserver -k 2>/dev/null || timeout 20 wineserver -w || : # the next test needs a new one
    for each in $started; do kill "$each" 2>/dev/null || :; done
    wait
    rm -rf "$work"
}
trap clean_up EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# await SECONDS COMMAND...: repeats the command until it succeeds.
await() {
    tries=$(($1 * 10))
    shift
    while ! "$@" >/dev/null 2>&1; do
        [ $tries -gt 0 ] || return 1
        tries=$((tries - 1))
        sleep 0.1
    done
}

has_line() { [ "$(wc -l <"$1")" -ge 1 ]; }

# first_line FILE: waits for the first line of the file and prints it.
first_line() {
    await 30 has_line "$1" || fail "nothing came into $1"
    head -n 1 "$1"
}

# Without -noreset the server forgets its keyboard layout when its last client leaves.
start_screen() {
    step="the start of the screen"
    : >"$work/display"
    Xvfb -r -noreset -displayfd 3 -screen 0 "${screen_size:-1024x768}x24" -nolisten tcp 3>"$work/display" 2>/dev/null &
    started="$! $started"
    DISPLAY=:$(first_line "$work/display")
    export DISPLAY
}

# A new prefix takes about ten seconds. Call it after start_screen: the first process that Wine starts
# decides whether windows are possible.
prepare_prefix() {
    if [ ! -e "$WINEPREFIX/quill-ready" ]; then
        rm -rf "$WINEPREFIX"
        mkdir -p "$WINEPREFIX"
        wineboot -i >"$work/wineboot.log" 2>&1 || { cat "$work/wineboot.log" >&2; exit 1; }
        wine reg add 'HKCU\Software\Wine\Explorer' /v Desktop /d Default /f >/dev/null
        wine reg add 'HKCU\Software\Wine\Explorer\Desktops' /v Default /d 1024x768 /f >/dev/null
        wineserver -k || :
        wineserver -w
        : >"$WINEPREFIX/quill-ready"
    fi
    await 20 wineserver -p || fail "no wineserver"
    await 20 find_device_root || fail "Wine does not start"
    step="the start of Wine"
}
# A Wine that is still about to end refuses a program.
find_device_root() {
    data=$(wine cmd /c 'echo %APPDATA%' | tr -d '\r')
    [ -n "$data" ] && device_root=$(winepath -u "$data")/Quill
}

# Resets the device to its state before the first start.
fresh_device() {
    rm -rf "$device_root"
    mkdir -p "$device_root"
    wine reg delete "$settings_key" /f >/dev/null 2>&1 || :
}

# setting NAME: prints its value in the registry in the form of `wine reg query`.
setting() {
    wine reg query "$settings_key" /v "$1" 2>/dev/null | tr -d '\r' |
        sed -n "s/^ *$1 *REG_[A-Z]* *//p"
}

picture() { import -window root "$pictures/$1.png" || fail "no picture"; }

pictures=$top/build/windows-pictures
mkdir -p "$pictures"

# ---------------------------------------------------------------- the program's windows

# windows_named NAME: prints the ids of the visible windows; upper and lower case differ.
windows_named() {
    for each in $(xdotool search --onlyvisible --name "$1" 2>/dev/null); do
        ! xdotool getwindowname "$each" 2>/dev/null | grep -q -e "$1" || echo "$each"
    done
}
has_window() { windows_named "$1" | grep -q .; }
has_no_window() { ! has_window "$1"; }
count_windows() { windows_named "^$title" | wc -l; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }
main="^$title  \["

# ---------------------------------------------------------------- the keyboard

# A key goes to the window with the focus of the X server. Wine moves the focus some time after it shows
# a window, and back to its desktop when a window closes; a key in between can be lost. So each step sets
# the focus first, and a key is repeated only if Wine has moved the focus and the key had no effect.
has_focus() { [ "$(xdotool getwindowfocus 2>/dev/null)" = "$(windows_named "$1" | tail -n 1)" ]; }
keeps_focus() { has_focus "$1" && sleep 0.2 && has_focus "$1"; }
takes_focus() {
    keeps_focus "$1" || {
        xdotool windowfocus "$(windows_named "$1" | tail -n 1)" && keeps_focus "$1"
    }
}
focus_on() { await 20 takes_focus "$1" || fail "no window $1 that takes the keyboard"; }

# press_in WINDOW KEY COMMAND...: presses the key in that window and waits until the command succeeds.
press_in() {
    target=$1 key=$2
    step="the key $2"
    shift 2
    for try in 1 2 3 4 5; do
        focus_on "$target"
        xdotool key "$key"
        ! await 20 "$@" || return 0
        ! has_focus "$target" || return 1
    done
    return 1
}
press() { press_in "$main" "$@"; }

# close_box WINDOW KEY: closes a box by the key, which goes to no other window.
close_box() { press_in "$1" "$2" has_no_window "$1" || fail "$1 did not close by $2"; }

# The menu that is open has a window without a name; sets menu to it.
has_menu() {
    for menu in $(xdotool search --onlyvisible --class '^quill' 2>/dev/null); do
        [ -n "$(xdotool getwindowname "$menu" 2>/dev/null)" ] ||
            [ "$(xdotool getwindowgeometry "$menu" 2>/dev/null | grep -c 'Geometry: [0-9]\{2,\}x')" = 0 ] || return 0
    done
    return 1
}
has_no_menu() { ! has_menu; }
leave_menu() {
    for try in 1 2 3; do
        has_menu || return 0
        xdotool key Escape
        ! await 2 has_no_menu || return 0
    done
}

# open_menu KEY: one attempt to open a menu of the main window.
open_menu() {
    focus_on "$main"
    xdotool key "$1"
    await 5 has_menu
}

# open_by_keys WINDOW KEY KEY: opens a menu and chooses its entry until the window appears.
open_by_keys() {
    for attempt in 1 2 3 4 5; do
        if open_menu "$2"; then
            xdotool key "$3"
            ! await 10 has_window "$1" || return 0
        fi
        leave_menu
    done
    fail "$1 did not open by $2 and $3"
}

# step_menu KEY: moves in the open menu and waits until the menu shows it.
menu_look() { import -window "$menu" gray:- | cksum; }
menu_differs() { [ "$(menu_look)" != "$menu_was" ]; }
step_menu() {
    has_menu || return 1
    menu_was=$(menu_look)
    xdotool key "$1"
    await 5 menu_differs
}

# look_at PART: remembers a part of the screen in the form WxH+X+Y; looks_different is true after it
# has changed.
part_look() { import -window root -crop "$part" gray:- | cksum; }
look_at() {
    part=$1
    part_was=$(part_look)
}
looks_different() { [ "$(part_look)" != "$part_was" ]; }

# await_rest AREA: waits until the area stays the same for more than a cursor's blink.
await_rest() {
    look_at "$1"
    same=0
    while [ $same -lt 15 ]; do
        sleep 0.1
        same=$((same + 1))
        ! looks_different || {
            look_at "$1"
            same=0
        }
    done
}

# press_and_see AREA KEY: presses a key that changes this area of the screen.
press_and_see() {
    look_at "$1"
    press "$2" looks_different || fail "$2 changed nothing on the screen"
}

await_notice() { await 30 has_window '^Quill Telnet$' || fail "no notice of the import"; }

# The main window has its title once the notice of the import is answered.
answer_notice() {
    await_notice
    close_box '^Quill Telnet$' Return
    await 20 has_window "${1:-^$title  \[127.0.0.1\]$}" || fail "no window after the notice of the import"
}

# type_line TEXT: types it and presses Enter after all of it has left the program.
type_line() {
    focus_on "$main"
    typed_from=$(wc -c <"$work/sent")
    typed_length=${#1}
    xdotool type --delay 40 "$1"
    await 10 has_left || fail "of $1 the program sent $(($(wc -c <"$work/sent") - typed_from)) bytes"
    xdotool key Return
}
has_left() { [ "$(($(wc -c <"$work/sent") - typed_from))" -ge "$typed_length" ]; }

# leave [KEY]: ends the program by its key, the one of the Exit command if no other is given.
leave() {
    press "${1:-ctrl+shift+q}" has_ended "$client" || fail "the program did not end"
    wait "$client" || fail "the program ended with code $?"
}

# rows_darker_than PERCENT: counts the pixel rows in the upper left of the desktop whose average is
# darker.
rows_darker_than() {
    import -window root "$work/look.png"
    convert "$work/look.png" -crop 600x390+20+70 -colorspace Gray -scale '1x390!' -depth 8 gray:- |
        od -An -v -tu1 -w1 | awk -v most="$1" '$1 * 100 < most * 255 { rows++ } END { print rows + 0 }'
}

# Two rows in reverse video have 16 pixels each.
has_reverse_rows() { [ "$(rows_darker_than 30)" -ge 24 ]; }
is_painted() { [ "$(rows_darker_than 99)" -ge 8 ]; }

# ---------------------------------------------------------------- the host's side

# start_server COMMAND...: starts a server that prints its port in its first line, runs until its input
# closes (file 9 here), and ends with 77 if it is not possible here; sets server_port.
start_server() {
    step="the start of the server"
    mkfifo "$work/hold"
    : >"$work/host"
    "$@" <"$work/hold" >"$work/host" 2>"$work/host.log" &
    server=$!
    exec 9>"$work/hold"
    started="$server $started"
    serves() { has_line "$work/host" || has_ended "$server"; }
    await 60 serves || fail "the server did not start"
    has_line "$work/host" || {
        status=0
        wait "$server" || status=$?
        cat "$work/host.log" >&2
        exit $status
    }
    server_port=$(sed -n '1s/^[^0-9]*//p' "$work/host")
}

# start_relay PORT: sets relay_port; the relay writes the program's bytes to $work/sent and the host's
# to $work/received.
start_relay() {
    step="the start of the relay"
    : >"$work/sent"
    : >"$work/received"
    run socat -d -d -lf"$work/relay.log" -r "$work/sent" -R "$work/received" \
        TCP4-LISTEN:0,bind=127.0.0.1,reuseaddr,fork,nodelay "TCP4:127.0.0.1:$1,nodelay"
    relay=$last
    await 10 grep -q 'listening on' "$work/relay.log" || fail "no relay"
    relay_port=$(sed -n 's/.*listening on .*127\.0\.0\.1:\([0-9]*\).*/\1/p' "$work/relay.log")
    sent_from=1
}

stop_relay() {
    kill "$relay"
    await 10 has_ended "$relay" || fail "the relay does not end"
}

received() { tr -d '\000' <"$work/received" | grep -aq -e "$1"; }
sent() { tr -d '\000' <"$work/sent" | grep -aq -e "$1"; }
begin_sent() { sent_from=$(($(wc -c <"$work/sent") + 1)); }
sent_bytes() { tail -c "+$sent_from" "$work/sent" | od -An -c | tr -s ' \n' ' '; }

# sent_is TEXT: true if the program sent exactly these bytes since begin_sent; TEXT is a printf format.
sent_is() {
    printf "$1" >"$work/wanted"
    tail -c "+$sent_from" "$work/sent" | cmp -s - "$work/wanted"
}
