#!/bin/sh
# SPDX-License-Identifier: MIT
# One device set up, another one given what it exports: both store the same afterwards.
# Usage: export_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb
program=$1
. "$(dirname "$0")/desktop.sh"
one=$work/one two=$work/two

ends_with 1 "$one has no settings" --root "$one" --export
[ ! -e "$one" ] || fail "an export made a folder"
ends_with 1 'has no settings' --export
[ ! -e "$home/data" ] || fail "an export made the user's folder"
open_screen
store "$one" host=stores.example

# Every value that a run leaves gets another one: numbers within their bounds, and texts of 39
# characters with all that a line can hold.
/usr/bin/python3 - "$one/registry.db" <<'END'
import sqlite3, sys
db = sqlite3.connect(sys.argv[1])
rows = db.execute("SELECT name, type, data FROM registry WHERE name IS NOT NULL").fetchall()
assert len(rows) == 24 + 15 + 66 + 27, len(rows)
for number, (name, kind, data) in enumerate(rows):
    if kind == 4:
        old = int.from_bytes(data, "little")
        new = {"port": 65535, "fsize": 25, "ssh_type": 2}.get(name)
        if new is None:
            new = 0xABCDEF - number if name.startswith("color") else (old ^ 7) if name.startswith("tbar") else 1 - old
        new = 0 if name in ("autoconnect", "exit_dis") else new
        data = new.to_bytes(4, "little")
    elif name not in ("host", "fname"):
        text = (f"{number} #= \\015 'é€ÿ\t{name} " + "x" * 39)[:39]
        data = (text + "\0").encode("utf-16-le")
    db.execute("UPDATE registry SET data = ? WHERE name = ?", [data, name])
db.commit()
END
run() { timeout -k 5 30 "$program" --root "$1" --screen 800x500 --text "$work/rest" || fail "ended with $?"; }
values() {
    /usr/bin/python3 -c 'import sqlite3, sys
for row in sqlite3.connect(sys.argv[1]).execute(
        "SELECT name, type, hex(data) FROM registry WHERE name IS NOT NULL ORDER BY name"): print(*row)' "$1/registry.db"
}
values "$one" >"$work/before"
run "$one"
values "$one" >"$work/set"
cmp "$work/before" "$work/set" || fail "a run changes the settings"

# While a program has them open, and without a display.
open_window --root "$one" --screen 800x500
main_window '^Quill TELNET$'
shown=$DISPLAY
unset DISPLAY
ends_with 0 'color_bg = ' --root "$one" --export --with-passwords
DISPLAY=$shown
export DISPLAY
end_window
cp "$work/out" "$work/whole.cfg"
[ "$(grep -ac ' = ' "$work/whole.cfg")" -eq 132 ] || fail "not all settings: $(grep -ac ' = ' "$work/whole.cfg")"
[ "$(LC_ALL=C awk 'length($0) > 78' "$work/whole.cfg")" = '' ] || fail "a line is too long"
[ ! -s "$work/said" ] || fail "said: $(cat "$work/said")"
mkdir "$two"
cp "$work/whole.cfg" "$two/mconfig.cfg"
ends_with 1 'has no settings' --root "$two" --export
run "$two"
[ ! -e "$two/mconfig.cfg" ] || fail "the file was not taken"
values "$two" >"$work/copied"
cmp "$work/before" "$work/copied" || fail "the copy differs: $(diff "$work/before" "$work/copied" | head -n 4)"

# Also the two settings that act at once: it connects when it starts, and ends with the session.
: >"$work/port"
/usr/bin/python3 "$(dirname "$0")/../wayland/frame_host.py" >"$work/port" &
ends_with_us $!
three=$work/three
mkdir "$three"
printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\nexit_dis = 1\n' "$(first_line "$work/port")" >"$three/mconfig.cfg"
run "$three"
grep -q 'twelve pallets' "$work/rest" || fail "no session: $(cat "$work/rest")"
values "$three" >"$work/before_four"
ends_with 0 'exit_dis = 1' --root "$three" --export
grep -qx 'autoconnect = 1' "$work/out" || fail "exported: $(grep -a autoconnect "$work/out")"
mkdir "$work/four"
cp "$work/out" "$work/four/mconfig.cfg"
: >"$work/rest"
run "$work/four"
grep -q 'twelve pallets' "$work/rest" || fail "the copy does not connect: $(cat "$work/rest")"
values "$work/four" | cmp - "$work/before_four" || fail "the copy differs: $(values "$work/four" | diff "$work/before_four" - | head -n 4)"

# Passwords are not printed unless they are asked for.
ends_with 0 'left out, as they may be passwords: ssh_p resp1 resp2' --root "$one" --export
! grep -aE '^(resp[12]|ssh_p) ' "$work/out" || fail "a password was printed"
grep -avE '^(resp[12]|ssh_p) ' "$work/whole.cfg" | cmp - "$work/out" || fail "more than the passwords is left out"

# What a line cannot hold is told, and the rest is printed.
/usr/bin/python3 - "$one/registry.db" <<'END'
import sqlite3, sys
db = sqlite3.connect(sys.argv[1])
for name, text in (("termtype", 'a"b'), ("sear1", ""), ("key0", ""), ("key1", "Ω"), ("ras", ""), ("sear2", "a\nb")):
    db.execute("UPDATE registry SET data = ? WHERE name = ?", [(text + "\0").encode("utf-16-le"), name])
db.commit()
END
code=0
"$program" --root "$one" --export >"$work/out" 2>"$work/said" || code=$?
[ $code -eq 1 ] || fail "an export that is not whole ended with $code"
for each in 'termtype has a double quote' 'sear1 is empty' 'key0 is empty' 'key1 has letters' "sear2 has a line's end"; do
    grep -qF "left out: $each" "$work/said" || fail "'$each' was not said: $(cat "$work/said")"
done
! grep -q 'ras' "$work/said" || fail "a fresh device needs no word about an empty entry"
[ "$(grep -ac ' = ' "$work/out")" -eq $((132 - 3 - 6)) ] || fail "the rest: $(grep -ac ' = ' "$work/out")"

# The file is imported without a person and without a display, as docs/fleet.md has it.
mkdir "$work/alone"
printf 'host = "stores.example"\nfsize = 9\n' >"$work/alone/mconfig.cfg"
(unset DISPLAY WAYLAND_DISPLAY && QT_QPA_PLATFORM=offscreen timeout -k 5 40 "$program" --root "$work/alone" \
    --text /dev/null) || fail "the import alone ended with $?"
[ "$(stored "$work/alone" host) $(stored "$work/alone" fsize)" = "stores.example 9" ] || fail "nothing was imported"
[ ! -e "$work/alone/mconfig.cfg" ] || fail "the file is still there"

# A file that waits is told; a store of another make is left as it is.
echo 'port = 7' >"$one/mconfig.cfg"
code=0
"$program" --root "$one" --export >/dev/null 2>"$work/said" || code=$?
grep -q 'mconfig.cfg waits' "$work/said" || fail "said: $(cat "$work/said")"
mkdir "$work/bad"
head -c 5000 /dev/urandom >"$work/bad/registry.db"
cp "$work/bad/registry.db" "$work/noise"
ends_with 1 "$work/bad has no settings" --root "$work/bad" --export
cmp "$work/noise" "$work/bad/registry.db" || fail "an export changed the file"
[ "$(ls -A "$work/bad")" = registry.db ] || fail "an export left $(ls -A "$work/bad")"
code=0
"$program" --root "$two" --export >/dev/full 2>"$work/said" || code=$?
[ $code -eq 1 ] && grep -q 'cannot write' "$work/said" || fail "a full disk was not told ($code)"
echo "132 settings, copied by a file"
