#!/bin/sh
# SPDX-License-Identifier: MIT
# A host on the command line: the session that it opens, and what it leaves of the stored host.
# Usage: host_test.sh PROGRAM DEMO_HOST
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool xwininfo
program=$1 demo=$2
. "$(dirname "$0")/desktop.sh"
open_screen
start_demo
root=$work/root
quill() { "$program" --root "$root" "$@"; }

# session_with TEXT ARGUMENTS...: the session's screen has TEXT.
session_with() {
    expected=$1
    shift
    rm -f "$work/text"
    timeout -k 5 40 "$program" --root "$root" --text "$work/text" "$@" 2>"$work/err" ||
        fail "'$*' ended with $?: $(cat "$work/err")"
    grep -qF "$expected" "$work/text" || fail "'$*' shows: $(cat "$work/text")"
}

# In fresh settings.
session_with 'login:' 127.0.0.1 "$port"
[ -z "$(stored "$root" host)$(stored "$root" port)$(stored "$root" autoconnect)" ] || fail "the host was stored"
[ "$(stored "$root" fsize)" = 8 ] || fail "the other settings were not stored"
session_with 'login:' "telnet://127.0.0.1:$port"
session_with 'login:' "TELNET://127.0.0.1:$port/"
session_with 'login:' -- 127.0.0.1 "$port"

# Beside a stored host, with its login.
rm -rf "$root"
store "$root" host=stores.example port=22 ssh=1 autoconnect=0 ssh_u=anna ssh_p=secret ssh_def=1 \
    sear1=ogin 'resp1=anna\015' sear2=word 'resp2=secret\015' termtype=quill
kept() {
    for each in host=stores.example port=22 ssh=1 autoconnect=0 ssh_u=anna ssh_p=secret ssh_def=1 \
        sear1=ogin 'resp1=anna\015' sear2=word 'resp2=secret\015' termtype=quill; do
        [ "$(stored "$root" "${each%%=*}")" = "${each#*=}" ] ||
            fail "after $1 ${each%%=*} is '$(stored "$root" "${each%%=*}")'"
    done
}
kept "the import"
# Another host gets neither the name nor the password of the automatic login.
session_with 'login:' "telnet://127.0.0.1:$port"
! grep -q anna "$work/text" || fail "another host got the automatic login: $(cat "$work/text")"
kept "a session with another host"
# Without a host the stored one is dialled as ever: not at once.
rm -f "$work/text"
timeout -k 5 40 "$program" --root "$root" --text "$work/text" 2>/dev/null || fail "ended with $?"
grep -q offline "$work/text" || fail "a start without a host: $(cat "$work/text")"

# The stored host by its own name gets its login.
rm -rf "$root"
store "$root" host=127.0.0.1 port="$port" sear1=ogin 'resp1=anna\015'
session_with 'assword:' 127.0.0.1 "$port"
grep -q 'login: *anna' "$work/text" || fail "the stored host got no automatic login: $(cat "$work/text")"

# A file that waits for the import goes into the store, not into the run.
rm -rf "$root"
mkdir "$root"
printf 'host = "stores.example"\nport = 7\nautoconnect = 0\nresp1 = "x"\n' >"$root/mconfig.cfg"
session_with 'login:' 127.0.0.1 "$port"
[ "$(stored "$root" host) $(stored "$root" port) $(stored "$root" autoconnect) $(stored "$root" resp1)" = "stores.example 7 0 x" ] ||
    fail "the import was lost: $(stored "$root" host) $(stored "$root" port)"

# Started again with a host while the window is open: the window comes to the front, its session
# stays, and a second window is offered.
open_window --root "$root" "telnet://127.0.0.1:$port"
main_window "$session_title"
"$program" --root "$root" other.example 2>"$work/second" &
second=$!
ends_with_us $second
await 20 has_window '^Quill Telnet$' || fail "no box: $(cat "$work/second")"
grep -q 'already runs' "$work/second" || fail "said: $(cat "$work/second")"
answer_box
code=0
wait $second || code=$?
[ $code -eq 1 ] || fail "the second start ended with $code"
kill -0 $client || fail "the first program has ended"
has_window "$session_title" || fail "the first session has ended"
# A start without a host brings the open window to the front, and prints nothing.
timeout -k 5 20 "$program" --root "$root" 2>"$work/second" || fail "the third start ended with $?"
[ ! -s "$work/second" ] || fail "said: $(cat "$work/second")"
# A picture or the text of a session that this start would open: it has none, says so, and shows no box.
for option in --text --snapshot; do
    for host in '' 127.0.0.1; do
        ends_with 1 'already runs' --root "$root" $option "$work/not written" $host
        [ "$(wc -l <"$work/said")" -eq 1 ] || fail "not one line: $(cat "$work/said")"
        [ ! -e "$work/not written" ] || fail "$option wrote a file"
    done
done
end_window

# A bad address that a person clicks on a desktop, where nobody reads stderr.
"$program" 'telnet://<b>a/b' 2>"$work/second" &
second=$!
ends_with_us $second
await 20 has_window '^Quill Telnet$' || fail "no box: $(cat "$work/second")"
grep -q 'is no host' "$work/second" || fail "said: $(cat "$work/second")"
answer_box
code=0
wait $second || code=$?
[ $code -eq 2 ] || fail "a bad address ended with $code"
[ ! -e "$home/data" ] || fail "a bad address wrote something"
echo "hosts and addresses: as typed, and none is stored"
