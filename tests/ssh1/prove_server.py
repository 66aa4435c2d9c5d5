#!/usr/bin/python3 -B
# SPDX-License-Identifier: MIT
"""Checks the test server with a real client of the protocol: ssh1, unpacked below the build folder.

Logs in with triple DES and with DES, with keys of several lengths, with a wrong password before the
right one, with and without a terminal; runs commands, compares 20,000 lines and exit codes.
Exit codes: 0 correct, 1 a fault, 77 the client is not available here.
"""
import hashlib
import os
import pathlib
import subprocess
import sys
import tempfile

import server as serving
import ssh1_wire as wire

HERE = pathlib.Path(__file__).resolve().parent
OPENSSL_CONF = """openssl_conf = start
[start]
providers = providers
[providers]
default = on
legacy = on
[on]
activate = 1
"""
CIPHER_NUMBERS = {"3des": 3, "des": 2}


def fetch_client():
    done = subprocess.run([HERE.parent / "peers" / "unpack.sh", "openssh-client-ssh1"],
                          stdout=subprocess.PIPE, text=True)
    if done.returncode:
        sys.exit(done.returncode)
    return done.stdout.strip() + "/usr/bin/ssh1"


class Server:
    def __init__(self, *options):
        self.process = subprocess.Popen([HERE / "server.py", *options], text=True,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.port = self.process.stdout.readline().split()[1]

    def end(self):
        """The lines that the server printed."""
        told, _ = self.process.communicate(timeout=30)
        return told.splitlines()


class Client:
    def __init__(self, folder):
        self.program, self.folder = fetch_client(), pathlib.Path(folder)
        (self.folder / "openssl.cnf").write_text(OPENSSL_CONF)
        ask = self.folder / "ask"
        # Prints the passwords of the file, one for each call.
        ask.write_text("#!/bin/sh\nhead -n 1 '%s/passwords'\nsed -i 1d '%s/passwords'\n" %
                       (folder, folder))
        ask.chmod(0o700)

    def run(self, port, cipher, command, *options, passwords=("warehouse7",), typed=b""):
        (self.folder / "passwords").write_text("".join(line + "\n" for line in passwords))
        environment = {"PATH": os.environ["PATH"], "HOME": str(self.folder), "DISPLAY": ":none",
                       "TERM": "vt100", "SSH_ASKPASS": str(self.folder / "ask"),
                       "OPENSSL_CONF": str(self.folder / "openssl.cnf")}
        done = subprocess.run(
            ["setsid", "--wait", self.program, "-1", "-F", "/dev/null", "-c", cipher, "-p", port,
             "-o", "StrictHostKeyChecking=no", "-o", "UserKnownHostsFile=/dev/null",
             "-o", "LogLevel=ERROR", *options, "visitor@127.0.0.1", *command],
            env=environment, input=typed, capture_output=True, timeout=60)
        return done.returncode, done.stdout, done.stderr.decode()


def require(holds, what, *seen):
    print(("ok      " if holds else "FAILED  ") + what)
    if not holds:
        print(*seen, sep="\n")
        sys.exit(1)


def encrypt(key, data):
    """RSA with the padding of block type 2, as a client does it."""
    block = b"\0\2" + b"\1" * (key.size - 3 - len(data)) + b"\0" + data
    number = pow(int.from_bytes(block, "big"), key.e, key.n)
    return number.to_bytes((number.bit_length() + 7) // 8, "big")


def prove_session_key():
    """This client sends the session key as a number: one in 256 lacks its leading byte."""
    host, inner = wire.make_key(1024), wire.make_key(768)
    connection = serving.Connection(None, None, host, inner)
    cookie, modulus = bytes(8), [key.n.to_bytes(key.size, "big") for key in (host, inner)]
    identifier = hashlib.md5(modulus[0] + modulus[1] + cookie).digest()
    for sent in (bytes(range(1, 33)), bytes(1) + bytes(range(31)), bytes(31) + b"k"):
        block = encrypt(host, encrypt(inner, sent.lstrip(b"\0")))
        seen = connection.open_session_key(block, cookie)
        meant = bytes(a ^ b for a, b in zip(sent, identifier)) + sent[16:]
        require(seen == meant, "a session key of %d bytes" % len(sent.lstrip(b"\0")), seen, meant)


def prove_cipher(client, cipher):
    server = Server()
    code, out, err = client.run(server.port, cipher, ["echo from $((6 * 7)); exit 23"])
    require((code, out) == (23, b"from 42\n"), cipher + ": a command and its exit code", code, out, err)

    code, out, err = client.run(server.port, cipher, ["echo spoken; echo complained >&2"])
    require((code, out) == (0, b"spoken\n") and err.endswith("complained\n"),
            cipher + ": both outputs", code, out, err)

    lines = b"".join(b"line %d\n" % i for i in range(1, 20001))
    code, out, err = client.run(server.port, cipher, ["seq 1 20000 | sed 's/^/line /'"])
    require((code, out) == (0, lines), cipher + ": 20,000 lines", code, len(out), err)

    typed = bytes(range(256)) * 400
    code, out, err = client.run(server.port, cipher, ["cat"], typed=typed)
    require((code, out) == (0, typed), cipher + ": 102,400 bytes there and back", code, len(out), err)

    code, out, err = client.run(server.port, cipher, [], "-tt", typed=b"tty; stty size; exit 5\n")
    require(code == 5 and b"/dev/pts/" in out, cipher + ": a shell on a terminal", code, out, err)

    told = server.end()
    number = "cipher %d" % CIPHER_NUMBERS[cipher]
    require(told.count(number) == 5 and told.count("user visitor") == 5, cipher + ": all by it", told)
    require("exit 23 confirmed" in told and "exit 5 confirmed" in told, cipher + ": ends confirmed",
            told)
    require(not any("misbehaviour" in line for line in told), cipher + ": nothing to object to", told)


def prove_key_sizes(client):
    for host, server_bits in ((1024, 768), (768, 1024), (512, 1024), (2048, 1024), (1024, 2048)):
        server = Server("--host-bits", str(host), "--server-bits", str(server_bits))
        code, out, err = client.run(server.port, "3des", ["echo fine"],
                                    "-o", "RhostsRSAAuthentication=no")
        told = server.end()
        require((code, out) == (0, b"fine\n"), "keys of %d and %d bits" % (host, server_bits), code,
                out, err, told)


def prove_options(client):
    server = Server("--chatter", "--pieces", "7")
    code, out, err = client.run(server.port, "3des", ["echo through"])
    require((code, out) == (0, b"through\n"), "ignore and debug messages, in pieces", code, out, err,
            server.end())

    server = Server("--no-password")
    code, out, err = client.run(server.port, "des", ["echo welcome"], passwords=())
    require((code, out) == (0, b"welcome\n"), "no password", code, out, err)
    require(not any(line.startswith("password") for line in server.end()), "none is sent")

    server = Server()
    code, out, err = client.run(server.port, "3des", ["echo in"], passwords=("wrong", "warehouse7"))
    told = [line for line in server.end() if line.startswith("password")]
    require((code, out, told) == (0, b"in\n", ["password wrong", "password warehouse7"]),
            "a wrong password, then the right one", code, out, err, told)

    server = Server("--no-pty")
    code, out, err = client.run(server.port, "3des", [], "-tt", typed=b"tty; exit 3\n")
    require(code == 3 and b"not a tty" in out, "a shell without a terminal", code, out, err)
    server.end()

    server = Server("--spoil", "user")
    code, out, err = client.run(server.port, "3des", ["true"])
    require(code == 255 and "Corrupted check bytes" in err, "a wrong checksum is seen", code, out, err)
    server.end()

    server = Server("--ciphers", "0x40")
    code, out, err = client.run(server.port, "3des", ["true"])
    require(code == 255 and "cipher" in err.lower(), "a cipher that is not offered", code, out, err)
    server.end()


def main():
    with tempfile.TemporaryDirectory(prefix="quill-ssh1-") as folder:
        client = Client(folder)
        prove_session_key()
        for cipher in CIPHER_NUMBERS:
            prove_cipher(client, cipher)
        prove_key_sizes(client)
        prove_options(client)


if __name__ == "__main__":
    main()
