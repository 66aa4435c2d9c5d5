#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""A host that paints a frame with crossings, in line drawing, and some text; prints its port."""
import socket
import time

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


def main():
    listener = socket.create_server(("127.0.0.1", 0))
    print(listener.getsockname()[1], flush=True)
    peers = []
    while True:
        peer, _ = listener.accept()
        peer.sendall(painting().encode())
        peers.append(peer)  # open until the end
        time.sleep(0.01)


if __name__ == "__main__":
    main()
