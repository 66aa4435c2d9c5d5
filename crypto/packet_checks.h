// SPDX-License-Identifier: MIT
// The integrity checks at the end of a packet: the CRC-32 of SSH-1 and the HMAC-SHA1 of SSH-2.
#ifndef QUILL_CRYPTO_PACKET_CHECKS_H
#define QUILL_CRYPTO_PACKET_CHECKS_H

#include <cstdint>

#include "crypto/hashes.h"

// ---------------------------------------------------------------- CRC-32

// The CRC-32 of SSH-1 packets: reflected polynomial 0xEDB88320, initial value 0 and no final
// inversion. The common CRC-32 inverts at the start and at the end, so its results differ.

// Returns the CRC of `length` bytes; 0 for length 0.
uint32_t Crc32(const uint8_t* bytes, int length);

// ---------------------------------------------------------------- HMAC-SHA1

// HMAC-SHA1 (RFC 2104), and the "hmac-sha1" of SSH-2 (RFC 4253, 6.4).
//
// It differs from RFC 2104 in one way: a key longer than 64 bytes is not hashed but cut to its
// first 64 bytes. The keys of SSH-2 have 20 bytes.

inline constexpr int kMacKeySize = 20;  // bytes of an hmac-sha1 key

// The prepared key of one direction: each context has already hashed its padded key. A MAC works on
// copies of the contexts, so the key itself is not stored.
struct MacKeyPair {
    Sha1Context inner;
    Sha1Context outer;
};

// Starts both contexts and adds the padded key to each.
void HmacSha1Prepare(Sha1Context* inner, Sha1Context* outer, const uint8_t* key, int keyLength);
// Computes the MAC of `length` bytes.
void HmacSha1(const uint8_t* key, int keyLength, const uint8_t* bytes, int length,
              uint8_t mac[kSha1Size]);

// A MAC of SSH-2. Each direction has a key pair, which exists as long as the program runs. The
// fields have protocol names.
struct MacAlgorithm {
    char name[12];
    void (*setOutgoingKey)(const uint8_t* key);  // uses the first 20 bytes
    void (*setIncomingKey)(const uint8_t* key);
    // Computes the MAC of the sequence number (big-endian) and `length` bytes of the packet with
    // the outgoing key. Writes it after these bytes; the packet must have room for macLength more
    // bytes.
    void (*generate)(uint8_t* packet, int length, uint32_t sequenceNumber);
    // Returns 1 if the macLength bytes from packet[length] on are the MAC with the incoming key,
    // else 0.
    int (*verify)(const uint8_t* packet, int length, uint32_t sequenceNumber);
    const char* nameRef;
    int macLength;
};
using SshMac = MacAlgorithm;

extern const MacAlgorithm kHmacSha1;

// Wipes the keys of both directions. Called at the end of a session.
void WipeMacKeys();

#endif
