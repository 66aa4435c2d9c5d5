// SHA-512: buffering, padding and the portable compression function.
#include "crypto/hashes.h"

#include <bit>
#include <cstring>

#include "crypto/sha512_rounds.h"
#include "text/bytes.h"

// clang-format off
const uint64_t kSha512Constants[80] = {
    0x428a2f98d728ae22, 0x7137449123ef65cd, 0xb5c0fbcfec4d3b2f, 0xe9b5dba58189dbbc,
    0x3956c25bf348b538, 0x59f111f1b605d019, 0x923f82a4af194f9b, 0xab1c5ed5da6d8118,
    0xd807aa98a3030242, 0x12835b0145706fbe, 0x243185be4ee4b28c, 0x550c7dc3d5ffb4e2,
    0x72be5d74f27b896f, 0x80deb1fe3b1696b1, 0x9bdc06a725c71235, 0xc19bf174cf692694,
    0xe49b69c19ef14ad2, 0xefbe4786384f25e3, 0x0fc19dc68b8cd5b5, 0x240ca1cc77ac9c65,
    0x2de92c6f592b0275, 0x4a7484aa6ea6e483, 0x5cb0a9dcbd41fbd4, 0x76f988da831153b5,
    0x983e5152ee66dfab, 0xa831c66d2db43210, 0xb00327c898fb213f, 0xbf597fc7beef0ee4,
    0xc6e00bf33da88fc2, 0xd5a79147930aa725, 0x06ca6351e003826f, 0x142929670a0e6e70,
    0x27b70a8546d22ffc, 0x2e1b21385c26c926, 0x4d2c6dfc5ac42aed, 0x53380d139d95b3df,
    0x650a73548baf63de, 0x766a0abb3c77b2a8, 0x81c2c92e47edaee6, 0x92722c851482353b,
    0xa2bfe8a14cf10364, 0xa81a664bbc423001, 0xc24b8b70d0f89791, 0xc76c51a30654be30,
    0xd192e819d6ef5218, 0xd69906245565a910, 0xf40e35855771202a, 0x106aa07032bbd1b8,
    0x19a4c116b8d2d0c8, 0x1e376c085141ab53, 0x2748774cdf8eeb99, 0x34b0bcb5e19b48a8,
    0x391c0cb3c5c95a63, 0x4ed8aa4ae3418acb, 0x5b9cca4f7763e373, 0x682e6ff3d6b2b8a3,
    0x748f82ee5defb2fc, 0x78a5636f43172f60, 0x84c87814a1f0ab72, 0x8cc702081a6439ec,
    0x90befffa23631e28, 0xa4506cebde82bde9, 0xbef9a3f7b2c67915, 0xc67178f2e372532b,
    0xca273eceea26619c, 0xd186b8c721c0c207, 0xeada7dd6cde0eb1e, 0xf57d4f7fee6ed178,
    0x06f067aa72176fba, 0x0a637dc5a2c898a6, 0x113f9804bef90dae, 0x1b710b35131c471b,
    0x28db77f523047d84, 0x32caab7b40c72493, 0x3c9ebe0a15c9bebc, 0x431d67c49c100d4c,
    0x4cc5d4becb3e42b6, 0x597f299cfc657e2a, 0x5fcb6fab3ad6faec, 0x6c44198c4a475817,
};

static const uint64_t kInitial[8] = {
    0x6a09e667f3bcc908, 0xbb67ae8584caa73b, 0x3c6ef372fe94f82b, 0xa54ff53a5f1d36f1,
    0x510e527fade682d1, 0x9b05688c2b3e6c1f, 0x1f83d9abfb41bd6b, 0x5be0cd19137e2179,
};
// clang-format on

static Sha512Compressor BestCompressor() {
    Sha512Compressor wide = Sha512CompressWide();
    return wide != nullptr ? wide : Sha512CompressPortable;
}

Sha512Compressor sha512_compressor = BestCompressor();

static inline uint64_t SmallSigma0(uint64_t x) {
    return std::rotr(x, 1) ^ std::rotr(x, 8) ^ (x >> 7);
}

static inline uint64_t SmallSigma1(uint64_t x) {
    return std::rotr(x, 19) ^ std::rotr(x, 61) ^ (x >> 6);
}

// The next sixteen words of the schedule.
static inline void NextWords(uint64_t w[16]) {
    for (int i = 0; i < 16; i++) {
        w[i] += SmallSigma1(w[(i + 14) & 15]) + w[(i + 9) & 15] + SmallSigma0(w[(i + 1) & 15]);
    }
}

// w and sums are working space, kept by the caller so that it is wiped but once.
static void CompressBlock(uint64_t state[8], const uint8_t* block, uint64_t w[16],
                          uint64_t sums[16]) {
    for (int t = 0; t < 16; t++) w[t] = LoadBig<uint64_t>(block + 8 * t);
    SHA512_LOAD_STATE;
    for (int t = 0; t < 80; t += 16) {
        if (t > 0) NextWords(w);
        for (int i = 0; i < 16; i++) sums[i] = w[i] + kSha512Constants[t + i];
        SHA512_EIGHT_ROUNDS(sums, SHA512_NOTHING);
        SHA512_EIGHT_ROUNDS((sums + 8), SHA512_NOTHING);
    }
    SHA512_ADD_STATE;
}

void Sha512CompressPortable(uint64_t state[8], const uint8_t* blocks, int count) {
    uint64_t w[16], sums[16];
    for (; count > 0; count--, blocks += 128) CompressBlock(state, blocks, w, sums);
    Wipe(w, sizeof(w));
    Wipe(sums, sizeof(sums));
}

void Sha512Init(Sha512Context* context) {
    memcpy(context->state, kInitial, sizeof(kInitial));
    context->bytesHigh = 0;
    context->bytesLow = 0;
}

void Sha512Update(Sha512Context* context, const uint8_t* bytes, int length) {
    if (length <= 0) return;
    size_t left = static_cast<size_t>(length);
    size_t used = static_cast<size_t>(context->bytesLow % 128);
    context->bytesLow += left;
    if (context->bytesLow < left) context->bytesHigh++;
    if (used != 0) {
        size_t taken = left < 128 - used ? left : 128 - used;
        memcpy(context->block + used, bytes, taken);
        if (used + taken < 128) return;
        sha512_compressor(context->state, context->block, 1);
        bytes += taken;
        left -= taken;
    }
    if (left >= 128) sha512_compressor(context->state, bytes, static_cast<int>(left / 128));
    memcpy(context->block, bytes + (left - left % 128), left % 128);
}

void Sha512Final(Sha512Context* context, uint8_t digest[kSha512Size]) {
    static const uint8_t kPadding[128] = {0x80};
    uint8_t bits[16];
    StoreBig<uint64_t>(bits, context->bytesHigh << 3 | context->bytesLow >> 61);
    StoreBig<uint64_t>(bits + 8, context->bytesLow << 3);
    int used = static_cast<int>(context->bytesLow % 128);
    Sha512Update(context, kPadding, used < 112 ? 112 - used : 240 - used);
    Sha512Update(context, bits, sizeof(bits));
    for (int i = 0; i < 8; i++) StoreBig<uint64_t>(digest + 8 * i, context->state[i]);
    Wipe(context, sizeof(*context));
}

void Sha512(const uint8_t* bytes, int length, uint8_t digest[kSha512Size]) {
    Sha512Context context;
    Sha512Init(&context);
    Sha512Update(&context, bytes, length);
    Sha512Final(&context, digest);
}
