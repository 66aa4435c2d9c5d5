#!/bin/sh
# SPDX-License-Identifier: MIT
# The Windows program in a code page of two bytes a character and in the UTF-8 one: a character of
# several bytes is sent as one question mark, and the characters after it arrive as usual.
# Usage: code_page_test.sh QUILL.EXE DEMO_HOST
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1 demo=$2
. "$top/tests/windows/wine.sh"
command -v socat >/dev/null || { echo "code_page_test.sh: socat is missing" >&2; exit 77; }

# The user's language decides the code page: Japanese has 932, Hindi 65001.
make_locale() {
    localedef -i "$1" -f UTF-8 "$work/$1.UTF-8" >/dev/null 2>&1 || {
        echo "code_page_test.sh: the language $1 cannot be made" >&2
        exit 77
    }
}
make_locale ja_JP
make_locale hi_IN
start_screen
setxkbmap ru || { echo "code_page_test.sh: no other keyboard can be had" >&2; exit 77; }
prepare_prefix
: >"$work/host"
run "$demo" >"$work/host"
port=$(first_line "$work/host")
start_relay "${port##*:}"

# types LANGUAGE: types into a session of that language and checks the bytes sent.
types() {
    fresh_device
    printf 'host = "127.0.0.1"\nport = %s\nautoconnect = 1\n' "$relay_port" >"$device_root/mconfig.cfg"
    : >"$work/received"
    : >"$work/sent"
    LOCPATH=$work LC_ALL=$1.UTF-8 run wine "$program"
    client=$last
    answer_notice
    await 20 received "login:" || fail "the host's question did not come"
    await 10 sent vt220 || fail "the negotiation did not come to its end"
    begin_sent
    expected=
    while read -r key bytes; do
        expected=$expected$bytes
        press "$key" sent_is "$expected" || fail "with $1 after $key the keys sent $(sent_bytes)"
    done <<'END'
Cyrillic_ef ?
1 1
Cyrillic_ef ?
2 2
Cyrillic_ya ?
3 3
END
    sleep 0.5
    picture "code-page-$1"
    leave alt+F4 # this keyboard has no q
}
types ja_JP
types hi_IN
echo "two code pages; pictures in $pictures"
