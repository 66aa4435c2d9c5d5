// SPDX-License-Identifier: MIT
// The protocols: what a session needs of one, and their sections of the session record.
#ifndef QUILL_SESSION_PROTOCOL_TYPES_H
#define QUILL_SESSION_PROTOCOL_TYPES_H

#include "crypto/ciphers.h"
#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "crypto/public_key.h"
#include "text/bytes.h"
#include "windows_ce.h"

// A protocol that a session can speak, as a record of operations. The three are rows of one table
// in protocol/protocols.cpp.

struct Protocol {
    // Our identification line, with its end. Null for a protocol that exchanges none; `start` is
    // not called then.
    const char* identification;
    // The server's line has come: the first chunk, whole and unchecked. Our line follows.
    void (*start)(const char* clientVersion, const BYTE* serverVersion, int serverLength);
    // A chunk, 1..kReceiveSize bytes; a later one where lines are exchanged.
    void (*take_chunk)(const BYTE* bytes, int count);
    // What was typed, pasted or answered. `escape` is Telnet's, see SessionSend.
    void (*send_data)(const BYTE* bytes, int length, int escape);
    void (*forget)();  // wipes and releases the protocol's section; also where there is nothing
};

// ---------------------------------------------------------------- Telnet

inline constexpr int kReceiveSize = 3000;  // most bytes of one receive
inline constexpr int kSubnegSize = 80;
inline constexpr int kTelnetOptions = 251;  // codes 0..250

struct TelnetState {
    DWORD iac_seen = 0;
    DWORD last_command = 0;  // 250..254, or 0 since the connect; never cleared after use
    DWORD in_subneg = 0;     // survives a disconnect
    BYTE subneg_buffer[kSubnegSize] = {};
    int subneg_count = 0;
    BYTE his_options[kTelnetOptions] = {};   // 1: the host was told DO
    BYTE my_options[kTelnetOptions] = {};    // 1: the client announced WILL
    DWORD escape_iac = 0;                    // typed data is sent with IAC doubled and IAC EOR
    BYTE display_buffer[kReceiveSize] = {};  // the displayable bytes of the chunk in hand
};

// Texts in the ANSI code page, for the life of a connection.
inline constexpr int kLoginTextSize = 41;  // 40 bytes and the terminator
struct AutoLogin {
    char search1[kLoginTextSize] = {};
    char search2[kLoginTextSize] = {};
    char response1[kLoginTextSize] = {};
    char response2[kLoginTextSize] = {};
    DWORD login_armed1 = 0;
    DWORD login_armed2 = 0;
};

// ---------------------------------------------------------------- SSH

// Most bytes that wait for their packet's end. A packet has fewer.
inline constexpr int kSshReassemblySize = 65535;

// Both protocols': what has come and is no whole packet yet. For the life of a session.
struct SshState {
    int recvFill = 0;  // bytes in recvBuf
    BYTE recvBuf[kSshReassemblySize] = {};
};

// ---------------------------------------------------------------- SSH-1

inline constexpr int kSsh1PacketSize = 65536;  // any packet that is sent or handled, length and all
inline constexpr int kSsh1MaxData = 65000;     // bytes of terminal input in one packet
inline constexpr int kSsh1CookieSize = 8;
inline constexpr int kSsh1KeySize = 32;
inline constexpr uint32_t kSsh1PtyRows = 24;
inline constexpr uint32_t kSsh1PtyColumns = 80;

// For the life of a session; outside one all is zero but the size of the terminal.
struct Ssh1State {
    int ssh1State = 0;                       // 0..5, see the table in ssh1_session.cpp
    const Ssh1Cipher* ssh1Cipher = nullptr;  // null: in the clear
    DWORD loginFailed = 0;                   // the server refused a password: ask in any case

    // From the server's public-key message.
    BYTE cookie[kSsh1CookieSize] = {};
    uint32_t supportedCiphers = 0;          // bit n: cipher number n
    uint32_t supportedAuthentications = 0;  // not looked at
    BYTE sessionId[kMd5Size] = {};
    BYTE sessionKey[kSsh1KeySize] = {};  // until the cipher has it

    // Asked of the server.
    uint32_t ptyRows = kSsh1PtyRows;
    uint32_t ptyColumns = kSsh1PtyColumns;

    int sendLength = 0;                    // type, data and checksum of the packet in sendBuf
    BYTE sendBuf[kSsh1PacketSize] = {};    // the packet being built, length field first
    BYTE packetBuf[kSsh1PacketSize] = {};  // the packet being handled, from its padding on
};

// ---------------------------------------------------------------- SSH-2

inline constexpr int kSsh2PacketSize = 65536;  // a packet of the reassembly, and a byte
inline constexpr int kSsh2SendSize = 16640;    // a packet of kSsh2MaxData bytes of data, its MAC
inline constexpr int kSsh2MaxData = 16384;     // bytes of data in one packet that goes out
inline constexpr int kSsh2MaxHeld = 1 << 20;   // bytes that may wait while keys are exchanged
inline constexpr int kSsh2KeyBlockSize = 2 * kSha1Size;

// For the life of a session, all zero outside one.
struct Ssh2State {
    // Packets. Encryption and MAC are both on exactly while there is a cipher.
    const SshCipher* cipher = nullptr;
    const SshMac* outMac = nullptr;
    const SshMac* inMac = nullptr;
    uint32_t sendSeq = 0;  // packets sent and received, modulo 2^32
    uint32_t recvSeq = 0;
    DWORD headDecrypted = 0;               // the first block of recvBuf stands decrypted in place
    ByteReader payload = {};               // of the packet being handled, its message number first
    ByteReader reader = {};                // in it, from behind the number on
    int payloadLength = 0;                 // of the packet in sendBuf, its message number counted
    BYTE packetBuf[kSsh2PacketSize] = {};  // the packet being handled, length field first
    BYTE sendBuf[kSsh2SendSize] = {};      // the packet being built

    // Key exchange.
    DWORD firstKex = 0;     // no keys have been derived yet
    DWORD kexDone = 0;      // our NEWKEYS has gone out and the server's has not come
    DWORD keysPending = 0;  // our KEXINIT has gone out and the new keys are not in use yet
    Sha1Context exchangeHashBase = {};  // of the two identification lines
    Sha1Context exchangeHash = {};
    BYTE H[kSha1Size] = {};
    BYTE sessionId[kSha1Size] = {};
    DhContext dh = {};  // x and e, and the group while an exchange is under way
    Bignum K = nullptr;
    DssKey* hostKey = nullptr;
    BYTE keyBlock[kSsh2KeyBlockSize] = {};

    // Channel.
    DWORD channelOpen = 0;
    DWORD ptyRequested = 0;  // the next CHANNEL_SUCCESS is the pty's
    uint32_t remoteChannel = 0;
    uint32_t remoteWindow = 0;  // as the server opened it; not looked at
    int localWindow = 0;        // bytes that the server may send before we adjust
    BYTE* heldData = nullptr;  // what was typed while keys were pending; null while heldLength is 0
    int heldLength = 0;
};

#endif
