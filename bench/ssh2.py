#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Compares SSH-2 sessions of Quill with OpenSSH's client in an xterm, with the same old algorithms and
the same sshd on loopback, on one Xvfb, in one run.

It measures for the client and for `xterm -e ssh -c 3des-cbc`:
  prompt       from the arrival of the connection to the first command of the shell after the sign-on
  throughput   the shell's cat of a file, until the reply to a request for the cursor position, which
               both send only after they have processed everything before it

and four figures to compare the throughput time with:
  floor        `ssh -c 3des-cbc HOST cat FILE > /dev/null`, without a terminal at either end
  terminal     the same with a terminal at the server's end, as for a shell (`ssh -tt`)
  one thread   Quill's own protocol and terminal on one thread, without a window and with Quill's
               numbers: a window of 8,000 bytes, an adjust when less than 4,000 are left, reads of at
               most 3,000 bytes (bench_ssh2_floor)
  long reads   the same with reads of at most 32,768 bytes

All are measured in turn, in each of the rounds; the figures are medians. Build the programs with
    cmake --preset release && cmake --build --preset release --target quill bench_ssh2_floor

Usage: bench/ssh2.py [--megabytes N] [--rounds N] [--program PATH] [--floor PATH] [--no-xterm]
                     [--no-prompt]
       (needs root, Xvfb, xterm, ssh)
"""
import argparse
import os
import shutil
import socket
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import threading
import time

import session

HERE = os.path.dirname(os.path.abspath(__file__))
SSHD = os.path.join(HERE, "..", "tests", "ssh2", "sshd.sh")
FLOOR = os.path.join(os.path.dirname(session.PROGRAM), "..", "..", "bench", "bench_ssh2_floor")
PROMPTS = 5
ALGORITHMS = ["-F", "none", "-c", "3des-cbc", "-m", "hmac-sha1",
              "-oKexAlgorithms=diffie-hellman-group1-sha1", "-oHostKeyAlgorithms=ssh-dss",
              "-oStrictHostKeyChecking=no", "-oUserKnownHostsFile=/dev/null",
              "-oNumberOfPasswordPrompts=1"]

# The visitor's shell: it reports to this script that it runs, and waits for the answer whether to send
# the file.
SHELL = """#!/bin/bash
exec 3<>/dev/tcp/127.0.0.1/{port}
echo shell >&3
read -r -u 3 what
[ "$what" = file ] || {{ sleep 1; exit; }}
[ ! -t 0 ] || stty raw -echo
[ -z "$SSH_ORIGINAL_COMMAND" ] || exec cat {data}
cat {data}
printf '\\033[6n'
IFS= read -r -s -d R answer
echo done >&3
sleep 1
"""


def forward(source, target):
    try:
        while data := source.recv(65536):
            target.sendall(data)
    except OSError:
        pass


class Door:
    """Accepts the client's connection, notes the time, and passes it on to the server."""

    def __init__(self, server_port):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.server_port = server_port
        self.arrived = 0.0
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            client = self.listener.accept()[0]
            self.arrived = time.perf_counter()
            server = socket.create_connection(("127.0.0.1", self.server_port))
            for each in (client, server):
                each.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            threading.Thread(target=forward, args=(client, server), daemon=True).start()
            threading.Thread(target=forward, args=(server, client), daemon=True).start()


def set_registry(root, port):
    values = {"host": "127.0.0.1", "port": port, "autoconnect": 1, "ssh": 1, "ssh_type": 1,
              "ssh_type2": 1, "ssh_def": 1, "ssh_u": "visitor", "ssh_p": "warehouse7"}
    store = sqlite3.connect(os.path.join(root, "registry.db"))
    (key,) = store.execute("SELECT key FROM registry WHERE name IS NOT NULL LIMIT 1").fetchone()
    for name, value in values.items():
        kind, data = (4, value.to_bytes(4, "little")) if isinstance(value, int) else \
            (1, (value + "\0").encode("utf-16-le"))
        store.execute("DELETE FROM registry WHERE name = ? COLLATE NOCASE", (name,))
        store.execute("INSERT INTO registry (key, name, type, data) VALUES (?, ?, ?, ?)",
                      (key, name, kind, data))
    store.commit()
    store.close()


def quill_command(port, root):
    set_registry(root, port)
    return [session.PROGRAM, "--root", root, "--scale", "2"]


def xterm_command(port, root):
    return ["xterm", "-e", "ssh", *ALGORITHMS, "-p", str(port), "visitor@127.0.0.1"]


class Shells:
    """The socket to which the shells report."""

    def __init__(self):
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.listener.settimeout(60)
        self.port = self.listener.getsockname()[1]

    def next(self):
        shell = self.listener.accept()[0]
        shell.settimeout(600)
        return shell, shell.makefile("rb").readline()


def measure_prompt(make, door, root, display, shells):
    seconds = []
    for _ in range(PROMPTS):
        process = session.start(make(door.port, root), display)
        shell, _word = shells.next()
        seconds.append(time.perf_counter() - door.arrived)
        shell.sendall(b"nothing\n")
        session.end(process)
        shell.close()
    return statistics.median(seconds)


def processor_seconds(process):
    """Processor time of a program without its child processes."""
    fields = open(f"/proc/{process.pid}/stat").read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def time_file(process, shells, ended):
    """Seconds from the permission to send the file until `ended` returns, and processor time."""
    shell, _word = shells.next()
    time.sleep(1)
    used = processor_seconds(process)
    began = time.perf_counter()
    shell.sendall(b"file\n")
    ended(shell)
    seconds = time.perf_counter() - began
    used = processor_seconds(process) - used
    session.end(process)
    shell.close()
    return seconds, used


def answered(shell):
    shell.recv(16)


def measure_file(make, port, root, display, shells):
    return time_file(session.start(make(port, root), display), shells, answered)


def measure_floor(port, shells, *options):
    process = subprocess.Popen(["ssh", *ALGORITHMS, *options, "-p", str(port), "visitor@127.0.0.1",
                                "cat"], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    # The process is left unreaped, so that its processor time can still be read.
    gone = lambda _shell: os.waitid(os.P_PID, process.pid, os.WEXITED | os.WNOWAIT)
    return time_file(process, shells, gone)


def measure_one_thread(port, shells, *options):
    with socket.create_connection(("127.0.0.1", port)) as connection:
        connection.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        descriptor = connection.fileno()
        process = subprocess.Popen([FLOOR, str(descriptor), *options], pass_fds=[descriptor])
    return time_file(process, shells, answered)


def write_files(folder, megabytes, port):
    data = os.path.join(folder, "data")
    with open(data, "wb") as file:
        file.write(session.lines(megabytes * 1000000))
    shell = os.path.join(folder, "shell")
    with open(shell, "w") as file:
        file.write(SHELL.format(port=port, data=data))
    askpass = os.path.join(folder, "askpass")
    with open(askpass, "w") as file:
        file.write("#!/bin/sh\necho warehouse7\n")
    for each in (shell, askpass):
        os.chmod(each, 0o755)
    os.environ.update(SSH_ASKPASS=askpass, SSH_ASKPASS_REQUIRE="force")
    return shell


def first_start(root, display):
    """Creates the registry. The configuration file starts a session that fails, so the program ends."""
    session.prepare(1, root, display)


def print_speed(options, name, figures):
    """Returns the median of the seconds."""
    each = " ".join(f"{seconds:.2f}" for seconds, _ in figures)
    middle = statistics.median(seconds for seconds, _ in figures)
    used = statistics.median(used for _, used in figures)
    print(f"{name:10} {options.megabytes} MB in {middle:6.2f} s "
          f"({options.megabytes / middle:5.1f} MB/s), its processor time {used:5.2f} s   each: {each}",
          flush=True)
    return middle


def measure_prompts(options, clients, port, root, display, shells):
    door = Door(port)
    prompts = {}
    for name, make in clients.items():
        measure_prompt(make, door, root, display, shells)  # warms the server up
        prompts[name] = measure_prompt(make, door, root, display, shells)
        print(f"{name:6} prompt after {prompts[name] * 1000:5.0f} ms", flush=True)
    if "xterm" in prompts:
        print(f"xterm with ssh / quill: prompt {prompts['xterm'] / prompts['quill']:.2f}")


def measure_files(options, clients, port, root, display, shells):
    runs = {
        "floor": lambda: measure_floor(port, shells),
        "terminal": lambda: measure_floor(port, shells, "-tt"),
        "one thread": lambda: measure_one_thread(port, shells),
        "long reads": lambda: measure_one_thread(port, shells, "32768"),
    }
    for name, make in clients.items():
        runs[name] = lambda make=make: measure_file(make, port, root, display, shells)
    figures = {name: [] for name in runs}
    for _ in range(options.rounds):
        for name, measure in runs.items():
            figures[name].append(measure())
    middle = {name: print_speed(options, name, each) for name, each in figures.items()}
    for name, figure in middle.items():
        if name != "quill":
            print(f"{name} / quill {figure / middle['quill']:.2f}, "
                  f"quill / {name} {middle['quill'] / figure:.2f}")


def measure(options, port, root, display, shells):
    first_start(root, display)
    clients = {"quill": quill_command, "xterm": xterm_command}
    if options.no_xterm:
        del clients["xterm"]
    if not options.no_prompt:
        measure_prompts(options, clients, port, root, display, shells)
    measure_files(options, clients, port, root, display, shells)


def run(options, display, folder):
    root = os.path.join(folder, "root")
    os.mkdir(root)
    os.chmod(folder, 0o755)
    shells = Shells()
    shell = write_files(folder, options.megabytes, shells.port)
    server = subprocess.Popen([SSHD, "ForceCommand=" + shell], stdin=subprocess.PIPE,
                              stdout=subprocess.PIPE, text=True)
    try:
        port = int(server.stdout.readline())
        measure(options, port, root, display, shells)
    finally:
        server.stdin.close()
        server.wait()


def main():
    global FLOOR
    parser = argparse.ArgumentParser()
    parser.add_argument("--megabytes", type=int, default=100)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--program", default=session.PROGRAM)
    parser.add_argument("--floor", default=FLOOR)
    parser.add_argument("--no-xterm", action="store_true")
    parser.add_argument("--no-prompt", action="store_true")
    options = parser.parse_args()
    session.PROGRAM = os.path.abspath(options.program)
    FLOOR = os.path.abspath(options.floor)
    for tool in ("Xvfb", "xterm", "ssh", session.PROGRAM, FLOOR):
        if not shutil.which(tool):
            sys.exit(f"bench/ssh2.py: {tool} is missing")
    screen, display = session.start_x()
    folder = tempfile.mkdtemp(prefix="quill-bench-")
    try:
        run(options, display, folder)
    finally:
        screen.terminate()
        shutil.rmtree(folder, ignore_errors=True)


if __name__ == "__main__":
    main()
