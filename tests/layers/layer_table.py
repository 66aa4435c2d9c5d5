# SPDX-License-Identifier: MIT
"""Reads the table of tests/layers.txt for the scripts of this folder."""
import pathlib

TOP = pathlib.Path(__file__).resolve().parents[2]
TABLE = TOP / "tests" / "layers.txt"


class Layer:
    def __init__(self, name, folder, platform, below):
        self.name = name
        self.folder = folder
        self.platform = platform
        self.below = [] if below == ["-"] else below
        self.is_room = platform is None

    def files(self, *suffixes):
        """The layer's sources, without those of folders below it that belong to another layer."""
        return sorted(p for p in (TOP / self.folder).iterdir() if p.suffix in suffixes)


def rows(word=None):
    """The rows of the table that begin with `word`, or those of the layers."""
    for line in TABLE.read_text().splitlines():
        fields = line.split()
        if not fields or line.startswith("#"):
            continue
        if (fields[0] == word) if word else (fields[0] not in ("circle", "room")):
            yield fields


def layers():
    return {row[0]: Layer(row[0], row[1], row[2], row[3:]) for row in rows()}


def rooms():
    """The rooms of platform/qt, as separate layers."""
    return {row[1]: Layer(row[1], row[2], None, row[3:]) for row in rows("room")}


def circles():
    """The circles of calls that are allowed, as sets of layer/file."""
    return [frozenset(row[1:]) for row in rows("circle")]
