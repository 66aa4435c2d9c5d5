#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Says where the time from a key press to its glyph goes: the chain of threads that wake each other,
from the probe's press to the change of the glyph's pixels, for Quill, other terminals and the bare
window of Quill's toolkit that only echoes keys.

The kernel's trace of switches and wake-ups (perf) is read backwards from the change of the pixels:
the thread that woke the probe, the thread that woke that one, and so on up to the press. Most presses
of a program have the same chain. For that chain the script prints the medians of each step: the time
from the wake-up until the thread runs, and from then until it wakes the next thread. The trace takes
about a tenth of the time.

Usage: bench/key_steps.py [--terminal NAME ...] [--presses N]     (needs root and perf: linux-perf)
"""
import argparse
import bisect
import collections
import os
import re
import shutil
import signal
import statistics
import subprocess
import sys
import time

import terminals

EVENTS = "sched:sched_switch,sched:sched_waking"
LINE = re.compile(r"\s*(\S.*?)\s+(-?\d+)/(-?\d+)\s+(\d+)\.(\d{9}):\s+sched:(\w+):\s+(.*)")
MOST_STEPS = 30


class Trace:
    """Per thread: when it was woken and by whom, and when it began to run. Times are microseconds."""

    def __init__(self, lines):
        self.names = {}
        self.woken = collections.defaultdict(list)
        self.begun = collections.defaultdict(list)
        for line in lines:
            if found := LINE.match(line):
                self.take(*found.groups())

    def take(self, comm, pid, tid, seconds, rest, event, text):
        at = int(seconds) * 1e6 + int(rest) / 1e3
        tid = int(tid)
        self.names[tid] = self.name(comm, int(pid), tid)
        if event == "sched_waking":
            wakee = int(re.search(r" pid=(\d+)", text).group(1))
            self.woken[wakee].append((at, tid))
        else:
            self.begun[int(re.search(r"next_pid=(\d+)", text).group(1))].append(at)

    @staticmethod
    def name(comm, pid, tid):
        comm = re.sub(r"^kworker.*", "kernel", comm)
        return comm if pid == tid or comm == "QXcbEventQueue" else comm + ", second thread"

    def chain(self, tid, pressed, ended):
        """Steps from the press to the end: (thread, wait until it ran, its work)."""
        steps, at, last = [], ended, tid
        while len(steps) < MOST_STEPS:
            place = bisect.bisect_left(self.woken[tid], (at, 0)) - 1
            if place < 0 or self.woken[tid][place][0] < pressed:  # it did not sleep
                return [(self.names.get(tid, "?"), 0.0, at - pressed)] + steps[::-1]
            woken, waker = self.woken[tid][place]
            run = bisect.bisect_left(self.begun[tid], woken)
            begun = min(self.begun[tid][run], at) if run < len(self.begun[tid]) else at
            steps.append((self.names.get(tid, "?"), begun - woken, at - begun))
            tid, at = waker, woken
            if tid == last:
                steps.append((self.names.get(tid, "?"), 0.0, at - pressed))
                return steps[::-1]
        return None


def record(bench, name, presses):
    path = os.path.join(bench.home, "trace")
    process, connection = bench.open(name)
    connection.setblocking(True)
    recorder = subprocess.Popen(["perf", "record", "-q", "-a", "-k", "CLOCK_MONOTONIC", "-e", EVENTS,
                                 "-o", path], stderr=subprocess.DEVNULL)
    time.sleep(1)
    probe = subprocess.Popen([bench.probe, "keys", str(connection.fileno()), str(presses), "0",
                              "4711"], env=bench.environment(), text=True, stdout=subprocess.PIPE,
                             pass_fds=[connection.fileno()])
    rows = [[int(word) for word in line.split()] for line in probe.communicate()[0].splitlines()]
    recorder.send_signal(signal.SIGINT)
    recorder.wait()
    bench.close_session(process, connection)
    script = subprocess.run(["perf", "script", "--ns", "-i", path, "-F",
                             "comm,pid,tid,time,event,trace"], text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL, check=True)
    return Trace(script.stdout.splitlines()), probe.pid, rows


def print_chain(name, trace, probe, rows):
    chains = [trace.chain(probe, pressed, ended) for _, pressed, ended in rows]
    chains = [chain for chain in chains if chain and len(chain) > 2]  # otherwise the probe was awake
    kinds = collections.Counter(tuple(step[0] for step in chain) for chain in chains)
    if not kinds:
        return print(f"{name}: no chain was found")
    kind, count = kinds.most_common(1)[0]
    same = [chain for chain in chains if tuple(step[0] for step in chain) == kind]
    total = statistics.median(row[0] for row in rows)
    print(f"\n{name}: {count} of {len(rows)} presses have this chain; median of all {total:.0f} us")
    print("| step | wake-up, us | work, us |\n|---|---:|---:|")
    for place, step in enumerate(kind):
        waits = statistics.median(chain[place][1] for chain in same)
        works = statistics.median(chain[place][2] for chain in same)
        print(f"| {step} | {waits:.0f} | {works:.0f} |")
    sys.stdout.flush()


def main():
    names = list(terminals.TERMINALS) + ["bare echo"]
    parser = argparse.ArgumentParser()
    parser.add_argument("--terminal", action="append", choices=names)
    parser.add_argument("--presses", type=int, default=300)
    parser.add_argument("--program",
                        default=os.path.join(terminals.BUILD, "platform", "qt", "quill"))
    options = parser.parse_args()
    if not shutil.which("perf"):
        sys.exit("bench/key_steps.py: perf is missing (apt install linux-perf)")
    bench = terminals.Bench(options)
    try:
        for name in options.terminal or ["quill", "xterm", "bare echo"]:
            print_chain(name, *record(bench, name, options.presses))
    finally:
        bench.close()


if __name__ == "__main__":
    main()
