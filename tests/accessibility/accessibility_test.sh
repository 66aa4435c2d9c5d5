#!/bin/sh
# SPDX-License-Identifier: MIT
# The program as a screen reader has it: one step of steps.py on an X server and buses of its own.
# Exit code 77: not possible here.
# Usage: accessibility_test.sh PROGRAM STEP
set -eu
. "$(dirname "$0")/../support/outside.sh"
. "$(dirname "$0")/bus.sh"
need Xvfb dbus-daemon dbus-send xdotool
program=$1 step=$2
/usr/bin/python3 -c 'import gi; gi.require_version("Atspi", "2.0")' 2>/dev/null ||
    { echo "$script: python3-gi or gir1.2-atspi-2.0 is missing" >&2; exit 77; }
# What the toolkit and its bridge keep until the end is theirs.
export ASAN_OPTIONS="${ASAN_OPTIONS:-}:detect_leaks=0"
open_screen
open_buses
/usr/bin/python3 "$(dirname "$0")/steps.py" "$program" "$work" "$step"
