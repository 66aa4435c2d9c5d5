// SPDX-License-Identifier: MIT
// RSA for SSH-1: reading public keys and encrypting with them.
#include "crypto/public_key.h"

#include <cstring>

#include "crypto/random.h"
#include "text/bytes.h"

// Takes one number in SSH-1 form from the front of *bytes. Returns null if it is incomplete.
static Bignum TakeNumber(const uint8_t** bytes, int* length) {
    Bignum number = BignumFromSsh1Bytes(*bytes, *length);
    if (number == nullptr) return nullptr;
    int size = 2 + (LoadBig<uint16_t>(*bytes) + 7) / 8;
    *bytes += size;
    *length -= size;
    return number;
}

static bool Usable(const RsaKey* key) {
    if (key->modulus == nullptr || key->exponent == nullptr) return false;
    int modulus_bits = BignumBitLength(key->modulus);
    int exponent_bits = BignumBitLength(key->exponent);
    if (modulus_bits == 0 || exponent_bits == 0) return false;
    if (modulus_bits > kRsaMaxModulusBits) return false;
    return exponent_bits <=
           (modulus_bits > kRsaLongModulusBits ? kRsaMaxShortExponentBits : kRsaMaxExponentBits);
}

int RsaParseKey(const uint8_t* bytes, int length, RsaKey* key, const uint8_t** end) {
    *key = {};
    if (end != nullptr) *end = bytes;
    if (length < 4) return 0;
    const uint8_t* at = bytes + 4;
    int left = length - 4;
    key->bits = LoadBig<uint32_t>(bytes);
    key->exponent = TakeNumber(&at, &left);
    if (key->exponent != nullptr) key->modulus = TakeNumber(&at, &left);
    if (!Usable(key)) {
        RsaReleaseKey(key);
        return 0;
    }
    key->bytes = (BignumBitLength(key->modulus) + 7) / 8;
    if (end != nullptr) *end = at;
    return static_cast<int>(at - bytes);
}

void RsaReleaseKey(RsaKey* key) {
    BignumFree(key->modulus);
    BignumFree(key->exponent);
    *key = {};
}

static uint8_t NonZeroRandomByte() {
    uint8_t byte = RandomByte();
    while (byte == 0) byte = RandomByte();
    return byte;
}

bool RsaEncrypt(uint8_t* buffer, int length, const RsaKey* key) {
    if (length < 0 || length > key->bytes - 3) return false;
    int separator = key->bytes - length - 1;
    memmove(buffer + separator + 1, buffer, static_cast<size_t>(length));
    buffer[0] = 0x00;
    buffer[1] = 0x02;
    for (int i = 2; i < separator; ++i) buffer[i] = NonZeroRandomByte();
    buffer[separator] = 0x00;
    Bignum block = BignumFromBytes(buffer, key->bytes);
    Bignum result = BignumModPow(block, key->exponent, key->modulus);
    BignumToBytes(buffer, key->bytes, result);
    BignumFree(block);
    BignumFree(result);
    return true;
}
