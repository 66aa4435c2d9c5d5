#!/bin/sh
# SPDX-License-Identifier: MIT
# The end of a session of the X desktop: its manager asks the program to save itself, gets the command that
# starts the same profile again, and ends it. Settings and place are saved when the manager has its answer.
# Exit code 77: not possible here.
# What is named by its place in the first folder is the same from any other.
# Usage: x_session_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool
program=$(readlink -f "$1")
here=$(cd "$(dirname "$0")" && pwd)
/usr/bin/python3 -c 'import ctypes; ctypes.CDLL("libSM.so.6")' 2>/dev/null ||
    { echo "$script: the library of session managers is missing" >&2; exit 77; }
# What the toolkit's libraries keep until the end is theirs.
export ASAN_OPTIONS="${ASAN_OPTIONS:-}:detect_leaks=0"
export HOME="$work" XDG_DATA_HOME="$work/data" ICEAUTHORITY="$work/ice"
open_screen 1600x1200

# A manager for one program; it ends with that.
mkfifo "$work/word"
opens_manager() {
    : >"$work/told"
    /usr/bin/python3 "$here/session_manager.py" <"$work/word" >"$work/told" &
    manager=$!
    ends_with_us $manager
    exec 7>"$work/word"
    SESSION_MANAGER=$(first_line "$work/told")
    export SESSION_MANAGER
}
# expects FOLDER ARGUMENTS...: the manager would start the program there, with these; without the name of
# the session.
expects() {
    await 20 grep -qx saved "$work/told" || fail "it was not saved: $(cat "$work/told" "$work/err")"
    sed '1d;/^saved$/,$d' "$work/told" >"$work/again"
    grep -qx "in $1" "$work/again" || fail "not in $1: $(cat "$work/again")"
    shift
    again=$(sed '/^in /d' "$work/again" | sed 3d | tr '\n' ' ')
    [ "$again" = "$program -session $* " ] || fail "the command is $again"
}
gone() { ! kill -0 $client 2>/dev/null; }
ends() {
    await 20 gone || fail "the program is still there"
    code=0
    wait $client || code=$?
    [ $code -eq 0 ] || fail "the program ended with $code: $(tail -n 5 "$work/err")"
}
setting() { env -u SESSION_MANAGER "$program" "$@" --export | sed -n 's/^fsize = //p'; }
saves_twice() { [ "$(grep -cx saved "$work/told")" -ge 2 ]; }
has_grown() {
    xdotool windowfocus "$window" key --window "$window" ctrl+shift+plus && sleep 1 &&
        echo save >&7 && sleep 1 && [ "$(setting "$@")" -gt "$before" ]
}
# saves TITLE ARGUMENTS...: it saves a larger font when it is asked to, and goes on.
saves() {
    await 30 has_window "$1" || fail "no window $1"
    window=$(xdotool search --onlyvisible --name "$1" | head -n 1)
    shift
    before=$(setting "$@")
    await 1 has_grown "$@" || fail "the font's size $before is not saved"
    await 20 saves_twice || fail "it did not save itself again"
    kill -0 $client || fail "it ended before it was told to"
}

# The folder of the settings is beside that of the start. The usual scale is too large for this window, and the
# program's choice of another one is not a word of the person.
env -u SESSION_MANAGER QT_QPA_PLATFORM=offscreen timeout -k 5 60 "$program" --root "$work/beside" \
    --text "$work/text" || fail "the start without a session ended with $?"
opens_manager
mkdir "$work/first"
cd "$work/first"
ln -s "$program" quill
./quill --root ../beside --screen 1000x700 2>"$work/err" &
client=$!
ends_with_us $client
has_chosen() { tr '\0' '\n' <"/proc/$client/environ" | grep -qx QUILL_CHOSEN_SCALE=1.5; }
await 20 has_chosen || fail "it chose no scale: $(cat "$work/err")"
expects "$work/first" --root "$work/beside" --screen 1000x700
saves '^Quill Telnet' --root "$work/beside"
echo end >&7
ends
wait $manager || fail "the manager ended with $?"
cd /
[ ! -e "$work/beside/window.cfg" ] || fail "it keeps a size that it was given"

opens_manager

# In a session with a host, whose end the program would ask about.
: >"$work/port"
/usr/bin/python3 "$here/frame_host.py" >"$work/port" &
ends_with_us $!
env -u SESSION_MANAGER QT_QPA_PLATFORM=offscreen timeout -k 5 60 "$program" --profile stores --text "$work/text" ||
    fail "the first start ended with $?"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\nconfirm_exit = 1\n' "$(first_line "$work/port")" \
    >"$(dirname "$(find "$work/data" -name registry.db)")/mconfig.cfg"
env -u SESSION_MANAGER QT_QPA_PLATFORM=offscreen timeout -k 5 60 "$program" --profile stores --text "$work/text" ||
    fail "the second start ended with $?"
port=$(cat "$work/port")
"$program" --profile stores --scale 2 -- 127.0.0.1 "$port" 2>"$work/err" &
client=$!
ends_with_us $client
await 30 has_window "$session_title" || fail "no session"
expects / --profile stores --scale 2 -- 127.0.0.1 "$port"

# At the end of the session it saves what has changed, before it is ended.
saves "$session_title" --profile stores
echo end >&7
ends
place=$(find "$work/data" -name window.cfg)
[ -n "$place" ] && grep -q '^size ' "$place" || fail "the window's place is not kept"
echo "the manager of an X session saves and ends the program, and would start its profile again"
