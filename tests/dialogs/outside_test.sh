#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs a program on a private X server. Exit code 77: not possible here.
# Usage: outside_test.sh PROGRAM
set -eu
. "$(dirname "$0")/../support/outside.sh"
need Xvfb xdotool
open_screen 1280x1024
"$1"
