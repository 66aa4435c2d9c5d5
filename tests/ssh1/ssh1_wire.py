# SPDX-License-Identifier: MIT
"""SSH-1.5 on the wire, for the test server: keys, ciphers, packets, strings and integers.

Bytes and ciphers are those of the protocol's last draft; the block functions come from pycryptodome.
"""
import os
import struct
import zlib
from collections import namedtuple

from Cryptodome.Cipher import DES, Blowfish
from Cryptodome.Util.number import GCD, getPrime

Key = namedtuple("Key", "n e d size")  # size: bytes of the modulus

(MSG_DISCONNECT, SMSG_PUBLIC_KEY, CMSG_SESSION_KEY, CMSG_USER) = range(1, 5)
CMSG_AUTH_PASSWORD, CMSG_REQUEST_PTY, CMSG_WINDOW_SIZE, CMSG_EXEC_SHELL, CMSG_EXEC_CMD = range(9, 14)
(SMSG_SUCCESS, SMSG_FAILURE, CMSG_STDIN_DATA, SMSG_STDOUT_DATA, SMSG_STDERR_DATA, CMSG_EOF,
 SMSG_EXITSTATUS) = range(14, 21)
MSG_IGNORE, CMSG_EXIT_CONFIRMATION, MSG_DEBUG = 32, 33, 36


class Misbehaviour(Exception):
    """The client broke the protocol; the text says how."""


def make_key(bits, e=65537):
    while True:
        p, q = getPrime((bits + 1) // 2), getPrime(bits // 2)
        n = p * q
        if p != q and n.bit_length() == bits and GCD(e, (p - 1) * (q - 1)) == 1:
            return Key(n, e, pow(e, -1, (p - 1) * (q - 1)), (bits + 7) // 8)


def decrypt(key, block):
    """Decrypts RSA with the padding of block type 2 and checks every rule of it."""
    if len(block) > key.size or int.from_bytes(block, "big") >= key.n:
        raise Misbehaviour("encrypted number is not below the modulus")
    plain = pow(int.from_bytes(block, "big"), key.d, key.n).to_bytes(key.size, "big")
    end = plain.find(b"\0", 2)
    if plain[:2] != b"\0\2" or end < 0:
        raise Misbehaviour("no padding of block type 2")
    return plain[end + 1:]


# ---------------------------------------------------------------- ciphers

class Des:
    def __init__(self, session_key):
        self.out, self.back = (DES.new(session_key[:8], DES.MODE_CBC, bytes(8)) for _ in "01")

    def encrypt(self, data):
        return self.out.encrypt(data)

    def decrypt(self, data):
        return self.back.decrypt(data)


class TripleDes:
    """Three passes over the whole packet, each with its own chain."""

    def __init__(self, session_key):
        keys = [session_key[i:i + 8] for i in (0, 8, 16)]
        self.out = [DES.new(key, DES.MODE_CBC, bytes(8)) for key in keys]
        self.back = [DES.new(key, DES.MODE_CBC, bytes(8)) for key in keys]

    def encrypt(self, data):
        return self.out[2].encrypt(self.out[1].decrypt(self.out[0].encrypt(data)))

    def decrypt(self, data):
        return self.back[0].decrypt(self.back[1].encrypt(self.back[2].decrypt(data)))


def swap_words(data):
    return b"".join(data[i:i + 4][::-1] for i in range(0, len(data), 4))


class LittleBlowfish:
    """Blocks as two little-endian words."""

    def __init__(self, session_key):
        self.out, self.back = (Blowfish.new(session_key, Blowfish.MODE_CBC, bytes(8))
                               for _ in "01")

    def encrypt(self, data):
        return swap_words(self.out.encrypt(swap_words(data)))

    def decrypt(self, data):
        return swap_words(self.back.decrypt(swap_words(data)))


CIPHERS = {2: Des, 3: TripleDes, 6: LittleBlowfish}


# ---------------------------------------------------------------- strings, integers, packets

def string(data):
    return struct.pack(">I", len(data)) + data


def integer(value):
    bits = value.bit_length()
    return struct.pack(">H", bits) + value.to_bytes((bits + 7) // 8, "big")


class Reader:
    def __init__(self, data):
        self.data = data

    def take(self, count):
        if count > len(self.data):
            raise Misbehaviour("message is too short")
        taken, self.data = self.data[:count], self.data[count:]
        return taken

    def uint32(self):
        return struct.unpack(">I", self.take(4))[0]

    def string(self):
        return self.take(self.uint32())

    def integer_bytes(self):
        bits = struct.unpack(">H", self.take(2))[0]
        return self.take((bits + 7) // 8)

    def end(self):
        if self.data:
            raise Misbehaviour("message is too long by %d bytes" % len(self.data))


def crc(data):
    """CRC-32 without the inversion before and after: initial value 0."""
    return zlib.crc32(data, 0xFFFFFFFF) ^ 0xFFFFFFFF


def seal(cipher, kind, data, spoil=0):
    length = 1 + len(data) + 4
    body = os.urandom(8 - length % 8) + bytes([kind]) + data
    body += struct.pack(">I", crc(body) ^ spoil)
    return struct.pack(">I", length) + (cipher.encrypt(body) if cipher else body)


class Unsealer:
    """Splits the client's bytes into packets."""

    def __init__(self):
        self.bytes, self.cipher = b"", None

    def next(self):
        if len(self.bytes) < 4:
            return None
        length = struct.unpack(">I", self.bytes[:4])[0]
        if not 5 <= length <= 262144:
            raise Misbehaviour("packet length %d" % length)
        size = length + 8 - length % 8
        if len(self.bytes) < 4 + size:
            return None
        body, self.bytes = self.bytes[4:4 + size], self.bytes[4 + size:]
        if self.cipher:
            body = self.cipher.decrypt(body)
        if crc(body[:-4]) != struct.unpack(">I", body[-4:])[0]:
            raise Misbehaviour("checksum")
        return body[size - length], body[size - length + 1:-4]
