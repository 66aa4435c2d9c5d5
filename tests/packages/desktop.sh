# SPDX-License-Identifier: MIT
# What the scripts of this folder share beside ../support/outside.sh; sourced after it. The program's
# user folder is $home/data, so that nothing of the person's own is touched.

home=$work/home
mkdir -m 700 "$home" "$work/run"
export XDG_DATA_HOME="$home/data" HOME="$home" XDG_RUNTIME_DIR="$work/run"

# ends_with CODE TEXT ARGUMENTS...: without a window, after a word about TEXT.
ends_with() {
    expected=$1 text=$2
    shift 2
    code=0
    timeout -k 5 20 "$program" "$@" >"$work/out" 2>"$work/said" || code=$?
    [ $code -eq "$expected" ] || fail "'$*' ended with $code in place of $expected: $(cat "$work/said")"
    [ -z "$text" ] || grep -qF -e "$text" "$work/out" "$work/said" ||
        fail "'$*' did not say '$text' but: $(cat "$work/said")"
}

# stored FOLDER NAME: the value there, a number or a text; nothing where there is none.
stored() {
    /usr/bin/python3 - "$1/registry.db" "$2" <<'END'
import sqlite3, sys
row = sqlite3.connect(sys.argv[1]).execute(
    "SELECT type, data FROM registry WHERE name = ?", [sys.argv[2]]).fetchone()
if row:
    print(int.from_bytes(row[1], "little") if row[0] == 4 else row[1].decode("utf-16-le").rstrip("\0"))
END
}

# store FOLDER NAME=VALUE...: as the program would have left it.
store() {
    folder=$1
    shift
    mkdir -p "$folder"
    for each; do
        case ${each#*=} in
            '' | *[!0-9]*) printf '%s = "%s"\n' "${each%%=*}" "${each#*=}" ;;
            *) printf '%s = %s\n' "${each%%=*}" "${each#*=}" ;;
        esac
    done >"$folder/mconfig.cfg"
    timeout -k 5 30 "$program" --root "$folder" --screen 400x300 --text "$work/rest" 2>/dev/null ||
        fail "the settings of $folder were not stored"
}

# main_window TITLE: waits for it; sets `window`.
finds_title() {
    window=$(xdotool search --onlyvisible --name "$1" 2>/dev/null | head -n 1)
    [ -n "$window" ]
}
main_window() { await 30 finds_title "$1" || fail "no window with the title $1"; }

# caught_up WINDOW: its program has taken every message that X sent it until now.
caught_up() {
    /usr/bin/python3 "$(dirname "$0")/x_window.py" ping "$1" 2>"$work/ping" || fail "$(cat "$work/ping")"
}

# answer_box: presses Return in the program's message box until it has gone.
has_no_box() { ! has_window '^Quill Telnet$'; }
answer_box() {
    for try in 1 2 3 4 5; do
        box=$(xdotool search --onlyvisible --name '^Quill Telnet$' 2>/dev/null | tail -n 1)
        xdotool windowfocus --sync "$box" key Return 2>/dev/null || :
        ! await 5 has_no_box || return 0
    done
    fail "the box did not close"
}

# open_window ARGUMENTS...: sets `client`; its stderr is in $work/err.
open_window() {
    "$program" "$@" 2>"$work/err" &
    client=$!
    ends_with_us $client
}

# end_window: as the program's own Exit does.
end_window() {
    kill -TERM $client
    code=0
    wait $client || code=$?
    [ $code -eq 0 ] || fail "the program ended with $code"
}

# start_demo: a host of this machine; sets `port`.
start_demo() {
    : >"$work/host"
    "$demo" >"$work/host" &
    ends_with_us $!
    port=$(first_line "$work/host")
    port=${port##*:}
}
