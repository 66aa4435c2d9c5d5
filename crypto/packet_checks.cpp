// SPDX-License-Identifier: MIT
// CRC-32, computed byte by byte with a table; HMAC-SHA1, in one call and as the MAC of SSH-2.
#include "crypto/packet_checks.h"

#include <cstring>

#include "text/bytes.h"

struct CrcTable {
    uint32_t entry[256];
};

constexpr CrcTable MakeCrcTable() {
    CrcTable table = {};
    for (uint32_t n = 0; n < 256; ++n) {
        uint32_t value = n;
        for (int step = 0; step < 8; ++step) {
            value = (value & 1) ? (value >> 1) ^ 0xEDB88320u : value >> 1;
        }
        table.entry[n] = value;
    }
    return table;
}

constexpr CrcTable kCrcTable = MakeCrcTable();
static_assert(kCrcTable.entry[1] == 0x77073096u && kCrcTable.entry[255] == 0x2D02EF8Du);

uint32_t Crc32(const uint8_t* bytes, int length) {
    uint32_t crc = 0;
    for (int i = 0; i < length; ++i) {
        crc = kCrcTable.entry[(crc ^ bytes[i]) & 0xFF] ^ (crc >> 8);
    }
    return crc;
}

// ---------------------------------------------------------------- HMAC-SHA1

constexpr int kPadSize = 64;
constexpr uint8_t kInnerPad = 0x36;
constexpr uint8_t kOuterPad = 0x5C;

static MacKeyPair outgoing;
static MacKeyPair incoming;

static void PreparePad(Sha1Context* context, uint8_t fill, const uint8_t* key, int keyLength) {
    uint8_t pad[kPadSize];
    memset(pad, fill, sizeof(pad));
    for (int i = 0; i < keyLength && i < kPadSize; ++i) pad[i] ^= key[i];
    Sha1Init(context);
    Sha1Update(context, pad, kPadSize);
    Wipe(pad, sizeof(pad));
}

void HmacSha1Prepare(Sha1Context* inner, Sha1Context* outer, const uint8_t* key, int keyLength) {
    PreparePad(inner, kInnerPad, key, keyLength);
    PreparePad(outer, kOuterPad, key, keyLength);
}

// Finishes both hashes. The inner one must already have its message.
static void Finish(Sha1Context* inner, Sha1Context* outer, uint8_t mac[kSha1Size]) {
    uint8_t digest[kSha1Size];
    Sha1Final(inner, digest);
    Sha1Update(outer, digest, kSha1Size);
    Sha1Final(outer, mac);
    Wipe(digest, sizeof(digest));
}

void HmacSha1(const uint8_t* key, int keyLength, const uint8_t* bytes, int length,
              uint8_t mac[kSha1Size]) {
    MacKeyPair pair;
    HmacSha1Prepare(&pair.inner, &pair.outer, key, keyLength);
    Sha1Update(&pair.inner, bytes, length);
    Finish(&pair.inner, &pair.outer, mac);
}

static void PacketMac(const MacKeyPair* keys, const uint8_t* packet, int length,
                      uint32_t sequenceNumber, uint8_t mac[kSha1Size]) {
    MacKeyPair pair = *keys;
    uint8_t sequence[4];
    StoreBig<uint32_t>(sequence, sequenceNumber);
    Sha1Update(&pair.inner, sequence, sizeof(sequence));
    Sha1Update(&pair.inner, packet, length);
    Finish(&pair.inner, &pair.outer, mac);
}

static void SetOutgoingKey(const uint8_t* key) {
    HmacSha1Prepare(&outgoing.inner, &outgoing.outer, key, kMacKeySize);
}

static void SetIncomingKey(const uint8_t* key) {
    HmacSha1Prepare(&incoming.inner, &incoming.outer, key, kMacKeySize);
}

static void Generate(uint8_t* packet, int length, uint32_t sequenceNumber) {
    PacketMac(&outgoing, packet, length, sequenceNumber, packet + length);
}

// The comparison takes the same time wherever a wrong MAC differs.
static int Verify(const uint8_t* packet, int length, uint32_t sequenceNumber) {
    uint8_t mac[kSha1Size];
    PacketMac(&incoming, packet, length, sequenceNumber, mac);
    int difference = 0;
    for (int i = 0; i < kSha1Size; ++i) difference |= mac[i] ^ packet[length + i];
    Wipe(mac, sizeof(mac));  // after a mismatch it would help a forger
    return difference == 0;
}

const MacAlgorithm kHmacSha1 = {
    .name = "hmac-sha1",
    .setOutgoingKey = SetOutgoingKey,
    .setIncomingKey = SetIncomingKey,
    .generate = Generate,
    .verify = Verify,
    .nameRef = kHmacSha1.name,
    .macLength = kSha1Size,
};

void WipeMacKeys() {
    Wipe(&outgoing, sizeof(outgoing));
    Wipe(&incoming, sizeof(incoming));
}
