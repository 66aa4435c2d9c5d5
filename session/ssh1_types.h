// SSH-1's section of the session record.
#ifndef QUILL_SESSION_SSH1_TYPES_H
#define QUILL_SESSION_SSH1_TYPES_H

#include "crypto/ciphers.h"
#include "crypto/hashes.h"
#include "windows_ce.h"

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

#endif
