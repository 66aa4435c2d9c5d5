#!/bin/sh
# SPDX-License-Identifier: MIT
# tests/soak runs what it is asked for, and refuses what it does not know.
# Usage: command_test.sh BUILD
set -u
soak=$(dirname "$0")/../soak
folder=$(cd "$1" && pwd)
failed=0

# prints TEXT ARGUMENTS...
prints() {
    text=$1
    shift
    output=$("$soak" --built "$folder" "$@" 2>&1) && echo "$output" | grep -q "$text" || {
        echo "tests/soak $*: fails, or does not print $text"
        failed=1
    }
}

# refuses ARGUMENTS...
refuses() {
    "$soak" "$@" >/dev/null 2>&1
    status=$?
    [ $status -eq 2 ] || {
        echo "tests/soak $*: ends with $status"
        failed=1
    }
}

prints '^0 sessions, 0 steps$' 0 1
prints '^8 reconnects: ' reconnects 8
prints 'PASSED  . 10 tests' kills 10
refuses
refuses 1
refuses one 1
refuses 1 seed
refuses --built
refuses kills
refuses stops 10
exit $failed
