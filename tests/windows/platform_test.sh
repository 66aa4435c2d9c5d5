#!/bin/sh
# SPDX-License-Identifier: MIT
# The tests of tests/platform that include only the public header, against the calls of Windows.
# Usage: platform_test.sh PLATFORM_TESTS.EXE REPORT.XML
set -eu
top=$(cd "$(dirname "$0")/../.." && pwd)
tests=$1 report=$2
. "$top/tests/windows/wine.sh"
start_screen
prepare_prefix
rm -f "$report"
status=0
timeout 100 wine "$tests" --gtest_output="xml:$(winepath -w "$report")" >"$work/log" 2>&1 ||
    status=$?
tr -d '\r' <"$work/log" | grep -aE -A 8 'Failure|PASSED|FAILED' | grep -avE ' OK |RUN ' || :
told=yes # by the lines above
exit $status
