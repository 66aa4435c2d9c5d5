#!/bin/sh
# SPDX-License-Identifier: MIT
# The program as a shell sees it: options, folders, a missing display, and the signals that end it.
# Exit code 77: not possible here.
# Usage: start_outside_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool timeout import
program=$1

# ends_with CODE TEXT OPTIONS...: expects that the program ends with CODE after it has printed TEXT.
ends_with() {
    expected=$1 text=$2
    shift 2
    code=0
    timeout -k 5 20 "$program" "$@" >"$work/said" 2>&1 || code=$?
    [ $code -eq "$expected" ] || fail "'$*' ended with $code in place of $expected"
    grep -qF -e "$text" "$work/said" || fail "'$*' did not say '$text' but: $(cat "$work/said")"
}

unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM || :
ends_with 0 'usage: quill' --help
ends_with 1 'there is no display' --root "$work/none"

open_screen
mkdir -m 700 "$work/tmp" "$work/run"
export TMPDIR="$work/tmp" XDG_RUNTIME_DIR="$work/run"
: >"$work/file"
ends_with 2 '--root wants a folder' --root
ends_with 2 '--root wants a folder' --root ''
ends_with 2 "$work/file is no folder" --root "$work/file"
ends_with 2 "$work/file/below is no folder" --root "$work/file/below"
ends_with 2 '--screen wants a size from 100x80 to 4000x4000' --screen 99x80
# A scale below 1 would be unreadable.
for scale in 0 0.5 0.75 0.9 0.999 -1 8.1 nan inf 1x ''; do
    ends_with 2 '--scale wants a number from 1 to 8' --root "$work/none" --scale "$scale"
done
ends_with 2 "'--bogus' is no option" --root "$work/none" --bogus stores.example 23

for scale in 1 1.25 8; do
    ends_with 1 "cannot write $work/no/picture.png" --root "$work/none" --scale $scale \
        --screen 240x320 --snapshot "$work/no/picture.png"
done
ends_with 1 "cannot write $work/no/picture.png" --root "$work/none" --snapshot "$work/no/picture.png"
ends_with 1 "cannot write /dev/full" --root "$work/none" --text /dev/full
timeout -k 5 20 "$program" --root "$work/none" --snapshot "$work/picture.png" --text "$work/text" ||
    fail "a picture and a text ended with $?"
[ -s "$work/picture.png" ] && [ -s "$work/text" ] || fail "no picture or no text was written"

# font_size FOLDER: prints the size that is stored there.
font_size() {
    /usr/bin/python3 -c 'import sqlite3, sys
row = sqlite3.connect(sys.argv[1]).execute("SELECT data FROM registry WHERE name = ?", ["fsize"])
print(int.from_bytes(row.fetchone()[0], "little"))' "$1/registry.db"
}

# Takes a picture of the window and compares it with `seen`.
picture() { import -window "$window" rgb:- | md5sum; }
is_another() { [ "$(picture)" != "$seen" ]; }
is_at_rest() {
    seen=$(picture)
    sleep 0.3
    ! is_another
}

# The program creates a missing folder. Only a normal end stores the larger font and removes the socket
# by which a second start finds the program.
size=8
for signal in HUP INT TERM; do
    root=$work/new/folder
    # A shell starts background programs with SIGINT ignored.
    /usr/bin/python3 -c 'import os, signal, sys
signal.signal(signal.SIGINT, signal.SIG_DFL)
os.execv(sys.argv[1], sys.argv[1:])' "$program" --root "$root" &
    client=$!
    ends_with_us $client
    await 20 has_window '^Quill Telnet  \[\]$' || fail "no window was shown"
    window=$(xdotool search --name '^Quill Telnet  \[\]$' | head -n 1)
    xdotool windowfocus "$window" || :
    await 10 is_at_rest || fail "the window does not come to rest"
    xdotool key ctrl+shift+plus
    await 10 is_another || fail "no larger font was shown"
    # With an open menu, an open dialog, or neither.
    case $signal in
        HUP) xdotool key alt+s ;;
        INT) xdotool key ctrl+shift+n && await 10 has_window '^Connect$' ;;
    esac
    sleep 0.5
    kill -s $signal $client
    code=0
    wait $client || code=$?
    [ $code -eq 0 ] || fail "SIG$signal ended the program with $code"
    left=$(ls -A "$work/tmp")
    [ -z "$left" ] || fail "SIG$signal left $left"
    size=$((size + 1))
    [ "$(font_size "$root")" = $size ] || fail "SIG$signal lost the font's size"
done
echo "options, folders, display and signals: as told"
