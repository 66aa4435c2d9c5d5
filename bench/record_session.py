#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Records the output of full-screen programs on an 80x24 vt220, for the engine benchmark.

Usage: record_session.py OUTPUT
Runs vim and mc (both must be installed) over /usr/include with the keys below and writes every
byte that they sent. The recording in data/ was made with it.
"""
import fcntl
import os
import pty
import select
import struct
import sys
import termios
import time

DOWN, UP, RIGHT, PAGE_DOWN, PAGE_UP = b"\x1b[B", b"\x1b[A", b"\x1b[C", b"\x1b[6~", b"\x1b[5~"

VIM = ["vim", "-u", "NONE", "-N", "-i", "NONE", "-c", "set ruler hlsearch showcmd number",
       "/usr/include/stdio.h"]
VIM_KEYS = ([b"\x06"] * 12 + [b"\x02"] * 6 + [b"/extern\r"] + [b"n"] * 15 + [b"dd"] * 8 +
            [b"oA line typed by hand, one key at a time.\x1b"] + [b"u"] * 6 +
            [b":split /usr/include/stdlib.h\r"] + [b"\x05"] * 20 + [b"j"] * 30 + [b":qa!\r"])

MC = ["mc", "-u", "-b", "/usr/include", "/usr/include"]
MC_KEYS = ([DOWN] * 30 + [PAGE_DOWN] * 4 + [PAGE_UP] * 3 + [b"\t"] + [DOWN] * 10 + [b"\x1b9"] +
           [RIGHT, RIGHT, DOWN, DOWN, DOWN] + [b"\x1b\x1b"] + [b"\x1b?"] + [b"\x1b\x1b"] +
           [b"\x1b3"] + [PAGE_DOWN] * 15 + [DOWN] * 30 + [b"q", b"\x1b0", b"\r"])


def read_for(fd, seconds):
    data = b""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        if select.select([fd], [], [], 0.02)[0]:
            try:
                data += os.read(fd, 65536)
            except OSError:
                break
    return data


def record(command, keys):
    pid, fd = pty.fork()
    if pid == 0:
        os.environ.update(TERM="vt220", LC_ALL="C", HOME="/nonexistent", LINES="24", COLUMNS="80",
                          PS1="$ ")
        os.chdir("/usr/include")
        os.execvp(command[0], command)
    fcntl.ioctl(fd, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
    data = read_for(fd, 1.5)
    for key in keys:
        os.write(fd, key)
        data += read_for(fd, 0.08)
    data += read_for(fd, 0.5)
    os.close(fd)
    os.waitpid(pid, 0)
    return data


if __name__ == "__main__":
    with open(sys.argv[1], "wb") as out:
        out.write(record(VIM, VIM_KEYS) + record(MC, MC_KEYS))
