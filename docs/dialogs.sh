#!/bin/sh
# Takes the pictures in docs/dialogs/ from the dialogs of the running program.
# Usage: docs/dialogs.sh [BUILD]      (after a build; build/release unless named)
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/release}
QT_QPA_PLATFORM=offscreen QT_SCALE_FACTOR=2 "$build/tests/dialogs/dialog_pictures" docs/dialogs
mogrify -alpha off +dither -colors 48 -strip docs/dialogs/*.png
