#!/bin/sh
# SPDX-License-Identifier: MIT
# Command lines that are wrong: a line on stderr without control characters, exit code 2, and
# nothing written. Needs no display.
# Usage: bad_command_line_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
program=$1
. "$(dirname "$0")/desktop.sh"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM || :

tried=0
# refuses TEXT ARGUMENTS...
refuses() {
    ends_with 2 "$@"
    [ ! -s "$work/out" ] || fail "something came on stdout: $(cat "$work/out")"
    [ "$(wc -l <"$work/said")" -eq 1 ] || fail "not one line: $(cat "$work/said")"
    [ "$(wc -c <"$work/said")" -lt 300 ] || fail "a long line: $(cat "$work/said")"
    is_readable
    [ ! -e "$home/data" ] || fail "something was written: $(find "$home/data")"
    tried=$((tried + 1))
}
# No control character of 7 or 8 bits, no change of the direction, and no half of a character.
is_readable() {
    ! LC_ALL=C grep -q '[[:cntrl:]]' "$work/said" || fail "a control character came back: $(cat -v "$work/said")"
    /usr/bin/python3 -c 'import sys
sys.exit(any(not c.isprintable() and c != "\n" for c in open(sys.argv[1], encoding="utf-8").read()))' "$work/said" ||
        fail "an invisible character came back: $(cat -v "$work/said")"
}

forty=abcdefghijklmnopqrstuvwxyz.example.domain
long=$(printf '%05000d' 0)
escape=$(printf 'a\033]0;title\007b')
lines=$(printf 'a\nb')
bell=$(printf 'x\007')
eight_bits=$(printf 'a\302\23331m')
backwards=$(printf 'a\342\200\256b')
no_text=$(printf 'a\377\376b')
umlauts=$(printf 'x%0100d' 0 | sed 's/0/ä/g')

# Hosts.
refuses 'has no host' ''
refuses 'is too long' "$forty"
refuses 'is too long' "$long"
for host in 'a b' '"a"' "a'b" 'a/b' '/etc/passwd' '../a' 'a\b' 'a;b' '$(a)' 'a%20b' 'a@b' 'a:b' 'a:22' \
    "$escape" "$lines" "$bell" 'höst' '*' '?' 'a,b' "$eight_bits" "$backwards" "$no_text"; do
    refuses 'is no host' "$host"
done
for host in localhost:23 a:x; do refuses 'the port is a second word, or in telnet://HOST:PORT' "$host"; done
for host in --bogus -x -; do refuses 'is no host' -- "$host"; done
refuses 'is no host' -- --
refuses 'is no host' -- --help
refuses 'is no host' -- -platform
for host in ::1 '[::1]' fe80::1 '[fe80::1]:23'; do refuses 'is an IPv6 address' "$host"; done
refuses 'is one word too many' a 23 b
refuses 'is too long' "$umlauts"
refuses 'xää' "$umlauts"
refuses "'--bogus' is no option" --bogus
refuses "'-platform' has no value" -platform
refuses "'--title' has no value" a --title
refuses "is no option" -bogus=1

# Ports.
for port in '' 0 -1 65536 99999 100000 99999999999999999999 0x17 23x x ' 23' 2.3 +23 '"23"' "$escape" "$long"; do
    refuses 'no number from 1 to 65535' -- a "$port"
done

# Addresses.
for address in telnet:// ssh:// telnet:/// ssh://@a ssh://anna@ telnet://:23; do
    ends_with 2 "$address" "$address"
done
refuses 'has no host' telnet://
refuses 'has no host' telnet://:23
refuses 'has no host' ssh://anna@
refuses 'names no user' ssh://@a
refuses 'is too long' "telnet://$forty"
refuses 'names no user' "ssh://$forty@a"
refuses 'names no user' 'ssh://-oX@a'
refuses 'names no user' 'ssh://a b@c'
refuses 'names no user' "ssh://$bell@c"
refuses 'has a password' ssh://anna:secret@a
! grep -q secret "$work/said" || fail "the password came back: $(cat "$work/said")"
refuses 'names a user' telnet://anna@a
refuses 'is an IPv6 address' 'telnet://[::1]'
refuses 'is an IPv6 address' 'ssh://anna@[::1]:22'
refuses 'is no host' telnet://-a
refuses 'is no host' telnet://a/b
refuses 'is no host' telnet://a//
refuses 'is no host' "telnet://a'b"
refuses 'is no host' 'telnet://a?b'
refuses 'is no host' 'telnet://a#b'
refuses 'is no host' 'telnet://a%2eb'
for port in 0 65536 x '' -1 99999999999; do
    refuses 'no number from 1 to 65535' "telnet://a:$port"
    refuses 'no number from 1 to 65535' "ssh://a:$port/"
done
for address in http://a file:///etc/passwd javascript://a ://a 'telnet:a'; do
    ends_with 2 "'$address'" "$address"
    [ ! -e "$home/data" ] || fail "$address wrote something"
done
refuses 'follows an address' telnet://a 23

# Profiles.
forty_one=abcdefghijklmnopqrstuvwxyzabcdefghijklmno
for name in '' . .. .hidden -x --help a/b ../a /a 'a b' '"a"' "a'b" 'a\b' "$bell" "$lines" "$forty_one" \
    "$long" 'ä' _a; do
    refuses '--profile wants a name' --profile "$name"
done
refuses '--profile wants a name' --profile
refuses 'both name the settings' --profile a --root "$work/root"
[ ! -e "$work/root" ] || fail "the folder of --root was made"
refuses 'goes with --export' --with-passwords
refuses 'takes no host' --export a
refuses 'takes no host' --profiles a

# Every place of a name or a number with everything that is wrong there.
for bad in "$long" '' '"a' "a'b" a/b "$escape" --; do
    refuses '' -- "$bad"
    refuses '' -- a "$bad"
    refuses '' -- "telnet://$bad"
    refuses '' -- "telnet://a:$bad"
    refuses '' -- "ssh://$bad"
    refuses '' -- "ssh://$bad@a"
    refuses '' -- "ssh://a:$bad"
    refuses '' --profile "$bad"
done

# Folders: no word about them moves a terminal's cursor.
for name in "$escape" "$eight_bits" "$backwards" "$no_text"; do
    refuses 'is no folder' -platform offscreen --root "/dev/null/$name"
    ends_with 1 'has no settings' --root "$work/$name" --export
    is_readable
    mkdir "$work/$name"
    echo >"$work/$name/mconfig.cfg"
    ends_with 1 'has no settings' --root "$work/$name" --export
    is_readable
done
ends_with 1 'cannot write' -platform offscreen --root "$work/root" --text "/dev/null/$backwards"
is_readable
rm -r "$work/root"

# Without a display no folder is made, neither a profile's nor another one.
ends_with 1 'there is no display' --profile fresh
[ ! -e "$home/data" ] || fail "written: $(find "$home/data")"
ends_with 1 'there is no display' --root "$work/root"
[ ! -e "$work/root" ] || fail "the folder of --root was made"

# A display that is not there is told, and the program does not crash.
ends_with 1 'nonsense' -platform nonsense
DISPLAY=:987 ends_with 1 'display' -platform xcb
echo "$tried command lines were refused"
