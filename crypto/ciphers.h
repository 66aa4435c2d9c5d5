// SPDX-License-Identifier: MIT
// The ciphers of both SSH versions, as records of operations that the protocols call.
//
// There is one set of keys and chaining values for each direction (outgoing, incoming). All ciphers
// share it, and it exists as long as the program runs, so set a cipher's keys before you use the
// cipher. Each call continues with the chaining value of the call before. Buffers are changed in
// place, in whole blocks.
#ifndef QUILL_CRYPTO_CIPHERS_H
#define QUILL_CRYPTO_CIPHERS_H

#include <cstdint>

#include "crypto/block_ciphers.h"

// A cipher of SSH-2. Set the keys before the IVs, since setting a "3des-cbc" key clears the IV. The
// order is setOutgoingKey, setIncomingKey, setOutgoingIv, setIncomingIv. The fields have protocol
// names.
struct CipherAlgorithm {
    char name[16];
    void (*setOutgoingIv)(const uint8_t iv[8]);
    void (*setOutgoingKey)(const uint8_t* key);  // uses the first bytes of key, as many as it needs
    void (*setIncomingIv)(const uint8_t iv[8]);
    void (*setIncomingKey)(const uint8_t* key);
    void (*encrypt)(uint8_t* buffer, int length);  // outgoing
    void (*decrypt)(uint8_t* buffer, int length);  // incoming
    const char* nameRef;
    int blockSize;  // bytes
    int keyBits;
};
using SshCipher = CipherAlgorithm;

extern const CipherAlgorithm kTripleDesCbc;  // "3des-cbc", 24 bytes of key
extern const CipherAlgorithm kBlowfishCbc;   // "blowfish-cbc", 16 bytes of key

// A cipher of SSH-1. setKey uses the first bytes of the 32-byte session key and sets all chaining
// values of both directions to zero. The fields have protocol names.
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

// Wipes the keys and chaining values of both directions. Called at the end of a session.
void WipeCipherKeys();

#endif
