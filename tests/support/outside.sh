# SPDX-License-Identifier: MIT
# Functions for the scripts that drive the program from outside, on a private X server. The scripts
# source this file. When a script ends, every process that it started is ended and $work is removed.
#
# Exit code 77 of a script means: the test is not possible on this machine.

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

# ends_with_us PID: ends that process together with the script; the newest process goes first.
ends_with_us() { started="$1 $started"; }

# await SECONDS COMMAND...: repeats the command until it succeeds.
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

# first_line FILE: waits for the first line of the file and prints it.
first_line() {
    await 10 has_line "$1" || fail "nothing came into $1"
    head -n 1 "$1"
}

# open_screen [WIDTHxHEIGHT]: starts the X server, without key repeat: on a busy machine even a short
# press would repeat. -noreset: a server whose last client leaves starts anew, and refuses the next
# client meanwhile.
open_screen() {
    : >"$work/display"
    Xvfb -r -noreset -displayfd 3 -screen 0 "${1:-1024x768}x24" -nolisten tcp 3>"$work/display" 2>/dev/null &
    ends_with_us $!
    DISPLAY=:$(first_line "$work/display")
    export DISPLAY QT_QPA_PLATFORM=xcb
}

session_title='^Quill Telnet  \[127.0.0.1\]'

# has_window PATTERN: true if a window has a title that matches.
has_window() { xdotool search --name "$1" 2>/dev/null | grep -q .; }

# start_program PORT OPTIONS...: starts $program, answers its notice of the import and connects it to
# the host at that port of this machine; sets `client`.
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

# A box that does not have the keyboard focus yet loses the key, so the key is repeated. The main
# window has its title once the notice is answered.
answer_notice() {
    for try in 1 2 3 4 5; do
        xdotool key Return
        ! await 5 has_window "$session_title" || return 0
    done
    fail "the notice did not close"
}

# find_window: sets `window` to the window with the title of the session.
finds_window() {
    window=$(xdotool search --name "$session_title" 2>/dev/null | head -n 1)
    [ -n "$window" ]
}
find_window() {
    await 30 finds_window || fail "no window with the title of the session"
}
