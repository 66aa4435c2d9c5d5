#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Looks at a picture of the frame that frame_host.py paints: all its lines are whole, from end to end,
and there is no other line.

Usage: frame_check.py PICTURE SCALE DENSITY [PICTURE-AT-SCALE-1 | none]
       none: of a dialog, which has no line at all
"""
import re
import subprocess
import sys

DARK = 64  # of 255; lines are black on white
COLUMNS, ROWS = 60, 16
LEAST = 30  # pixels of the device; the widest picture of the program's is shorter


def pixels(path):
    size = subprocess.run(["identify", "-format", "%w %h", path], check=True, capture_output=True,
                          text=True).stdout
    width, height = map(int, size.split())
    data = subprocess.run(["convert", path, "-colorspace", "Gray", "-depth", "8", "gray:-"],
                          check=True, capture_output=True).stdout
    assert len(data) == width * height
    return width, height, data


def runs(line, least):
    """(first, after the last) of the dark runs that are at least so long."""
    return [run.span() for run in re.finditer(b"[\\0-\\x%02x]{%d,}" % (DARK - 1, least), line)]


def thick(places):
    """Neighbours among numbers make one line: (first, after the last) of each."""
    lines = []
    for place in sorted(places):
        if lines and lines[-1][1] == place:
            lines[-1][1] = place + 1
        else:
            lines.append([place, place + 1])
    return lines


def all_lines(width, height, data, panel, least):
    """The lines by their rows and by their columns, below the panel."""
    across, down = {}, {}
    for y in range(panel, height):
        for found in runs(data[y * width:(y + 1) * width], least):
            assert y not in across, f"row {y} has two lines: {across[y]} and {found}"
            across[y] = found
    for x in range(width):
        for found in runs(data[panel * width + x::width], least):
            assert x not in down, f"column {x} has two lines: {down[x]} and {found}"
            down[x] = found[0] + panel, found[1] + panel
    return across, down


def check(path, scale, density):
    """A gap of one pixel would halve a line, and it would not be found."""
    width, height, data = pixels(path)
    panel = int(34 * density)  # the compositor's, with a clock; the program has its bar there
    across_least = int((COLUMNS - 2) * 4 * scale)  # a cell is at least 4 wide and 7 high
    down_least = int(ROWS * 7 * scale)
    across, downs_found = all_lines(width, height, data, panel, int(LEAST * scale))
    assert across, "there is no line"
    lines, downs = thick(across), thick(downs_found)
    assert len(lines) == 3, f"{len(lines)} lines across in place of 3, in the rows {lines}"
    assert len(downs) == 3, f"{len(downs)} lines down in place of 3, in the columns {downs}"
    left, right = next(iter(across.values()))
    assert right - left >= across_least, "the lines across are broken"
    assert set(across.values()) == {(left, right)}, "the lines across differ in their ends"
    assert downs[0][0] == left, "the left line does not begin where those across do"
    top, bottom = lines[0][0], lines[-1][1]
    assert bottom - top >= down_least, "the lines down are broken"
    assert set(downs_found.values()) == {(top, bottom)}, "corners are open"
    widths = {last - first for first, last in lines}
    assert max(widths) - min(widths) <= 1 and min(widths) >= int(scale), f"lines of {widths} pixels"
    return left, top, data, width


def far_pixels(picture, corner, other, other_corner, size):
    """How many pixels of the two parts are clearly not the same."""
    (width, data), (other_width, other_data) = picture, other
    far = 0
    for y in range(size[1]):
        own = (corner[1] + y) * width + corner[0]
        its = (other_corner[1] + y) * other_width + other_corner[0]
        far += sum(abs(a - b) > DARK for a, b in
                   zip(data[own:own + size[0]], other_data[its:its + size[0]]))
    return far


def check_not_enlarged(left, top, data, width, scale, path):
    """The same at a scale with a fraction: the text is not that of scale 1, enlarged, wherever the
    enlarged one may lie by a pixel."""
    first_left, first_top, _, _ = check(path, 1, 1)
    size = int(100 * scale), int(20 * scale)
    for pixels_between in ("point", "triangle"):
        enlarged = subprocess.run(
            ["convert", path, "-filter", pixels_between, "-resize", f"{scale * 100:g}%", "-colorspace",
             "Gray", "-depth", "8", "pgm:-"], check=True, capture_output=True).stdout
        head, other_size, _, other = enlarged.split(b"\n", 3)
        assert head == b"P5"
        other_width = int(other_size.split()[0])
        far = min(far_pixels((width, data), (left + int(6 * scale), top + int(6 * scale)),
                             (other_width, other),
                             (int((first_left + 6) * scale) + dx, int((first_top + 6) * scale) + dy), size)
                  for dx in (-1, 0, 1) for dy in (-1, 0, 1))
        assert far > 20, f"the text is that of scale 1, enlarged: {far} pixels differ"


def check_none(path, scale):
    width, height, data = pixels(path)
    lines = all_lines(width, height, data, 0, int(LEAST * scale))
    assert lines == ({}, {}), f"lines: {lines}"


def check_sharpness(left, top, data, width, scale):
    """Text is drawn at the screen's density: a stretched one would be made of equal squares."""
    side = int(scale)
    if side < 2:
        return
    mixed = 0
    for y in range(top + 10 * side, top + 30 * side, side):
        for x in range(left + 10 * side, left + 100 * side, side):
            square = {data[(y + j) * width + x + i] for j in range(side) for i in range(side)}
            mixed += len(square) > 1
    assert mixed > 20, "the text is stretched"


def main():
    path, scale, density = sys.argv[1], float(sys.argv[2]), float(sys.argv[3])
    whole = scale * density
    if sys.argv[4:] == ["none"]:
        check_none(path, whole)
        return
    found = check(path, whole, density)
    check_sharpness(*found, whole)
    if whole > 1 and len(sys.argv) > 4:
        check_not_enlarged(*found, whole, sys.argv[4])
    print(f"{path}: whole lines at {whole:g}")


if __name__ == "__main__":
    main()
