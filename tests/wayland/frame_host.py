#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A host that paints a frame with crossings, in line drawing, and some text; prints its port.

Usage: frame_host.py [live]   live: two rows of text change all the time
"""
import itertools
import select
import socket
import sys

COLUMNS, ROWS = 60, 16  # of the frame, in cells


def row(left, middle, cross, right):
    cells = [middle] * COLUMNS
    cells[COLUMNS // 2] = cross
    cells[0], cells[-1] = left, right
    return "".join(cells)


def painting():
    lines = [row("l", "q", "w", "k")] + [row("x", " ", "x", "x")] * (ROWS - 2)
    lines[ROWS // 2] = row("t", "q", "n", "u")
    lines.append(row("m", "q", "v", "j"))
    text = "\033[2J\033[H\033)0"
    for index, line in enumerate(lines):
        text += f"\033[{index + 3};5H\016{line}\017"
    return text + "\033[5;8Htwelve pallets\033[24;1H"


def change(number):
    text = ("ampersand" if number % 2 else "semicolon") * 2
    return f"\0337\033[{9 + number // 2 % 2};8H{text}\0338"


def main():
    listener = socket.create_server(("127.0.0.1", 0))
    print(listener.getsockname()[1], flush=True)
    live = "live" in sys.argv
    peers = []
    for number in itertools.count():
        if select.select([listener], [], [], 0.05 if live and peers else None)[0]:
            peers.append(listener.accept()[0])  # open until the end
            peers[-1].sendall(painting().encode())
        for peer in list(peers) if live else []:
            try:
                peer.sendall(change(number).encode())
            except OSError:
                peers.remove(peer)


if __name__ == "__main__":
    main()
