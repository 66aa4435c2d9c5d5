#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares every version of the program with the one in the top CMakeLists.txt.

Usage: version.py RESOURCE-FILE
It checks the sources of the resources, which must contain no version number, the compiled resources,
which have it in the About dialog and in the file version, and the newest release of CHANGELOG.md.
"""
import re
import struct
import sys

from layer_table import TOP

LITERAL = re.compile(r'"[^"]*\b\d+\.\d+(?:\.\d+)*"|VERSION\s+\d')
VALUE = re.compile(rb"(?:\0\0)*((?:[^\0]\0)*)")  # UTF-16 after its padding, up to its end
FIXED_INFO = struct.pack("<I", 0xFEEF04BD)  # the signature of the numbers in a version resource


def main():
    version = re.search(r"^project\(quill VERSION ([\d.]+) ", (TOP / "CMakeLists.txt").read_text(),
                        re.M)[1]
    complaints = []
    for path in sorted((TOP / "resources").glob("*.rc")):
        complaints += [f"resources/{path.name} names a version of its own: {text}"
                       for text in LITERAL.findall(path.read_text())]

    with open(sys.argv[1], "rb") as compiled:
        image = compiled.read()
    about = ("Version " + version).encode("utf-16-le") + b"\0\0"
    if about not in image:
        complaints.append(f"the About dialog does not show \"Version {version}\"")
    for name in ("FileVersion", "ProductVersion"):
        field = name.encode("utf-16-le") + b"\0\0"
        at = image.find(field)
        value = VALUE.match(image[at + len(field):])[1].decode("utf-16-le")
        if at < 0 or value != version:
            complaints.append(f"{name} of the program is {value!r}, not {version}")
    numbers = [int(part) for part in version.split(".")] + [0, 0, 0, 0]
    wanted = struct.pack("<HHHH", numbers[1], numbers[0], numbers[3], numbers[2])
    at = image.find(FIXED_INFO)
    if at < 0 or image[at + 8:at + 24] != wanted * 2:
        complaints.append(f"the numbers of the file's version are not those of {version}")

    newest = re.search(r"^## (\d[\d.]*)", (TOP / "CHANGELOG.md").read_text(), re.M)
    if not newest or newest[1] != version:
        complaints.append(f"CHANGELOG.md has {newest and newest[1]} as its newest release")
    if complaints:
        print("\n".join(complaints))
        sys.exit(1)
    print(f"{version} everywhere")


main()
