// SPDX-License-Identifier: MIT
// The protocols Telnet, SSH-1 and SSH-2: the operations that a session calls, and the protocols'
// sections of the session record. Its largest arrays have no initialiser: static storage is zero
// already, and writing zeros would only take memory at the start.
#ifndef QUILL_SESSION_PROTOCOL_TYPES_H
#define QUILL_SESSION_PROTOCOL_TYPES_H

#include "crypto/ciphers.h"
#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "crypto/public_key.h"
#include "text/bytes.h"
#include "windows_ce.h"

// A protocol that a session can speak, as a record of operations. A table in protocol/protocols.cpp
// holds the three of them.

struct Protocol {
    // Our identification line, with its line end. Null if the protocol exchanges no such lines;
    // `start` is not called then.
    const char* identification;
    // Called when the server's identification line has arrived. serverVersion is the whole first
    // chunk, unchecked. Our line is sent afterwards.
    void (*start)(const char* clientVersion, const BYTE* serverVersion, int serverLength);
    // Takes a received chunk of 1..kReceiveSize bytes. If the protocol exchanges identification
    // lines, it gets only the later chunks.
    void (*take_chunk)(const BYTE* bytes, int count);
    // Sends what SessionSend gets: keys, pastes, replies, responses of the automatic login, and
    // Telnet's own commands. Only Telnet uses `escape`, see SessionSend.
    void (*send_data)(const BYTE* bytes, int length, int escape);
    void (*forget)();  // wipes and releases the protocol's section, which may be empty already;
                       // Telnet's does nothing
};

// ---------------------------------------------------------------- Telnet

inline constexpr int kReceiveSize = 3000;  // the most bytes that one receive returns
inline constexpr int kSubnegSize = 80;
inline constexpr int kTelnetOptions = 251;  // codes 0..250

struct TelnetState {
    DWORD iac_seen = 0;
    DWORD last_command = 0;  // 250..254; 0 at each connect; stays set after use
    DWORD in_subneg = 0;     // 1: inside a subnegotiation; not even a new session clears it
    BYTE subneg_buffer[kSubnegSize] = {};
    int subneg_count = 0;
    BYTE his_options[kTelnetOptions] = {};  // 1: we sent DO for this option
    BYTE my_options[kTelnetOptions] = {};   // 1: we sent WILL for this option; 1 for echo at first
    DWORD escape_iac = 0;  // 1: typed data gets IAC doubled and IAC EOR; always 0 so far
    BYTE display_buffer[kReceiveSize] = {};  // the displayable bytes of the current chunk
};

// The automatic login's texts, in the ANSI code page. They are set at each connect.
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

// The most bytes that can wait for the rest of their packet. A packet without its MAC has
// fewer bytes than this.
inline constexpr int kSshReassemblySize = 65535;

// Used by SSH-1 and SSH-2: received bytes that are not a whole packet yet. It lasts as long as the
// session. The fields have protocol names.
struct SshState {
    int recvFill = 0;  // bytes in recvBuf
    BYTE recvBuf[kSshReassemblySize];
};

// ---------------------------------------------------------------- SSH-1

inline constexpr int kSsh1PacketSize = 65536;  // room for any packet, length field included
inline constexpr int kSsh1MaxData = 65000;     // bytes of terminal input in one packet
inline constexpr int kSsh1CookieSize = 8;
inline constexpr int kSsh1KeySize = 32;
inline constexpr uint32_t kSsh1PtyRows = 24;
inline constexpr uint32_t kSsh1PtyColumns = 80;

// The state of an SSH-1 session. Outside a session everything is zero except the terminal's size.
// The fields have protocol names.
struct Ssh1State {
    int ssh1State = 0;                       // 0..5, see `State` in ssh1_session.cpp
    const Ssh1Cipher* ssh1Cipher = nullptr;  // null: packets are not encrypted
    DWORD loginFailed = 0;  // 1: the server refused a password; ask the user even if one is stored

    // From the server's public-key message.
    BYTE cookie[kSsh1CookieSize] = {};
    uint32_t supportedCiphers = 0;          // bit n: cipher number n
    uint32_t supportedAuthentications = 0;  // not used
    BYTE sessionId[kMd5Size] = {};
    BYTE sessionKey[kSsh1KeySize] = {};  // wiped once the cipher is set up

    // The terminal size that we request from the server.
    uint32_t ptyRows = kSsh1PtyRows;
    uint32_t ptyColumns = kSsh1PtyColumns;

    int sendLength = 0;               // type, data and checksum of the packet in sendBuf
    BYTE sendBuf[kSsh1PacketSize];    // the packet being built, length field first
    BYTE packetBuf[kSsh1PacketSize];  // the packet being handled, from its padding on
};

// ---------------------------------------------------------------- SSH-2

inline constexpr int kSsh2PacketSize = 65536;  // kSshReassemblySize and one byte
inline constexpr int kSsh2SendSize = 16640;    // room for a packet with kSsh2MaxData bytes of data
inline constexpr int kSsh2MaxData = 16384;     // bytes of data in one outgoing packet
inline constexpr int kSsh2MaxHeld = 1 << 20;   // bytes that can wait during a key exchange
inline constexpr int kSsh2KeyBlockSize = 2 * kSha1Size;

// The state of an SSH-2 session. Outside a session everything is zero. The fields have protocol
// names.
struct Ssh2State {
    // Packets. While `cipher` is set, packets are encrypted and have a MAC.
    const SshCipher* cipher = nullptr;
    const SshMac* outMac = nullptr;
    const SshMac* inMac = nullptr;
    uint32_t sendSeq = 0;  // packets built and packets accepted, modulo 2^32
    uint32_t recvSeq = 0;
    DWORD headDecrypted = 0;          // 1: the first block of recvBuf is already decrypted
    ByteReader payload = {};          // of the packet being handled, from its message number
    ByteReader reader = {};           // reads that payload's fields after the message number
    int payloadLength = 0;            // of the packet in sendBuf, message number included
    BYTE packetBuf[kSsh2PacketSize];  // the packet being handled, length field first
    BYTE sendBuf[kSsh2SendSize];      // the packet being built

    // Key exchange.
    DWORD firstKex = 0;                 // 1: no keys have been derived yet
    DWORD kexDone = 0;                  // 1: we sent NEWKEYS and wait for the server's
    DWORD keysPending = 0;              // 1: we sent KEXINIT and the new keys are not in use yet
    Sha1Context exchangeHashBase = {};  // over the two identification lines
    Sha1Context exchangeHash = {};
    BYTE H[kSha1Size] = {};
    BYTE sessionId[kSha1Size] = {};
    DhContext dh = {};  // x and e, and the group during an exchange
    Bignum K = nullptr;
    DssKey* hostKey = nullptr;
    BYTE keyBlock[kSsh2KeyBlockSize] = {};

    // Channel.
    DWORD channelOpen = 0;
    DWORD ptyRequested = 0;  // 1: the next CHANNEL_SUCCESS answers the pty request
    uint32_t remoteChannel = 0;
    uint32_t remoteWindow = 0;  // the server's initial window; not used
    int localWindow = 0;        // bytes that the server may still send
    BYTE* heldData = nullptr;   // data that waits while keysPending; null while heldLength is 0
    int heldLength = 0;
};

#endif
