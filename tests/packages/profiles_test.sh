#!/bin/sh
# SPDX-License-Identifier: MIT
# Profiles: folders, list, one window each, and what tells the windows apart.
# Usage: profiles_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool xprop
program=$1
. "$(dirname "$0")/desktop.sh"

ends_with 0 '' --profiles
[ ! -s "$work/out" ] || fail "there are profiles: $(cat "$work/out")"
[ ! -e "$home/data" ] || fail "the list made a folder"
open_screen

count_windows() { [ "$(xdotool search --name '^Quill Telnet  \[' 2>/dev/null | wc -l)" -eq "$1" ]; }
open_window --profile stores
first=$client
main_window '^Quill Telnet  \['
stores=$window
open_window --profile b2.old_-x
second=$client
await 30 count_windows 2 || fail "the second profile has no window"
open_window
third=$client
await 30 count_windows 3 || fail "no window beside those of the profiles"

# What a task bar reads.
xprop -id "$stores" >"$work/marks"
grep -q '^WM_CLASS(STRING) = "quill-stores", "quill"$' "$work/marks" || fail "class: $(grep CLASS "$work/marks")"
grep -q '^_NET_WM_ICON_NAME.* = "stores - Quill"$' "$work/marks" || fail "icon name: $(grep ICON_NAME "$work/marks")"
grep -q '^_NET_WM_NAME.* = "Quill Telnet  \[\]"$' "$work/marks" || fail "title: $(grep NET_WM_NAME "$work/marks")"
icon_of() { xprop -id "$1" -notype 32c _NET_WM_ICON | md5sum; }
own=$(xdotool search --class '^quill$' 2>/dev/null | while read -r each; do
    xprop -id "$each" WM_CLASS WM_NAME 2>/dev/null | grep -q '"quill", "quill"' &&
        xprop -id "$each" _NET_WM_ICON | grep -q Icon && echo "$each"; done | head -n 1)
[ -n "$own" ] || fail "the plain window has another class"
[ "$(icon_of "$stores")" != "$(icon_of "$own")" ] || fail "the icons are the same"

# One window a profile.
timeout -k 5 20 "$program" --profile stores || fail "a second start ended with $?"
count_windows 3 || fail "a profile has two windows"
kill -TERM $first $second $third
for each in $first $second $third; do wait "$each" || fail "a profile ended with $?"; done

[ "$(stat -c %a "$home/data/quill/profiles" "$home/data/quill/profiles/stores" | sort -u)" = 700 ] ||
    fail "others may look into the folders"
for folder in quill quill/profiles/stores quill/profiles/b2.old_-x; do
    [ "$(stored "$home/data/$folder" fsize)" = 8 ] || fail "no settings in $folder"
done
: >"$home/data/quill/profiles/file"
mkdir "$home/data/quill/profiles/no profile"
ends_with 0 '' --profiles
[ "$(cat "$work/out")" = "$(printf 'b2.old_-x\nstores')" ] || fail "the list: $(cat "$work/out")"

# A profile that is a file, or cannot be made.
ends_with 2 'is no folder' --profile file

# A folder that cannot be written: the program works and says that it keeps nothing. Root may write
# everywhere, so it is another user's program then, and a copy where that user may start it.
plainly() { "$@"; }
[ "$(id -u)" != 0 ] || plainly() { setpriv --reuid 65534 --regid 65534 --clear-groups "$@"; }
mkdir -m 777 "$work/open"
cp "$program" "$work/open/quill"
chmod 755 "$work/open/quill"
locked=$home/data/quill/profiles/locked
mkdir "$locked"
chmod 755 "$work" "$home" "$home/data" "$home/data/quill" "$home/data/quill/profiles"
chmod 555 "$locked"
code=0
XDG_RUNTIME_DIR=$work/nowhere plainly timeout -k 5 60 "$work/open/quill" --platform offscreen \
    --profile locked --text "$work/open/text" 2>"$work/said" || code=$?
[ $code -eq 0 ] || fail "in a folder that cannot be written it ended with $code: $(cat "$work/said")"
grep -q offline "$work/open/text" || fail "in a folder that cannot be written it shows: $(cat "$work/open/text")"
grep -q 'locked cannot be written; the settings of this run are not kept' "$work/said" ||
    fail "said: $(cat "$work/said")"
[ -z "$(ls -A "$locked")" ] || fail "written nevertheless: $(ls -A "$locked")"

# Settings that it may only read hold all the same, also in an export: it connects to the stored host.
cat >"$work/host.py" <<'END'
import socket
listener = socket.create_server(("127.0.0.1", 0))
print(listener.getsockname()[1], flush=True)
peer, _ = listener.accept()
peer.sendall(b"from the stored host")
peer.recv(1)
END
/usr/bin/python3 "$work/host.py" >"$work/port" &
ends_with_us $!
port=$(first_line "$work/port")
chmod 755 "$locked"
store "$locked" host=127.0.0.1 "port=$port"
/usr/bin/python3 -c 'import sqlite3, sys
sqlite3.connect(sys.argv[1], isolation_level=None).execute(
    "UPDATE registry SET data = ? WHERE name = ?", [b"\1\0\0\0", "autoconnect"])' "$locked/registry.db"
chmod 644 "$locked/registry.db"
chmod 555 "$locked"
plainly timeout -k 5 60 "$work/open/quill" --export --profile locked >"$work/exported" ||
    fail "the export from a folder that cannot be written ended with $?"
grep -q "^port = $port$" "$work/exported" || fail "exported: $(cat "$work/exported")"
QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=$work/nowhere plainly timeout -k 5 60 "$work/open/quill" \
    --profile locked --text "$work/open/text" 2>"$work/said" || fail "it ended with $?: $(cat "$work/said")"
grep -q 'from the stored host' "$work/open/text" || fail "with settings to read it shows: $(cat "$work/open/text")"
[ "$(ls -A "$locked")" = registry.db ] || fail "written nevertheless: $(ls -A "$locked")"
echo "profiles: a folder, a window and a mark each"
