#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares Quill with the terminals of the package manager, on one Xvfb, in one run.

Each terminal runs telnet to a host in this script on loopback; Quill needs no telnet. It measures:
  streams  the host sends the bytes of each of five streams, then requests the cursor position; the
           time ends with the reply, which all send only after they have processed everything before
  keys     from a key press (XTEST, at random times) to the changed pixels of the echoed glyph; the
           host echoes at once. The presses are made in blocks, for one terminal after the other, so
           that other work of the machine falls on all of them. Also for a bare window of Quill's
           toolkit that sends the key and paints one glyph
  busy     the same while a stream of 1 MB/s scrolls below the glyph
  start    from the program's start to the first paint in its window, and the processor time used until
           then; also for a bare window of Quill's toolkit with one line of text
  memory   proportional memory of the program and its child processes, and private memory

The script names and skips a terminal that is not installed. Build the programs with
    cmake --preset release && cmake --build --preset release \\
        --target quill bench_glyph_probe bench_bare_window bench_bare_echo

Usage: bench/terminals.py [--only WHAT ...] [--terminal NAME ...] [--megabytes N] [--presses N]
"""
import argparse
import contextlib
import os
import random
import shutil
import socket
import statistics
import subprocess
import sys
import tempfile
import time

import session

HERE = os.path.dirname(os.path.abspath(__file__))
BUILD = os.path.join(HERE, "..", "build", "release")
PACKAGES = "libx11-dev libxext-dev libxtst-dev libxdamage-dev"
STREAM_ROUNDS = 3
STARTS = 15
BLOCK = 250  # presses

# No terminal blinks its cursor, so that every changed pixel comes from the echo.
TERMINALS = {
    "quill": None,
    "xterm": ["xterm", "-e"],
    "rxvt-unicode": ["urxvt", "-e"],
    "stterm": ["stterm", "-e"],
    "mlterm": ["mlterm", "-e"],
    "alacritty": ["alacritty", "-e"],
    "kitty": ["kitty", "--config", "NONE", "-o", "cursor_blink_interval=0",
              "-o", "update_check_interval=0"],
    "konsole": ["konsole", "--nofork", "-e"],
}


# ---------------------------------------------------------------- streams

def line_stream(_random, number):
    return f"{number:08d} pallet 4711 shelf 12-B  the quick brown fox jumps over the lazy dog\r\n"


def cursor_stream(rng, _number):
    return f"\x1b[{rng.randint(1, 24)};{rng.randint(1, 80)}H{chr(rng.randint(97, 122))}"


def attribute_stream(rng, number):
    end = "\r\n" if number % 10 == 9 else " "
    return f"\x1b[{rng.choice(['1', '4', '5', '7', '1;4', '0;7'])}mword{number % 1000}\x1b[m{end}"


def region_stream(_random, number):
    return f"line {number % 100000} of a region\r\n"


def screen_stream(_random, number):
    rows = (f"screen {number} row {row} ".ljust(79, ".") for row in range(1, 25))
    return "\x1b[H" + "\r\n".join(rows)


# name, the bytes before the stream, one piece of it
STREAMS = [
    ("lines", "\x1b[r\x1b[2J\x1b[H", line_stream),
    ("cursor", "\x1b[r\x1b[2J\x1b[H", cursor_stream),
    ("attributes", "\x1b[r\x1b[2J\x1b[H", attribute_stream),
    ("region", "\x1b[2J\x1b[5;20r\x1b[20;1H", region_stream),
    ("screens", "\x1b[r\x1b[2J\x1b[H", screen_stream),
]


def make_stream(piece, size):
    rng = random.Random(4711)
    out, length, number = [], 0, 0
    while length < size:
        out.append(piece(rng, number))
        length += len(out[-1])
        number += 1
    return "".join(out).encode()


# ---------------------------------------------------------------- programs

def environment(display, home):
    kept = {name: os.environ[name] for name in ("PATH",) if name in os.environ}
    return {**kept, "DISPLAY": display, "HOME": home, "XDG_RUNTIME_DIR": home, "LANG": "C.UTF-8",
            "LIBGL_ALWAYS_SOFTWARE": "1", "SHELL": "/bin/sh", "USER": "bench", "LOGNAME": "bench"}


class Bench:
    """One X server, one listening host, and the programs that use them."""

    def __init__(self, options):
        self.options = options
        self.server, self.display = start_x()
        self.home = tempfile.mkdtemp(prefix="quill-bench-")
        self.root = os.path.join(self.home, "root")
        os.mkdir(self.root)
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.program = os.path.abspath(options.program)
        self.probe = os.path.join(BUILD, "bench", "bench_glyph_probe")
        self.bare = os.path.join(BUILD, "bench", "bench_bare_window")
        self.echo = os.path.join(BUILD, "bench", "bench_bare_echo")
        session.PROGRAM = self.program
        session.prepare(self.port, self.root, self.display)
        session.take_old_connections(self.listener)

    def close(self):
        self.server.terminate()
        self.server.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    def environment(self):
        return environment(self.display, self.home)

    def command(self, name):
        if name == "quill":
            return [self.program, "--root", self.root, "--scale", "2"]
        if name == "bare window":
            return [self.bare]
        if name == "bare echo":
            return [self.echo, str(self.port)]
        return TERMINALS[name] + ["telnet", "127.0.0.1", str(self.port)]

    def open(self, name):
        """A session whose terminal has become idle: the process and the host's end of the connection."""
        process = subprocess.Popen(self.command(name), env=self.environment(),
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.listener.settimeout(30)
        connection, _ = self.listener.accept()
        connection.settimeout(300)
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        connection.sendall(b"\xff\xfb\x01\xff\xfb\x03\x1b[2J\x1b[H")
        time.sleep(1.5)
        connection.sendall(b"\x1b[6n")
        session.answer_of(connection)
        return process, connection

    def close_session(self, process, connection):
        connection.close()
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()
        time.sleep(0.5)

    def probe_lines(self, arguments, **more):
        done = subprocess.run([self.probe] + arguments, env=self.environment(), text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=200, **more)
        if done.returncode:
            raise RuntimeError(done.stderr.strip() or f"the probe ended with {done.returncode}")
        return [[int(word) for word in line.split()] for line in done.stdout.splitlines()]


def start_x():
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-r", "-displayfd", str(write), "-screen", "0", "1280x1024x24",
                               "-nolisten", "tcp"], pass_fds=[write], stderr=subprocess.DEVNULL)
    os.close(write)
    number = os.fdopen(read).readline().strip()
    return server, ":" + number


def processes_of(process):
    """The program and its child processes."""
    found, waiting = [], [process.pid]
    while waiting:
        pid = waiting.pop()
        found.append(pid)
        for task in os.listdir(f"/proc/{pid}/task"):
            try:
                waiting += [int(p) for p in open(f"/proc/{pid}/task/{task}/children").read().split()]
            except OSError:
                pass
    return found


def memory_of(process):
    """Kilobytes: proportional, private, and private that was written."""
    sums = {"Pss": 0, "Private_Clean": 0, "Private_Dirty": 0}
    for pid in processes_of(process):
        for line in open(f"/proc/{pid}/smaps_rollup"):
            name = line.split(":")[0]
            if name in sums:
                sums[name] += int(line.split()[1])
    return sums["Pss"], sums["Private_Clean"] + sums["Private_Dirty"], sums["Private_Dirty"]


# ---------------------------------------------------------------- measurements

def measure_streams(bench, name):
    process, connection = bench.open(name)
    figures = []
    for _, before, piece in STREAMS:
        data = make_stream(piece, bench.options.megabytes * 1000000)
        seconds = []
        for _ in range(STREAM_ROUNDS):
            connection.sendall(before.encode() + b"\x1b[6n")
            session.answer_of(connection)
            time.sleep(0.2)
            began = time.perf_counter()
            connection.sendall(data)
            connection.sendall(b"\x1b[6n")
            session.answer_of(connection)
            seconds.append(time.perf_counter() - began)
        figures.append(len(data) / statistics.median(seconds) / 1e6)
    bench.close_session(process, connection)
    return figures


def press_keys(bench, name, presses, rate, seed):
    """A list of (microseconds to the glyph, time of the press, time of the glyph)."""
    process, connection = bench.open(name)
    connection.setblocking(True)
    try:
        return bench.probe_lines(["keys", str(connection.fileno()), str(presses), str(rate),
                                  str(seed)], pass_fds=[connection.fileno()])
    finally:
        bench.close_session(process, connection)


def percentile(values, share):
    return statistics.quantiles(values, n=100, method="inclusive")[share - 1]


def figures_of_keys(rows):
    times = [row[0] / 1000 for row in rows]
    return [statistics.median(times), percentile(times, 95), percentile(times, 99), max(times)]


def measure_keys(bench, names, rate):
    """A block of presses for each terminal, and again, until each has had all its presses."""
    rows = {name: [] for name in names}
    for first in range(0, bench.options.presses, BLOCK):
        presses = min(BLOCK, bench.options.presses - first)
        for name in names:
            with reporting(bench, name, "keys"):
                rows[name] += press_keys(bench, name, presses, rate, 4711 + first)
    return {name: figures_of_keys(each) for name, each in rows.items() if len(each) > 1}


def measure_start(bench, name):
    rows = []
    for _ in range(STARTS):
        rows += bench.probe_lines(["start"] + bench.command(name))
        session.take_old_connections(bench.listener)
    return [statistics.median(row[0] for row in rows) / 1000,
            statistics.median(row[1] for row in rows) / 1000]


def measure_memory(bench, name):
    if name == "bare window":
        process, connection = subprocess.Popen(bench.command(name), env=bench.environment()), None
        time.sleep(2)
    else:
        process, connection = bench.open(name)
    figures = [kilobytes / 1024 for kilobytes in memory_of(process)]
    bench.close_session(process, connection or socket.socket())
    return figures


def one_by_one(measure):
    """A procedure that measures one terminal after the other."""
    def measure_all(bench, names):
        rows = {}
        for name in names:
            with reporting(bench, name, "this table"):
                rows[name] = measure(bench, name)
        return rows
    return measure_all


@contextlib.contextmanager
def reporting(bench, name, what):
    """A terminal that fails is named, and the others go on."""
    try:
        yield
    except (OSError, RuntimeError, subprocess.SubprocessError) as error:
        print(f"{name}: no figure for {what}: {error}", flush=True)
        session.take_old_connections(bench.listener)


# name: procedure, the floor that takes part, columns, format, more is better
MEASURES = {
    "streams": (one_by_one(measure_streams), [], [f"{name} MB/s" for name, _, _ in STREAMS],
                "{:.0f}", True),
    "keys": (lambda bench, names: measure_keys(bench, names, 0), ["bare echo"],
             ["median ms", "p95", "p99", "most"], "{:.2f}", False),
    "busy": (lambda bench, names: measure_keys(bench, names, 1000000), [],
             ["median ms", "p95", "p99", "most"], "{:.2f}", False),
    "start": (one_by_one(measure_start), ["bare window"], ["first paint ms", "processor ms"],
              "{:.1f}", False),
    "memory": (one_by_one(measure_memory), ["bare window"],
               ["proportional MB", "private MB", "private and written MB"], "{:.1f}", False),
}


def ratios(figures, own, more_is_better):
    pairs = ((ours / theirs, theirs / ours)[not more_is_better] for ours, theirs in zip(own, figures))
    return [f"{ratio:.2f}" for ratio in pairs]


def print_table(what, rows):
    _, _, columns, form, more_is_better = MEASURES[what]
    print(f"\n{what}: figures, and how many times better Quill's are")
    print("| | " + " | ".join(columns) + " | " + " | ".join("ratio" for _ in columns) + " |")
    print("|---" + "|---:" * (2 * len(columns)) + "|")
    own = rows.get("quill")
    for name, figures in rows.items():
        cells = [form.format(figure) for figure in figures]
        cells += ratios(figures, own, more_is_better) if own and name != "quill" else [""] * len(cells)
        print(f"| {name} | " + " | ".join(cells) + " |")
    sys.stdout.flush()


def run(bench, names):
    for what in bench.options.only or MEASURES:
        measure, floor, _, _, _ = MEASURES[what]
        print_table(what, measure(bench, names + floor))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--only", action="append", choices=list(MEASURES))
    parser.add_argument("--terminal", action="append", choices=list(TERMINALS))
    parser.add_argument("--megabytes", type=int, default=10)
    parser.add_argument("--presses", type=int, default=1000)
    parser.add_argument("--program", default=os.path.join(BUILD, "platform", "qt", "quill"))
    options = parser.parse_args()
    for tool in ("Xvfb", "telnet", options.program):
        if not shutil.which(tool):
            sys.exit(f"bench/terminals.py: {tool} is missing")
    for tool in ("bench_glyph_probe", "bench_bare_window", "bench_bare_echo"):
        if not shutil.which(os.path.join(BUILD, "bench", tool)):
            sys.exit(f"bench/terminals.py: {tool} is not built; it needs {PACKAGES}, and "
                     "cmake --preset release to find them")
    names = []
    for name in options.terminal or TERMINALS:
        if name == "quill" or shutil.which(TERMINALS[name][0]):
            names.append(name)
        else:
            print(f"{name}: not installed, skipped")
    bench = Bench(options)
    try:
        run(bench, names)
    finally:
        bench.close()


if __name__ == "__main__":
    main()
