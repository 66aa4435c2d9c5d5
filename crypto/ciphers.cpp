// SPDX-License-Identifier: MIT
// The cipher records of SSH-2 and SSH-1. They share one set of contexts for each direction.
#include "crypto/ciphers.h"

#include <cstring>

#include "crypto/block_ciphers.h"
#include "text/bytes.h"

// Single DES uses the first of the three.
struct DirectionKeys {
    DesContext des[3];
    BlowfishContext blowfish;
};

static DirectionKeys outgoing;
static DirectionKeys incoming;

constexpr int kSsh2BlowfishKey = 16;  // bytes
constexpr int kSsh1BlowfishKey = 32;

void WipeCipherKeys() {
    Wipe(&outgoing, sizeof(outgoing));
    Wipe(&incoming, sizeof(incoming));
}

static void LoadIv(uint32_t words[2], const uint8_t iv[8]) {
    words[0] = LoadBig<uint32_t>(iv);
    words[1] = LoadBig<uint32_t>(iv + 4);
}

static void SetDesKeys(DesContext* contexts, int count, const uint8_t* key) {
    for (int i = 0; i < count; ++i) {
        DesSetKey(LoadBig<uint32_t>(key + 8 * i), LoadBig<uint32_t>(key + 8 * i + 4), &contexts[i]);
    }
}

// ---------------------------------------------------------------- SSH-2

static void TripleDesOutgoingIv(const uint8_t iv[8]) { LoadIv(outgoing.des[0].encryptIv, iv); }

static void TripleDesOutgoingKey(const uint8_t* key) { SetDesKeys(outgoing.des, 3, key); }

static void TripleDesIncomingIv(const uint8_t iv[8]) { LoadIv(incoming.des[0].decryptIv, iv); }

static void TripleDesIncomingKey(const uint8_t* key) { SetDesKeys(incoming.des, 3, key); }

static void TripleDesEncrypt(uint8_t* buffer, int length) {
    TripleDesCbcEncrypt(buffer, buffer, length, outgoing.des);
}

static void TripleDesDecrypt(uint8_t* buffer, int length) {
    TripleDesCbcDecrypt(buffer, buffer, length, incoming.des);
}

static void BlowfishOutgoingIv(const uint8_t iv[8]) { LoadIv(outgoing.blowfish.iv, iv); }

static void BlowfishOutgoingKey(const uint8_t* key) {
    BlowfishSetKey(&outgoing.blowfish, key, kSsh2BlowfishKey);
}

static void BlowfishIncomingIv(const uint8_t iv[8]) { LoadIv(incoming.blowfish.iv, iv); }

static void BlowfishIncomingKey(const uint8_t* key) {
    BlowfishSetKey(&incoming.blowfish, key, kSsh2BlowfishKey);
}

static void BlowfishEncrypt(uint8_t* buffer, int length) {
    BlowfishCbcEncrypt(buffer, buffer, length, &outgoing.blowfish);
}

static void BlowfishDecrypt(uint8_t* buffer, int length) {
    BlowfishCbcDecrypt(buffer, buffer, length, &incoming.blowfish);
}

const CipherAlgorithm kTripleDesCbc = {
    .name = "3des-cbc",
    .setOutgoingIv = TripleDesOutgoingIv,
    .setOutgoingKey = TripleDesOutgoingKey,
    .setIncomingIv = TripleDesIncomingIv,
    .setIncomingKey = TripleDesIncomingKey,
    .encrypt = TripleDesEncrypt,
    .decrypt = TripleDesDecrypt,
    .nameRef = kTripleDesCbc.name,
    .blockSize = kCipherBlockSize,
    .keyBits = 168,
};

const CipherAlgorithm kBlowfishCbc = {
    .name = "blowfish-cbc",
    .setOutgoingIv = BlowfishOutgoingIv,
    .setOutgoingKey = BlowfishOutgoingKey,
    .setIncomingIv = BlowfishIncomingIv,
    .setIncomingKey = BlowfishIncomingKey,
    .encrypt = BlowfishEncrypt,
    .decrypt = BlowfishDecrypt,
    .nameRef = kBlowfishCbc.name,
    .blockSize = kCipherBlockSize,
    .keyBits = 128,
};

// ---------------------------------------------------------------- SSH-1

static void Ssh1BlowfishSetKey(const uint8_t* sessionKey) {
    BlowfishSetKey(&outgoing.blowfish, sessionKey, kSsh1BlowfishKey);
    memset(outgoing.blowfish.iv, 0, sizeof(outgoing.blowfish.iv));
    incoming.blowfish = outgoing.blowfish;
}

static void Ssh1BlowfishEncrypt(uint8_t* buffer, int length) {
    BlowfishLittleCbcEncrypt(buffer, buffer, length, &outgoing.blowfish);
}

static void Ssh1BlowfishDecrypt(uint8_t* buffer, int length) {
    BlowfishLittleCbcDecrypt(buffer, buffer, length, &incoming.blowfish);
}

static void Ssh1TripleDesSetKey(const uint8_t* sessionKey) {
    SetDesKeys(outgoing.des, 3, sessionKey);
    SetDesKeys(incoming.des, 3, sessionKey);
}

static void Ssh1TripleDesEncrypt(uint8_t* buffer, int length) {
    TripleDesPassesEncrypt(buffer, buffer, length, outgoing.des);
}

static void Ssh1TripleDesDecrypt(uint8_t* buffer, int length) {
    TripleDesPassesDecrypt(buffer, buffer, length, incoming.des);
}

static void Ssh1DesSetKey(const uint8_t* sessionKey) {
    SetDesKeys(outgoing.des, 1, sessionKey);
    SetDesKeys(incoming.des, 1, sessionKey);
}

// Both directions use the outgoing context, which has a chaining value for each of them.
static void Ssh1DesEncrypt(uint8_t* buffer, int length) {
    DesCbcEncrypt(buffer, buffer, length, &outgoing.des[0]);
}

static void Ssh1DesDecrypt(uint8_t* buffer, int length) {
    DesCbcDecrypt(buffer, buffer, length, &outgoing.des[0]);
}

const Ssh1Cipher kSsh1Blowfish = {
    .setKey = Ssh1BlowfishSetKey,
    .encrypt = Ssh1BlowfishEncrypt,
    .decrypt = Ssh1BlowfishDecrypt,
    .blockSize = kCipherBlockSize,
};

const Ssh1Cipher kSsh1TripleDes = {
    .setKey = Ssh1TripleDesSetKey,
    .encrypt = Ssh1TripleDesEncrypt,
    .decrypt = Ssh1TripleDesDecrypt,
    .blockSize = kCipherBlockSize,
};

const Ssh1Cipher kSsh1Des = {
    .setKey = Ssh1DesSetKey,
    .encrypt = Ssh1DesEncrypt,
    .decrypt = Ssh1DesDecrypt,
    .blockSize = kCipherBlockSize,
};
