# SPDX-License-Identifier: MIT
# Functions for the scripts of this folder, which source this file with `top` set to the source tree.
# Wine's prefix is a folder below build/, which is created once and kept. Its windows are on a virtual
# desktop of Wine, on a screen of Xvfb.
#
# Exit code 77 of a script means: the test is not possible on this machine.

for tool in wine wineserver Xvfb xdotool import; do
    command -v $tool >/dev/null || { echo "$0: $tool is missing" >&2; exit 77; }
done

export WINEPREFIX="${QUILL_WINE_PREFIX:-$top/build/wine}"
export WINEDLLOVERRIDES=mscoree,mshtml= WINEDEBUG=-all
settings_key='HKCU\Software\QUILLWARE\TELNET'
title="Quill Telnet"
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-wine.XXXXXX")
started=

fail() {
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

clean_up() {
    trap - EXIT
    wineserver -k 2>/dev/null || :
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

start_screen() {
    : >"$work/display"
    Xvfb -r -displayfd 3 -screen 0 "${screen_size:-1024x768}x24" -nolisten tcp 3>"$work/display" 2>/dev/null &
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
    wineserver -p
    device_root=$(winepath -u "$(wine cmd /c 'echo %APPDATA%' | tr -d '\r')")/Quill
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

has_window() { xdotool search --name "$1" 2>/dev/null | grep -q .; }
has_no_window() { ! has_window "$1"; }
count_windows() { xdotool search --name "^$title" 2>/dev/null | wc -l; }
has_ended() { ! kill -0 "$1" 2>/dev/null; }

# A box that does not have the keyboard focus yet loses the key, so the key is repeated. The main
# window has its title once the notice of the import is answered.
answer_notice() {
    for try in 1 2 3 4 5; do
        xdotool key Return
        ! await 5 has_window "^$title  \[127.0.0.1\]$" || return 0
    done
    fail "the notice of the import did not close"
}

type_line() {
    xdotool type --delay 40 "$1"
    xdotool key Return
}

# rows_darker_than PERCENT: counts the pixel rows in the upper left of the desktop whose average is
# darker.
rows_darker_than() {
    import -window root "$work/look.png"
    convert "$work/look.png" -crop 600x440+20+24 -colorspace Gray -scale '1x440!' -depth 8 gray:- |
        od -An -v -tu1 -w1 | awk -v most="$1" '$1 * 100 < most * 255 { rows++ } END { print rows + 0 }'
}

# Two rows in reverse video have 16 pixels each.
has_reverse_rows() { [ "$(rows_darker_than 30)" -ge 24 ]; }
is_painted() { [ "$(rows_darker_than 99)" -ge 8 ]; }

# ---------------------------------------------------------------- the host's side

# start_server COMMAND...: starts a server that prints its port in its first line, runs until its input
# closes (file 9 here), and ends with 77 if it is not possible here; sets server_port.
start_server() {
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
