#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes the package twice from the sources as they are now: two compilations, in two folders with
# different names, with different locales, time zones and umasks. Both must have the same checksum.
# Takes as long as two builds of the program.
# Usage: packaging/reproducible.sh
set -eu
cd "$(dirname "$0")/.."
. scripts/packages.sh
[ $# -eq 0 ] || { echo "usage: packaging/reproducible.sh" >&2; exit 2; }
[ -n "${SOURCE_DATE_EPOCH:-}" ] || SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
# A cache of compilations would show the same compilation twice.
export CCACHE_DISABLE=1

work=$(mktemp -d "${TMPDIR:-/tmp}/quill-twice.XXXXXX")
trap 'rm -rf "$work"' EXIT

# The sources are copied first, so that they may change meanwhile.
copy_to() {
    mkdir -p "$1"
    git ls-files -z | xargs -0 cp --parents -t "$1"
}
checksum_of() { sha256sum <"$("$1/packaging/deb.sh")" | cut -d ' ' -f 1; }
one=$work/first two="$work/a longer name/of the second folder"
copy_to "$one"
(umask 077 && copy_to "$two")
first=$(umask 022 && TZ=UTC LC_ALL=C checksum_of "$one")
second=$(umask 077 && TZ=Asia/Tokyo LC_ALL=C.UTF-8 checksum_of "$two")
echo "first  $first"
echo "second $second"
[ "$first" = "$second" ] || { echo "The two packages differ." >&2; exit 1; }
