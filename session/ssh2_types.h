// SSH-2's section of the session record.
#ifndef QUILL_SESSION_SSH2_TYPES_H
#define QUILL_SESSION_SSH2_TYPES_H

#include "crypto/ciphers.h"
#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "crypto/public_key.h"
#include "text/bytes.h"
#include "windows_ce.h"

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
