// SPDX-License-Identifier: MIT
// The ciphers of both SSH versions, behind the records through which the transports reach them.
//
// One set of keys and chaining values for each direction (outgoing, incoming) lives for the
// program's run, shared by all ciphers: whoever takes up a cipher sets its keys first. Chaining
// values run on from call to call. Buffers are changed in place, whole blocks of them.
#ifndef QUILL_CRYPTO_CIPHERS_H
#define QUILL_CRYPTO_CIPHERS_H

#include <cstdint>

#include "crypto/block_ciphers.h"

// A cipher of SSH-2. Keys must be set before IVs: a key of "3des-cbc" clears them. The order is
// setOutgoingKey, setIncomingKey, setOutgoingIv, setIncomingIv.
struct CipherAlgorithm {
    char name[16];
    void (*setOutgoingIv)(const uint8_t iv[8]);
    void (*setOutgoingKey)(const uint8_t* key);  // the first bytes of key, as many as it takes
    void (*setIncomingIv)(const uint8_t iv[8]);
    void (*setIncomingKey)(const uint8_t* key);
    void (*encrypt)(uint8_t* buffer, int length);  // outgoing
    void (*decrypt)(uint8_t* buffer, int length);  // incoming
    const char* nameRef;
    int blockSize;  // bytes
    int keyBits;
};
typedef CipherAlgorithm SshCipher;

extern const CipherAlgorithm kTripleDesCbc;  // "3des-cbc", 24 bytes of key
extern const CipherAlgorithm kBlowfishCbc;   // "blowfish-cbc", 16 bytes of key

// A cipher of SSH-1. setKey takes the first bytes of the 32-byte session key and starts both
// directions with all chaining values zero.
struct Ssh1Cipher {
    void (*setKey)(const uint8_t* sessionKey);
    void (*encrypt)(uint8_t* buffer, int length);  // outgoing
    void (*decrypt)(uint8_t* buffer, int length);  // incoming
    int blockSize;                                 // bytes
};

extern const Ssh1Cipher kSsh1Blowfish;   // 32 bytes of key, little-endian blocks
extern const Ssh1Cipher kSsh1TripleDes;  // 24 bytes of key, three CBC passes
extern const Ssh1Cipher kSsh1Des;        // 8 bytes of key

inline constexpr char kSsh1BlowfishName[] = "Blowfish";
inline constexpr char kSsh1TripleDesName[] = "3DES encryption";
inline constexpr char kSsh1DesName[] = "DES encryption";

// Forgets the keys and chaining values of both directions; for the end of a session.
void WipeCipherKeys();

#endif
