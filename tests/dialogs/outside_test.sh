#!/bin/sh
# Runs a program on an X server of its own. Exit code 77: not possible here.
# Usage: outside_test.sh PROGRAM
set -eu
for tool in Xvfb xdotool; do
    command -v $tool >/dev/null || { echo "outside_test.sh: $tool is missing" >&2; exit 77; }
done
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-outside.XXXXXX")
server=
clean_up() {
    [ -z "$server" ] || kill "$server" 2>/dev/null || :
    wait
    rm -rf "$work"
}
trap clean_up EXIT
: >"$work/display"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$work/display" 2>/dev/null &
server=$!
tries=0
while [ "$(wc -l <"$work/display")" -lt 1 ]; do
    [ $tries -lt 100 ] || { echo "outside_test.sh: no X server" >&2; exit 1; }
    sleep 0.1
    tries=$((tries + 1))
done
DISPLAY=:$(head -n 1 "$work/display")
export DISPLAY QT_QPA_PLATFORM=xcb
"$1"
