#!/bin/sh
# SPDX-License-Identifier: MIT
# Takes the pictures in docs/dialogs/ from the dialogs of the running program, on a desktop with room
# for the largest.
# Usage: docs/dialogs.sh [BUILD]      (after a build; build/release unless named)
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/release}
desktop=$(mktemp "${TMPDIR:-/tmp}/quill-desktop.XXXXXX")
trap 'rm -f "$desktop"' EXIT
cat >"$desktop" <<END
{"screens": [{"name": "desktop", "x": 0, "y": 0, "width": 1600, "height": 1200,
    "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]}
END
QT_QPA_PLATFORM="offscreen:configfile=$desktop" QT_SCALE_FACTOR=2 \
    "$build/tests/dialogs/dialog_pictures" docs/dialogs
mogrify -alpha off +dither -colors 48 -strip $(ls docs/dialogs/*.png | grep -v color)
mogrify -alpha off -strip docs/dialogs/color.png
