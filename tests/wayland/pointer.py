#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A pointer for a compositor that has no input device: it clicks where its standard input says.

Lines of the input: "click X Y", "move X Y", or "type X Y WIDTH HEIGHT WORD...", which taps the words on a soft
keyboard at that place, with Esc, Tab, Enter and Space by name. Prints "ready" when the compositor has it,
and each line after it is done.

Usage: pointer.py SCREEN-WIDTH SCREEN-HEIGHT
"""
import os
import socket
import struct
import sys
import time

SEAT, MANAGER = "wl_seat", "zwlr_virtual_pointer_manager_v1"
DISPLAY_ID = 1
LEFT_BUTTON = 0x110
# Rows of the soft keyboard: the first key's left edge, the keys of one unit, its other keys' middles.
UNITS, ROWS = 15, [(1.25, "1234567890-=", {"Esc": 0.6}), (1.5, "qwertyuiop[]\\", {"Tab": 0.75}),
                   (2, "asdfghjkl;'", {"Enter": 14}), (2.5, "zxcvbnm,./", {}), (3.5, "`", {"Space": 8})]


class Compositor:
    """The wire of Wayland: words of 32 bits in the machine's order."""

    def __init__(self):
        self.wire = socket.socket(socket.AF_UNIX)
        self.wire.connect(os.path.join(os.environ["XDG_RUNTIME_DIR"], os.environ["WAYLAND_DISPLAY"]))
        self.bytes = b""
        self.newest = DISPLAY_ID
        self.globals = {}
        self.registry = self.make(DISPLAY_ID, 1)
        self.settle()

    def send(self, thing, request, body=b""):
        self.wire.sendall(struct.pack("=II", thing, (8 + len(body)) << 16 | request) + body)

    def make(self, thing, request, body=b""):
        """The number of what the request makes: the next one."""
        self.newest += 1
        self.send(thing, request, body + struct.pack("=I", self.newest))
        return self.newest

    def event(self):
        while len(self.bytes) < 8 or len(self.bytes) < struct.unpack_from("=I", self.bytes, 4)[0] >> 16:
            more = self.wire.recv(4096)
            assert more, "the compositor has closed the connection"
            self.bytes += more
        thing, head = struct.unpack_from("=II", self.bytes)
        body, self.bytes = self.bytes[8:head >> 16], self.bytes[head >> 16:]
        return thing, head & 0xFFFF, body

    def settle(self):
        """Returns when the compositor has carried out everything that was sent."""
        wanted = self.make(DISPLAY_ID, 0)
        while True:
            thing, code, body = self.event()
            assert (thing, code) != (DISPLAY_ID, 0), f"the compositor complains: {body}"
            if (thing, code) == (self.registry, 0):
                name, length = struct.unpack_from("=II", body)
                self.globals[body[8:8 + length - 1].decode()] = name
            if thing == wanted:
                return

    def bind(self, interface):
        text = interface.encode() + b"\0"
        text += bytes(-len(text) % 4)
        return self.make(self.registry, 0, struct.pack("=II", self.globals[interface], len(interface) + 1) +
                         text + struct.pack("=I", 1))


class Pointer:
    def __init__(self, width, height):
        self.size = width, height
        self.compositor = Compositor()
        seat, manager = map(self.compositor.bind, (SEAT, MANAGER))
        self.thing = self.compositor.make(manager, 0, struct.pack("=I", seat))
        self.compositor.settle()

    def request(self, number, *words):
        now = int(time.monotonic() * 1000) & 0xFFFFFFFF
        self.compositor.send(self.thing, number, struct.pack(f"={1 + len(words)}I", now, *words))
        self.compositor.send(self.thing, 4)  # a frame

    def move(self, x, y):
        self.request(1, int(x), int(y), *self.size)
        self.compositor.settle()

    def click(self, x, y):
        self.request(1, int(x), int(y), *self.size)
        for down in (1, 0):
            self.request(2, LEFT_BUTTON, down)
        self.compositor.settle()

    def tap(self, place, key):
        left, top, width, height = place
        for row, (first, units, others) in enumerate(ROWS):
            middle = first + units.index(key) + 0.5 if key in units else others.get(key)
            if middle is not None:
                return self.click(left + middle * width / UNITS, top + (row + 0.5) * height / len(ROWS))
        raise ValueError(key)


def main():
    pointer = Pointer(*map(int, sys.argv[1:]))
    print("ready", flush=True)
    for line in sys.stdin:
        command, *words = line.split()
        if command in ("click", "move"):
            getattr(pointer, command)(*map(int, words))
        else:
            place = tuple(map(int, words[:4]))
            for word in words[4:]:
                for key in [word] if word in ("Esc", "Tab", "Enter", "Space") else word:
                    pointer.tap(place, key)
        print(line, end="", flush=True)


if __name__ == "__main__":
    main()
