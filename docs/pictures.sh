#!/bin/sh
# Takes the pictures of this folder from the running program, on an X server of its own.
# Usage: docs/pictures.sh      (after a build of the preset release)
set -eu
cd "$(dirname "$0")/.."
whole=$(mktemp "${TMPDIR:-/tmp}/quill-picture.XXXXXX.png")
trap 'rm -f "$whole"' EXIT
tests/peers/outside_test.sh build/release/platform/qt/quill build/release/demo/quill_demo_host "$whole"
convert "$whole" -trim +repage docs/session.png
echo "docs/session.png"
