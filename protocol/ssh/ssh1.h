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
//   length    uint32: the size of type, data and checksum, that is, data + 5
//   padding   8 - length mod 8 bytes (1 to 8), random
//   type      1 byte
//   data
//   checksum  CRC-32 without inversions, over padding, type and data
// Once there is a cipher, everything from the padding on is encrypted.

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

// Starts a packet with dataLength bytes of data, at most kSsh1PacketSize - 17. Returns where the
// caller writes them.
BYTE* Ssh1BeginPacket(BYTE type, int dataLength);
void Ssh1SendPacket();

// Sends a packet whose data is one string.
void Ssh1SendString(BYTE type, const void* bytes, int length);

// Returns how many bytes, from the length field on, must have arrived before the packet can be
// opened. For a packet that is too large this is only the length field, since the rest would never
// fit. The length field must have arrived.
uint64_t Ssh1PacketSize(const BYTE* packet);

struct Ssh1Packet {
    BYTE type;
    const BYTE* data;  // in session.ssh1.packetBuf
    int length;
};

// Decrypts and checks a packet of `length` bytes, from its length field on. Returns false if there
// is nothing to act on: the packet has no room for a type, its length is not the one that it
// states, or its type is MSG_IGNORE or MSG_DEBUG. A packet that is too large or has a wrong
// checksum ends the session with a message; the result is false then too.
bool Ssh1OpenPacket(const BYTE* bytes, int length, Ssh1Packet* packet);

// Shows the error and then calls CloseSession, unless the session ended while the message box was
// open.
void Ssh1EndSession(LPCWSTR text);

// ---------------------------------------------------------------- the session

extern const Protocol kSsh1Protocol;

// Takes a received chunk: collects bytes until packets are complete and handles these one by one.
void Ssh1TakeChunk(const BYTE* bytes, int count);

// Opens a packet and acts on it.
void Ssh1HandlePacket(const BYTE* bytes, int length);

// Acts on a checked packet with `length` bytes of data, depending on the session's state.
void Ssh1RunState(BYTE type, const BYTE* data, int length);

// Sends bytes to the shell, unchanged. Drops them if there is no shell yet.
void Ssh1SendData(const BYTE* data, int length);

// Takes the server's public-key message, replies with the session key, and encrypts from then on.
// Returns false if it showed an error and ended the session instead.
bool Ssh1ExchangeKeys(const BYTE* data, int length);

#endif
