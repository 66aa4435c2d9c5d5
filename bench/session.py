#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares the whole program with xterm on one Xvfb, in one run.

It measures for the client and for `xterm -e telnet`:
  throughput   a host in this script sends the bytes over loopback Telnet and then requests the cursor
               position; the time ends with the reply, which both send only after they have processed
               everything before it
  start        from the program's start to the first paint in its window
  memory       resident memory after the session

Usage: bench/session.py [--megabytes N] [--program PATH]     (needs Xvfb, xterm, telnet)
"""
import argparse
import ctypes
import os
import shutil
import socket
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
PROGRAM = os.path.join(HERE, "..", "build", "release", "platform", "qt", "quill")
STARTS = 7


class Screen:
    """The X server's windows, through libX11 only."""

    def __init__(self, display):
        self.x = ctypes.CDLL("libX11.so.6")
        self.x.XOpenDisplay.restype = ctypes.c_void_p
        self.x.XDefaultRootWindow.restype = ctypes.c_ulong
        self.x.XGetImage.restype = ctypes.c_void_p
        self.x.XGetImage.argtypes = [ctypes.c_void_p, ctypes.c_ulong] + [ctypes.c_int] * 2 + \
            [ctypes.c_uint] * 2 + [ctypes.c_ulong, ctypes.c_int]
        self.x.XGetPixel.restype = ctypes.c_ulong
        self.x.XGetPixel.argtypes = [ctypes.c_void_p, ctypes.c_int, ctypes.c_int]
        self.display = ctypes.c_void_p(self.x.XOpenDisplay(display.encode()))
        self.root = self.x.XDefaultRootWindow(self.display)

    def painted(self):
        """True if the screen shows more than one colour."""
        image = self.x.XGetImage(self.display, self.root, 0, 0, 1000, 40, 0xffffffff, 2)
        if not image:
            return False
        colours = {self.x.XGetPixel(image, x, y) for x in range(0, 1000, 3) for y in range(0, 40, 3)}
        return len(colours) > 1


def start_x():
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x1024x24",
                               "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
    os.close(write)
    number = os.fdopen(read).readline().strip()
    return server, ":" + number


def prepare(port, root, display):
    """Runs a first start, which imports the configuration file and shows its notice."""
    with open(os.path.join(root, "mconfig.cfg"), "w") as config:
        config.write(f'host = "127.0.0.1"\nport = {port}\nautoconnect = 1\n')
    subprocess.run([PROGRAM, "--root", root, "--scale", "2", "--text", os.path.join(root, "text")],
                   env={**os.environ, "DISPLAY": display}, timeout=60, check=True,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def quill_command(_port, root):
    return [PROGRAM, "--root", root, "--scale", "2"]


def xterm_command(port, _root):
    return ["xterm", "-e", "telnet", "127.0.0.1", str(port)]


def resident(process):
    """Resident kilobytes of a program and its child processes."""
    total, waiting = 0, [process.pid]
    while waiting:
        pid = waiting.pop()
        try:
            for line in open(f"/proc/{pid}/status"):
                if line.startswith("VmRSS"):
                    total += int(line.split()[1])
            waiting += [int(p) for p in open(f"/proc/{pid}/task/{pid}/children").read().split()]
        except OSError:
            pass
    return total


def start(command, display):
    return subprocess.Popen(command, env={**os.environ, "DISPLAY": display},
                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def end(process):
    process.terminate()
    process.wait()
    time.sleep(0.3)


def measure_start(command, display):
    screen = Screen(display)
    seconds = []
    for _ in range(STARTS):
        began = time.perf_counter()
        process = start(command, display)
        while not screen.painted() and time.perf_counter() - began < 30:
            time.sleep(0.001)
        seconds.append(time.perf_counter() - began)
        end(process)
    return statistics.median(seconds)


def lines(total):
    out, size, i = [], 0, 0
    while size < total:
        line = f"{i:08d} pallet 4711 shelf 12-B  the quick brown fox jumps over the lazy dog\r\n"
        out.append(line)
        size += len(line)
        i += 1
    return "".join(out).encode()


def answer_of(connection):
    answer = b""
    while not answer.endswith(b"R"):
        answer += connection.recv(4096)


def measure_session(command, display, listener, data):
    """Seconds from the first byte sent to the reply after the last one, and resident kilobytes."""
    process = start(command, display)
    connection, _ = listener.accept()
    connection.settimeout(600)
    connection.sendall(b"\xff\xfb\x01\xff\xfb\x03\x1b[2J\x1b[H\x1b[6n")
    answer_of(connection)
    time.sleep(1)
    began = time.perf_counter()
    connection.sendall(data)
    connection.sendall(b"\x1b[6n")
    answer_of(connection)
    seconds = time.perf_counter() - began
    memory = resident(process)
    end(process)
    connection.close()
    return seconds, memory


def take_old_connections(listener):
    listener.settimeout(0.5)
    try:
        while True:
            listener.accept()[0].close()
    except TimeoutError:
        listener.settimeout(60)


def run(options, display, root):
    listener = socket.create_server(("127.0.0.1", 0))
    port = listener.getsockname()[1]
    prepare(port, root, display)
    take_old_connections(listener)
    data = lines(options.megabytes * 1000000)
    figures = {}
    for name, make in (("quill", quill_command), ("xterm", xterm_command)):
        command = make(port, root)
        seconds, memory = measure_session(command, display, listener, data)
        begun = measure_start(command, display)
        take_old_connections(listener)
        figures[name] = (seconds, memory, begun)
        print(f"{name:6} {options.megabytes} MB in {seconds:6.2f} s "
              f"({len(data) / seconds / 1e6:6.1f} MB/s), resident {memory / 1024:5.1f} MB, "
              f"first paint after {begun * 1000:4.0f} ms", flush=True)
    ratio = [figures["xterm"][i] / figures["quill"][i] for i in range(3)]
    print(f"xterm / quill: time {ratio[0]:.1f}, memory {ratio[1]:.2f}, first paint {ratio[2]:.2f}")


def main():
    global PROGRAM
    parser = argparse.ArgumentParser()
    parser.add_argument("--megabytes", type=int, default=100)
    parser.add_argument("--program", default=PROGRAM)
    options = parser.parse_args()
    PROGRAM = os.path.abspath(options.program)
    for tool in ("Xvfb", "xterm", "telnet", PROGRAM):
        if not shutil.which(tool):
            sys.exit(f"bench/session.py: {tool} is missing")
    server, display = start_x()
    root = tempfile.mkdtemp(prefix="quill-bench-")
    try:
        run(options, display, root)
    finally:
        server.terminate()
        shutil.rmtree(root, ignore_errors=True)


if __name__ == "__main__":
    main()
