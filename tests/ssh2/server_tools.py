# SPDX-License-Identifier: MIT
# What the Python servers of these tests share: the user, a shell on a real pty, the port as the first
# line of output, and the end when standard input closes.
import fcntl
import os
import pty
import signal
import struct
import sys
import termios
import threading

USER = "visitor"
PASSWORD = "warehouse7"
SKIPPED = 77


def start_shell(term, columns, rows):
    """A bash with the prompt "$ " on a new pty; returns its process id and the pty's descriptor."""
    pid, master = pty.fork()
    if pid == 0:
        # The programs of the shell end with its terminal, also if the tests run under nohup.
        signal.signal(signal.SIGHUP, signal.SIG_DFL)
        os.chdir("/")
        environment = {
            "PATH": os.environ.get("PATH", "/usr/bin:/bin") + ":" + os.environ.get("QUILL_PEERS_PATH", ""),
            "HOME": "/",
            "TERM": term,
            "PS1": "$ ",
            "LOGNAME": USER,
        }
        os.execve("/bin/bash", ["bash", "--norc", "--noprofile"], environment)
    fcntl.ioctl(master, termios.TIOCSWINSZ, struct.pack("HHHH", rows, columns, 0, 0))
    return pid, master


def end_shell(pid, master):
    try:
        os.close(master)
        os.kill(pid, signal.SIGKILL)
    except OSError:
        pass
    try:
        os.waitpid(pid, 0)
    except OSError:
        pass


def announce(port):
    print(port, flush=True)


def end_with_standard_input():
    def wait():
        while sys.stdin.buffer.read(1):
            pass
        os._exit(0)

    threading.Thread(target=wait, daemon=True).start()


def skip(why):
    print(why, file=sys.stderr)
    sys.exit(SKIPPED)
