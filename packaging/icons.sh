#!/bin/sh
# SPDX-License-Identifier: MIT
# Makes the program's files for the icon theme: a picture of each size below FOLDER, and the SVG itself.
# The small sizes are the pixels of resources/icons, the others are drawn from the SVG.
# Usage: packaging/icons.sh FOLDER
set -eu
folder=$1
here=$(cd "$(dirname "$0")" && pwd)
pixels=$here/../resources/icons/101-program.txt
work=$(mktemp -d "${TMPDIR:-/tmp}/quill-icons.XXXXXX")
trap 'rm -rf "$work"' EXIT

# Draws rows of that many characters as an SVG of squares; bitmaps.cmake lists the letters.
pixels_as_svg() {
    awk -v size="$1" '
        BEGIN {
            split("# m g k n p t o r l y u v q w .", letters, " ")
            split("000000 800000 008000 808000 000080 800080 008080 808080 " \
                  "ff0000 00ff00 ffff00 0000ff ff00ff 00ffff ffffff none", colours, " ")
            for (i in letters) colour[letters[i]] = colours[i]
            printf "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%d\" height=\"%d\" " \
                   "shape-rendering=\"crispEdges\">\n", size, size
        }
        length($0) == size && /^[#mgknpt.orlyuvqw]+$/ {
            for (x = 1; x <= size; x++) {
                c = colour[substr($0, x, 1)]
                if (c != "none")
                    printf "<rect x=\"%d\" y=\"%d\" width=\"1\" height=\"1\" fill=\"#%s\"/>\n", x - 1, row, c
            }
            row++
        }
        END { print "</svg>"; exit row != size }' "$pixels"
}

for size in 16 22 24 32 48 64 96 128 256; do
    picture=$folder/${size}x$size/apps
    mkdir -p "$picture"
    source=$here/desktop/quill.svg
    case $size in
        16 | 32 | 48)
            source=$work/pixels.svg
            pixels_as_svg $size >"$source"
            ;;
    esac
    rsvg-convert -w $size -h $size -o "$picture/quill.png" "$source"
done
mkdir -p "$folder/scalable/apps"
cp "$here/desktop/quill.svg" "$folder/scalable/apps/quill.svg"
