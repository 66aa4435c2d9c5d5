# SPDX-License-Identifier: MIT
# What the scripts share that drive the program from outside, on an X server of their own; sourced by
# them. All that is started is ended, and $work removed, when the script ends.
#
# Exit code 77 of a script: not possible here.

script=$(basename "$0")
fail() { echo "$script: $1" >&2; exit 1; }

# need TOOL...
need() {
    for tool; do
        command -v "$tool" >/dev/null || { echo "$script: $tool is missing" >&2; exit 77; }
    done
}

work=$(mktemp -d "${TMPDIR:-/tmp}/quill-outside.XXXXXX")
started=
clean_up() {
    for each in $started; do kill "$each" 2>/dev/null || :; done
    wait
    rm -rf --one-file-system "$work"
}
trap clean_up EXIT

# ends_with_us PID: of what was started; the newest is ended first.
ends_with_us() { started="$1 $started"; }

# await SECONDS COMMAND...: until it succeeds.
await() {
    tries=$(($1 * 10))
    shift
    until "$@" >/dev/null 2>&1; do
        [ $tries -gt 0 ] || return 1
        tries=$((tries - 1))
        sleep 0.1
    done
}

has_line() { [ "$(wc -l <"$1")" -ge 1 ]; }

# first_line FILE: waits for it.
first_line() {
    await 10 has_line "$1" || fail "nothing came into $1"
    head -n 1 "$1"
}

# open_screen [WIDTHxHEIGHT]: the X server. It repeats no key: on a busy machine one that is only
# pressed would be.
open_screen() {
    : >"$work/display"
    Xvfb -r -displayfd 3 -screen 0 "${1:-1024x768}x24" -nolisten tcp 3>"$work/display" 2>/dev/null &
    ends_with_us $!
    DISPLAY=:$(first_line "$work/display")
    export DISPLAY QT_QPA_PLATFORM=xcb
}

session_title='^Quill Telnet  \[127.0.0.1\]'

# has_window PATTERN: of a title.
has_window() { xdotool search --name "$1" 2>/dev/null | grep -q .; }

# start_program PORT OPTIONS...: $program in a session with a host at that port of this machine, its
# notice of the import answered; sets `client`.
start_program() {
    rm -rf "$work/root"
    mkdir "$work/root"
    printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$1" >"$work/root/mconfig.cfg"
    shift
    "$program" --root "$work/root" "$@" 2>/dev/null &
    client=$!
    ends_with_us $client
    await 30 has_window '^Quill Telnet$' || fail "no notice was shown"
    sleep 1
    answer_notice
}

# What has not got the keyboard yet is asked again. The main window has its title once the notice is
# answered.
answer_notice() {
    for try in 1 2 3 4 5; do
        xdotool key Return
        ! await 5 has_window "$session_title" || return 0
    done
    fail "the notice did not close"
}

# find_window: sets `window`, the one with the title of the session.
finds_window() {
    window=$(xdotool search --name "$session_title" 2>/dev/null | head -n 1)
    [ -n "$window" ]
}
find_window() {
    await 30 finds_window || fail "no window with the title of the session"
}
