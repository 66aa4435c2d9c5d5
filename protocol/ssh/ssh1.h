// SPDX-License-Identifier: MIT
// The SSH-1.5 client (T. Ylonen, "The SSH (Secure Shell) Remote Login Protocol", 1995): password
// authentication, a terminal and a shell.
#ifndef QUILL_PROTOCOL_SSH_SSH1_H
#define QUILL_PROTOCOL_SSH_SSH1_H

#include "protocol/ssh/ssh_session.h"
#include "session/protocol_types.h"
#include "windows_ce.h"

// ---------------------------------------------------------------- the packets

// The packets of SSH-1.5, in either direction:
//   length    uint32: type, data and checksum, so data + 5
//   padding   8 - length mod 8 bytes (1 to 8), random
//   type      1 byte
//   data
//   checksum  CRC-32 without inversions, of padding, type and data
// From the padding on, a packet is encrypted once there is a cipher.

enum Ssh1Type : BYTE {
    MSG_DISCONNECT = 1,
    SMSG_PUBLIC_KEY = 2,
    CMSG_SESSION_KEY = 3,
    CMSG_USER = 4,
    CMSG_AUTH_PASSWORD = 9,
    CMSG_REQUEST_PTY = 10,
    CMSG_EXEC_SHELL = 12,
    SMSG_SUCCESS = 14,
    SMSG_FAILURE = 15,
    CMSG_STDIN_DATA = 16,
    SMSG_STDOUT_DATA = 17,
    SMSG_STDERR_DATA = 18,
    SMSG_EXITSTATUS = 20,
    MSG_IGNORE = 32,
    CMSG_EXIT_CONFIRMATION = 33,
    MSG_DEBUG = 36,
};

// Starts a packet of dataLength bytes, at most kSsh1PacketSize - 17; returns where they go.
BYTE* Ssh1BeginPacket(BYTE type, int dataLength);
void Ssh1SendPacket();

// A packet that is one string.
void Ssh1SendString(BYTE type, const void* bytes, int length);

// The bytes from the length field on that a packet needs to be opened. One that is too large never
// comes whole: its length alone is enough. At least the length field must be there.
uint64_t Ssh1PacketSize(const BYTE* packet);

struct Ssh1Packet {
    BYTE type;
    const BYTE* data;  // in session.ssh1.packetBuf
    int length;
};

// A packet from its length field on, `length` bytes of it in all: decrypts and checks it. False
// when there is nothing to act on: it claims too few bytes for a type, is not as long as it says,
// or is to be ignored. Too large or with a wrong checksum, it ends the session with a message.
bool Ssh1OpenPacket(const BYTE* bytes, int length, Ssh1Packet* packet);

// Shows the error, and then CloseSession, unless the session ended while the box was shown.
void Ssh1EndSession(LPCWSTR text);

// ---------------------------------------------------------------- the session

extern const Protocol kSsh1Protocol;

// A received chunk: gathered until packets are whole, which are then handled one by one.
void Ssh1TakeChunk(const BYTE* bytes, int count);

// Opens a packet and acts on it.
void Ssh1HandlePacket(const BYTE* bytes, int length);

// A packet that has been checked, `length` bytes of data: the step that is due in the session's
// state.
void Ssh1RunState(BYTE type, const BYTE* data, int length);

// Bytes for the shell, as they are; dropped before there is one.
void Ssh1SendData(const BYTE* data, int length);

// Takes the server's public-key message, answers it with the session key, and encrypts from then
// on. False when the session has ended instead, its message shown.
bool Ssh1ExchangeKeys(const BYTE* data, int length);

#endif
