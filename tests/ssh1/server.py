#!/usr/bin/python3 -B
# SPDX-License-Identifier: MIT
"""An SSH-1.5 server for the tests, on a free port of 127.0.0.1.

One user ("visitor", password "warehouse7") gets a shell on a pseudo-terminal, run as whoever runs
the server. Prints "port N" first, then what clients do, a line each. Ends when its standard input
does. Options make it deviate from a correct server.
"""
import argparse
import fcntl
import hashlib
import os
import pty
import select
import signal
import socket
import struct
import sys
import termios
import time

import ssh1_wire as wire
from ssh1_wire import Misbehaviour

POINTS = ("key", "session", "user", "password", "pty", "shell")


def tell(text):
    sys.stdout.write(text + "\n")
    sys.stdout.flush()


class Connection:
    def __init__(self, stream, options, host_key, server_key):
        self.stream, self.options = stream, options
        self.host_key, self.server_key = host_key, server_key
        self.incoming, self.cipher, self.outgoing = wire.Unsealer(), None, b""
        self.pty, self.terminal, self.child = None, None, None

    # ------------------------------------------------------------ packets

    def post(self, kind, data=b"", spoil=0):
        if self.options.chatter:
            self.outgoing += wire.seal(self.cipher, wire.MSG_IGNORE, wire.string(os.urandom(9)))
            self.outgoing += wire.seal(self.cipher, wire.MSG_DEBUG, wire.string(b"chatter"))
        self.outgoing += wire.seal(self.cipher, kind, data, spoil)

    def flush(self):
        step = self.options.pieces or len(self.outgoing)
        while self.outgoing:
            self.stream.sendall(self.outgoing[:step])
            self.outgoing = self.outgoing[step:]

    def answer(self, point, kind, data=b""):
        """Sends the answer of a point of the conversation, or the one that an option puts there."""
        options = self.options
        if point in options.raw:
            self.outgoing += options.raw[point]
        elif point in options.say:
            for said in options.say[point]:
                self.post(*said)
        else:
            self.post(kind, data, 1 if point == options.spoil else 0)
        self.flush()

    def fill(self):
        data = self.stream.recv(65536)
        if not data:
            raise EOFError
        self.incoming.bytes += data

    def expect(self, *kinds):
        while True:
            packet = self.incoming.next()
            if packet is None:
                self.fill()
            elif packet[0] == wire.MSG_DISCONNECT:
                tell("disconnect " + wire.Reader(packet[1]).string().decode())
                raise EOFError
            elif packet[0] in kinds:
                return packet[0], wire.Reader(packet[1])
            elif packet[0] not in (wire.MSG_IGNORE, wire.MSG_DEBUG):
                if kinds[0] == wire.CMSG_AUTH_PASSWORD or kinds[0] == wire.CMSG_REQUEST_PTY:
                    tell("refused %d" % packet[0])
                    self.post(wire.SMSG_FAILURE)
                    self.flush()
                else:
                    raise Misbehaviour("message %d where %s is due" % (packet[0], kinds))

    # ------------------------------------------------------------ opening

    def exchange_lines(self):
        line = b"SSH-1.5-for_the_tests\n"
        if self.options.line:
            line = self.options.line.encode().decode("unicode_escape").encode("latin-1")
        self.stream.sendall(line)
        while b"\n" not in self.incoming.bytes:
            self.fill()
        line, self.incoming.bytes = self.incoming.bytes.split(b"\n", 1)
        tell("client " + line.rstrip(b"\r").decode())

    def exchange_keys(self):
        cookie = os.urandom(8)
        keys = b"".join(struct.pack(">I", key.n.bit_length()) + wire.integer(key.e) +
                        wire.integer(key.n) for key in (self.server_key, self.host_key))
        self.answer("key", wire.SMSG_PUBLIC_KEY, cookie + keys +
                    struct.pack(">III", 0, self.options.ciphers, 1 << 3))
        _, message = self.expect(wire.CMSG_SESSION_KEY)
        number = message.take(1)[0]
        if message.take(8) != cookie:
            raise Misbehaviour("cookie")
        session_key = self.open_session_key(message.integer_bytes(), cookie)
        tell("flags %d" % message.uint32())
        message.end()
        if not self.options.ciphers >> number & 1:
            raise Misbehaviour("cipher %d is not offered" % number)
        tell("cipher %d" % number)
        self.cipher = self.incoming.cipher = wire.CIPHERS[number](session_key)
        self.answer("session", wire.SMSG_SUCCESS)

    def open_session_key(self, block, cookie):
        host, server = self.host_key, self.server_key
        outer, inner = (host, server) if host.n > server.n else (server, host)
        key = wire.decrypt(inner, wire.decrypt(outer, block))
        if len(key) > 32:
            raise Misbehaviour("session key of %d bytes" % len(key))
        key = key.rjust(32, b"\0")  # a number, from which some clients drop leading zeros
        modulus = [key.n.to_bytes(key.size, "big") for key in (host, server)]
        identifier = hashlib.md5(modulus[0] + modulus[1] + cookie).digest()
        return bytes(a ^ b for a, b in zip(key, identifier)) + key[16:]

    # ------------------------------------------------------------ login

    def log_in(self):
        granted = False
        kinds = (wire.CMSG_USER,)
        while not granted:
            kind, message = self.expect(*kinds)
            text = message.string()
            message.end()
            if kind == wire.CMSG_USER:
                tell("user " + text.decode("latin-1"))
                user = text
                granted = self.options.no_password
                self.answer("user", wire.SMSG_SUCCESS if granted else wire.SMSG_FAILURE)
                kinds = (wire.CMSG_AUTH_PASSWORD,)
                if not self.options.one_name:
                    kinds += (wire.CMSG_USER,)
            else:
                password = text.rstrip(b"\0")
                tell("password " + password.decode("latin-1"))
                granted = (user, password) == (b"visitor", b"warehouse7")
                self.answer("password", wire.SMSG_SUCCESS if granted else wire.SMSG_FAILURE)

    # ------------------------------------------------------------ session

    def prepare(self):
        kinds = (wire.CMSG_REQUEST_PTY, wire.CMSG_EXEC_SHELL, wire.CMSG_EXEC_CMD)
        while True:
            kind, message = self.expect(*kinds)
            if kind != wire.CMSG_REQUEST_PTY:
                return kind == wire.CMSG_EXEC_CMD and message.string().decode()
            terminal = message.string().decode("latin-1")
            self.pty = [message.uint32() for _ in range(4)]
            tell("pty %s %d %d %d %d modes %s" % (terminal, *self.pty, message.data.hex()))
            self.terminal = terminal
            if self.options.no_pty:
                self.pty = None
            self.answer("pty", wire.SMSG_SUCCESS if self.pty else wire.SMSG_FAILURE)

    def start(self, command):
        tell("command " + command if command else "shell")
        arguments = ["/bin/sh", "-c", command] if command else [
            "/bin/bash", "--norc", "--noprofile", "-i"]
        environment = {"PATH": os.environ["PATH"], "HOME": "/", "PS1": "$ ",
                       "TERM": self.terminal or "dumb", "INPUTRC": "/dev/null"}
        if self.pty:
            self.child, master = pty.fork()
            if self.child == 0:
                # The programs of the shell end with its terminal, also if the tests run under nohup.
                signal.signal(signal.SIGHUP, signal.SIG_DFL)
                os.execve(arguments[0], arguments, environment)
            fcntl.ioctl(master, termios.TIOCSWINSZ, struct.pack("HHHH", *self.pty[:2], 0, 0))
            return master, {master: wire.SMSG_STDOUT_DATA}
        ends = [os.pipe() for _ in range(3)]
        self.child = os.fork()
        if self.child == 0:
            for number, end in enumerate((ends[0][0], ends[1][1], ends[2][1])):
                os.dup2(end, number)
            os.closerange(3, 256)
            os.execve(arguments[0], arguments, environment)
        for end in (ends[0][0], ends[1][1], ends[2][1]):
            os.close(end)
        return ends[0][1], {ends[1][0]: wire.SMSG_STDOUT_DATA, ends[2][0]: wire.SMSG_STDERR_DATA}

    def take_input(self):
        """Returns what the client types; empty at its end."""
        while True:
            packet = self.incoming.next()
            if packet is None:
                return
            if packet[0] == wire.CMSG_STDIN_DATA:
                message = wire.Reader(packet[1])
                yield message.string()
                message.end()
            elif packet[0] == wire.CMSG_EOF:
                yield b""
            elif packet[0] == wire.MSG_DISCONNECT:
                raise EOFError
            elif packet[0] not in (wire.MSG_IGNORE, wire.MSG_DEBUG, wire.CMSG_WINDOW_SIZE):
                raise Misbehaviour("message %d in the session" % packet[0])

    def run(self, source, sinks):
        """Copies bytes in both directions until the command's output ends."""
        typed, ended = b"", False
        self.answer("shell", wire.MSG_IGNORE, wire.string(b""))
        while sinks:
            for data in self.take_input():
                typed, ended = typed + data, ended or not data
            if ended and not typed and source and not self.pty:
                os.close(source)
                source = None
            readable, writable, _ = select.select(
                [self.stream, *sinks], [source] if typed and source else [], [])
            for sink in [sink for sink in sinks if sink in readable]:
                try:
                    data = os.read(sink, self.options.chunk)
                except OSError:  # a pty reports its end so
                    data = b""
                if data:
                    self.post(sinks[sink], wire.string(data))
                else:
                    del sinks[sink]
            if writable:
                typed = typed[os.write(source, typed[:256]):]
            if self.stream in readable:
                self.fill()
            self.flush()

    def finish(self):
        status = os.waitstatus_to_exitcode(os.waitpid(self.child, 0)[1])
        self.post(wire.SMSG_EXITSTATUS, struct.pack(">i", status))
        self.flush()
        while True:
            packet = self.incoming.next()
            if packet is None:
                self.fill()
            elif packet[0] == wire.CMSG_EXIT_CONFIRMATION:
                return tell("exit %d confirmed" % status)

    def serve(self):
        try:
            self.exchange_lines()
            self.exchange_keys()
            self.log_in()
            command = self.prepare()
            self.run(*self.start(command))
            self.finish()
        except Misbehaviour as error:
            tell("misbehaviour: %s" % error)
        except (EOFError, ConnectionError):
            tell("gone")
        if self.child:
            try:
                os.kill(self.child, signal.SIGHUP)
            except ProcessLookupError:
                pass


def at_points(pairs, convert):
    """POINT=VALUE options as a table."""
    table = {}
    for pair in pairs:
        point, value = pair.split("=", 1)
        if point not in POINTS:
            sys.exit("no point " + point)
        table[point] = convert(value)
    return table


def packets(text):
    """TYPE[:HEX],TYPE[:HEX]... as packets."""
    split = [(one + ":").split(":") for one in text.split(",")]
    return [(int(kind), bytes.fromhex(data)) for kind, data, *_ in split]


def parse_options():
    parser = argparse.ArgumentParser(description=__doc__)
    add = parser.add_argument
    add("--host-bits", type=int, default=1024)
    add("--server-bits", type=int, default=768)
    add("--ciphers", type=lambda text: int(text, 0), default=0x4C, help="mask of cipher numbers")
    add("--line", default="", help="identification, with escapes, in place of its own")
    add("--no-pty", action="store_true", help="refuses the terminal")
    add("--one-name", action="store_true", help="refuses another user name after the first")
    add("--no-password", action="store_true", help="wants none")
    add("--chatter", action="store_true", help="MSG_IGNORE and MSG_DEBUG before every packet")
    add("--pieces", type=int, default=0, help="sends so many bytes at a time")
    add("--chunk", type=int, default=4096, help="most bytes of a data packet")
    add("--spoil", default="", help="a wrong checksum at this point: " + ", ".join(POINTS))
    add("--say", action="append", default=[], metavar="POINT=TYPE[:HEX],...",
        help="these packets in place of the answer")
    add("--raw", action="append", default=[], metavar="POINT=HEX", help="these bytes instead")
    options = parser.parse_args()
    options.say = at_points(options.say, packets)
    options.raw = at_points(options.raw, bytes.fromhex)
    return options


def end_children(children):
    """Waits for connections whose client has closed, and ends the others."""
    deadline = time.monotonic() + 2
    while children and time.monotonic() < deadline:
        children = [child for child in children if os.waitpid(child, os.WNOHANG)[0] == 0]
        time.sleep(0.01)
    for child in children:
        os.kill(child, signal.SIGKILL)  # its end of the pty closes with it
        os.waitpid(child, 0)


def main():
    options = parse_options()
    host_key, server_key = wire.make_key(options.host_bits), wire.make_key(options.server_bits)
    listener = socket.create_server(("127.0.0.1", 0))
    children = []
    tell("port %d" % listener.getsockname()[1])
    while True:
        readable, _, _ = select.select([listener, sys.stdin], [], [])
        if sys.stdin in readable and not os.read(0, 4096):
            break
        if listener not in readable:
            continue
        stream, _ = listener.accept()
        child = os.fork()
        if child == 0:
            os.setpgid(0, 0)
            listener.close()
            stream.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            Connection(stream, options, host_key, server_key).serve()
            os._exit(0)
        stream.close()
        children.append(child)
    end_children(children)
    tell("ended")


if __name__ == "__main__":
    main()
