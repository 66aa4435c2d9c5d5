// SPDX-License-Identifier: MIT
// What ends a packet and proves it: the CRC-32 of SSH-1 and the HMAC-SHA1 of SSH-2.
#ifndef QUILL_CRYPTO_PACKET_CHECKS_H
#define QUILL_CRYPTO_PACKET_CHECKS_H

#include <cstdint>

#include "crypto/hashes.h"

// ---------------------------------------------------------------- CRC-32

// As SSH-1 packets carry it: reflected polynomial 0xEDB88320, initial value 0 and no final
// inversion (the common CRC-32 has both, so its results differ).

// The CRC of `length` bytes; 0 for length 0.
uint32_t Crc32(const uint8_t* bytes, int length);

// ---------------------------------------------------------------- HMAC-SHA1

// RFC 2104, and the "hmac-sha1" of SSH-2 (RFC 4253, 6.4).
//
// One thing differs from RFC 2104: a key longer than 64 bytes is cut to its first 64 bytes and not
// hashed first. The keys of SSH-2 have 20 bytes.

inline constexpr int kMacKeySize = 20;  // bytes of key that hmac-sha1 takes

// One direction's prepared key: both contexts have been fed their padded key. A MAC works on
// copies of them, so the key itself is not kept.
struct MacKeyPair {
    Sha1Context inner;
    Sha1Context outer;
};

// Starts both contexts and feeds each its padded key.
void HmacSha1Prepare(Sha1Context* inner, Sha1Context* outer, const uint8_t* key, int keyLength);
// The MAC of `length` bytes.
void HmacSha1(const uint8_t* key, int keyLength, const uint8_t* bytes, int length,
              uint8_t mac[kSha1Size]);

// A MAC of SSH-2. The two directions have a key pair each, which lives for the program's run.
struct MacAlgorithm {
    char name[12];
    void (*setOutgoingKey)(const uint8_t* key);  // from the first 20 bytes of key
    void (*setIncomingKey)(const uint8_t* key);
    // Writes the MAC of the sequence number (big-endian) and `length` bytes of packet right behind
    // those bytes, with the outgoing key; the packet has room for macLength more.
    void (*generate)(uint8_t* packet, int length, uint32_t sequenceNumber);
    // 1 when the macLength bytes behind packet[length] are the MAC with the incoming key, else 0.
    int (*verify)(const uint8_t* packet, int length, uint32_t sequenceNumber);
    const char* nameRef;
    int macLength;
};
typedef MacAlgorithm SshMac;

extern const MacAlgorithm kHmacSha1;

// Forgets the keys of both directions; for the end of a session.
void WipeMacKeys();

#endif
