#!/bin/sh
# SPDX-License-Identifier: MIT
# Fails unless a program prints the lines of a file. Usage: same_answers.sh FILE PROGRAM...
set -eu
wanted=$1
shift
found=$(mktemp)
trap 'rm -f "$found"' EXIT
"$@" >"$found"
[ "$(wc -l <"$wanted")" -ge 300 ]
diff "$wanted" "$found"
