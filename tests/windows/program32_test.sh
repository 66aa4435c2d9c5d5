#!/bin/sh
# The 32-bit program: the platform's tests, and a start and an end of the program itself, in a 32-bit
# Wine where one can be had.
# Usage: program32_test.sh QUILL.EXE PLATFORM_TESTS.EXE REPORT.XML
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
program=$1 tests=$2 report=$3
. "$top/tests/windows/wine.sh"
. "$top/tests/windows/wine32.sh"
start_screen
prepare_prefix

rm -f "$report"
status=0
timeout 120 wine "$tests" --gtest_output="xml:$(winepath -w "$report")" >"$work/log" 2>&1 || status=$?
tr -d '\r' <"$work/log" | grep -aE -A 8 'Failure|PASSED|FAILED' | grep -avE ' OK |RUN ' || :
[ "$status" = 0 ] || fail "the platform's tests ended with $status"

fresh_device
run wine "$program"
client=$last
await 30 has_window "^$title" || fail "no window"
sleep 1
picture program32
xdotool key ctrl+shift+q
await 20 has_ended "$client" || fail "the program did not end"
wait "$client" || fail "the program ended with code $?"
[ "$(wine reg query "$settings_key" | grep -c REG_)" -ge 130 ] || fail "the settings were not saved"
