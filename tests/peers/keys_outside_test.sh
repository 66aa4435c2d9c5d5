#!/bin/sh
# SPDX-License-Identifier: MIT
# xdotool presses every key of keys.table, plain and with its modifiers, in the running program under
# Xvfb, in a session with inetutils telnetd, which records the bytes that arrive. Then the mouse taps
# two keys of the input panel.
# Exit code 77: not possible here.
# Usage: keys_outside_test.sh PROGRAM
set -eu
here=$(cd "$(dirname "$0")" && pwd)
. "$here/../support/outside.sh"
need Xvfb xdotool xkbcomp od
program=$1

# The options settle the terminal first.
cat >"$work/record.sh" <<END
#!/bin/sh
sleep 2
stty raw -echo -istrip
: >$work/recording
exec cat >$work/bytes
END
chmod 755 "$work" "$work/record.sh"
: >"$work/bytes"
mkfifo "$work/hold"
"$here/telnetd.sh" -E "$work/record.sh" <"$work/hold" >"$work/port" 2>"$work/telnetd.log" &
telnetd=$!
ends_with_us $telnetd
exec 4>"$work/hold"
await 60 test -s "$work/port" || {
    cat "$work/telnetd.log" >&2
    wait $telnetd || exit $?
    fail "no telnetd"
}

open_screen
# F13 to F20 get keys of their own. xdotool would add a missing key for the time of its press, which a busy
# program may miss.
xkbcomp "$DISPLAY" - 2>/dev/null |
    sed -E -e '/key <FK(1[3-9]|20)> /d' -e '/^xkb_symbols/,/^};/{/^};/i \
    key <FK13> {[F13]}; key <FK14> {[F14]}; key <FK15> {[F15]}; key <FK16> {[F16]}; \
    key <FK17> {[F17]}; key <FK18> {[F18]}; key <FK19> {[F19]}; key <FK20> {[F20]};
    }' | xkbcomp - "$DISPLAY" 2>/dev/null || fail "no keys for F13 to F20"
start_program "$(head -n 1 "$work/port")" --scale 1
await 30 test -e "$work/recording" || fail "the session did not begin"
sleep 1

# A tap on the terminal first, after which keys still go to the program.
xdotool mousemove 120 120 click 1

strike() { xdotool key --delay 1 "$1"; }

# The script presses the rows one after another; a bar after each row separates them.
: >"$work/expected"
rows=0
while read -r key plain shift ctrl both; do
    case $key in '#'* | '') continue ;; esac
    for pair in "$key $plain" "shift+$key $shift" "ctrl+$key $ctrl" "ctrl+shift+$key $both"; do
        strike "${pair%% *}"
        bytes=${pair#* }
        [ "$bytes" = - ] || printf "$bytes" >>"$work/expected"
    done
    strike bar
    printf '|' >>"$work/expected"
    rows=$((rows + 1))
done <"$here/keys.table"

# The input panel by mouse: its button at the lower right, then q and Esc, 15 keys wide and five
# rows of 16 pixels high above the menu bar of 26.
window=$(xdotool search --name '^Quill Telnet  ' | head -n 1)
eval "$(xdotool getwindowgeometry --shell "$window" | grep -E '^(X|Y|WIDTH|HEIGHT)=')"
tap() { xdotool mousemove $((X + $1)) $((Y + $2)) click 1; }
tap $((WIDTH - 17)) $((HEIGHT - 13))
sleep 1
tap $((WIDTH * 2 / 15)) $((HEIGHT - 82))
tap $((WIDTH / 30)) $((HEIGHT - 98))
printf 'q\33' >>"$work/expected"

same() { cmp -s "$work/expected" "$work/bytes"; }
await 20 same || {
    # One line for each row: the expected bytes and the received ones.
    for each in expected bytes; do
        od -An -v -tx1 -w1 "$work/$each" | tr -d '\n' | sed 's/ 7c/ |\n/g' >"$work/$each.rows"
    done
    diff "$work/expected.rows" "$work/bytes.rows" >&2 || :
    fail "other bytes arrived"
}
echo "$rows keys, each plain and with its modifiers: $(wc -c <"$work/bytes") bytes arrived as they should"
