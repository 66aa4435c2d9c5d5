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

# sends KEY ALL: the key makes the program send what is missing of all the bytes. On a busy machine
# Wine drops some keys of other alphabets, so a key that sends nothing at all is repeated.
sends() {
    for try in 1 2 3; do
        focus_on "$main"
        xdotool key "$1"
        ! await 8 sent_is "$2" || return 0
        sent_is "$before" || return 1
    done
    return 1
}

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
    before=
    while read -r key bytes; do
        sends "$key" "$before$bytes" || fail "with $1 after $key the keys sent $(sent_bytes)"
        before=$before$bytes
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
    leave
}
types ja_JP
types hi_IN
echo "two code pages; pictures in $pictures"
