// SPDX-License-Identifier: MIT
// DES and triple DES.
//
// Both halves of a block stay expanded (DesExpand) during all rounds. The tables hold the S-boxes'
// results in expanded form too, so a round is eight table look-ups, one for each byte, and their
// XOR.
#include "crypto/block_ciphers.h"

#include <array>
#include <cstddef>
#include <cstdint>

#include "text/bytes.h"

// The permutations and S-boxes as FIPS 46-3 prints them, and the tables computed from them at
// compile time.

// Bit numbers count from 1, which is the most significant bit.
// clang-format off
inline constexpr uint8_t kDesPermutedChoice1[56] = {
    57, 49, 41, 33, 25, 17,  9,  1, 58, 50, 42, 34, 26, 18,
    10,  2, 59, 51, 43, 35, 27, 19, 11,  3, 60, 52, 44, 36,
    63, 55, 47, 39, 31, 23, 15,  7, 62, 54, 46, 38, 30, 22,
    14,  6, 61, 53, 45, 37, 29, 21, 13,  5, 28, 20, 12,  4,
};

inline constexpr uint8_t kDesPermutedChoice2[48] = {
    14, 17, 11, 24,  1,  5,  3, 28, 15,  6, 21, 10,
    23, 19, 12,  4, 26,  8, 16,  7, 27, 20, 13,  2,
    41, 52, 31, 37, 47, 55, 30, 40, 51, 45, 33, 48,
    44, 49, 39, 56, 34, 53, 46, 42, 50, 36, 29, 32,
};

inline constexpr uint8_t kDesKeyShifts[16] = {1, 1, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2, 2, 1};

inline constexpr uint8_t kDesPermutation[32] = {
    16,  7, 20, 21, 29, 12, 28, 17,  1, 15, 23, 26,  5, 18, 31, 10,
     2,  8, 24, 14, 32, 27,  3,  9, 19, 13, 30,  6, 22, 11,  4, 25,
};

// Indexed by box, row, column.
inline constexpr uint8_t kDesBoxes[8][4][16] = {
    {{14,  4, 13,  1,  2, 15, 11,  8,  3, 10,  6, 12,  5,  9,  0,  7},
     { 0, 15,  7,  4, 14,  2, 13,  1, 10,  6, 12, 11,  9,  5,  3,  8},
     { 4,  1, 14,  8, 13,  6,  2, 11, 15, 12,  9,  7,  3, 10,  5,  0},
     {15, 12,  8,  2,  4,  9,  1,  7,  5, 11,  3, 14, 10,  0,  6, 13}},
    {{15,  1,  8, 14,  6, 11,  3,  4,  9,  7,  2, 13, 12,  0,  5, 10},
     { 3, 13,  4,  7, 15,  2,  8, 14, 12,  0,  1, 10,  6,  9, 11,  5},
     { 0, 14,  7, 11, 10,  4, 13,  1,  5,  8, 12,  6,  9,  3,  2, 15},
     {13,  8, 10,  1,  3, 15,  4,  2, 11,  6,  7, 12,  0,  5, 14,  9}},
    {{10,  0,  9, 14,  6,  3, 15,  5,  1, 13, 12,  7, 11,  4,  2,  8},
     {13,  7,  0,  9,  3,  4,  6, 10,  2,  8,  5, 14, 12, 11, 15,  1},
     {13,  6,  4,  9,  8, 15,  3,  0, 11,  1,  2, 12,  5, 10, 14,  7},
     { 1, 10, 13,  0,  6,  9,  8,  7,  4, 15, 14,  3, 11,  5,  2, 12}},
    {{ 7, 13, 14,  3,  0,  6,  9, 10,  1,  2,  8,  5, 11, 12,  4, 15},
     {13,  8, 11,  5,  6, 15,  0,  3,  4,  7,  2, 12,  1, 10, 14,  9},
     {10,  6,  9,  0, 12, 11,  7, 13, 15,  1,  3, 14,  5,  2,  8,  4},
     { 3, 15,  0,  6, 10,  1, 13,  8,  9,  4,  5, 11, 12,  7,  2, 14}},
    {{ 2, 12,  4,  1,  7, 10, 11,  6,  8,  5,  3, 15, 13,  0, 14,  9},
     {14, 11,  2, 12,  4,  7, 13,  1,  5,  0, 15, 10,  3,  9,  8,  6},
     { 4,  2,  1, 11, 10, 13,  7,  8, 15,  9, 12,  5,  6,  3,  0, 14},
     {11,  8, 12,  7,  1, 14,  2, 13,  6, 15,  0,  9, 10,  4,  5,  3}},
    {{12,  1, 10, 15,  9,  2,  6,  8,  0, 13,  3,  4, 14,  7,  5, 11},
     {10, 15,  4,  2,  7, 12,  9,  5,  6,  1, 13, 14,  0, 11,  3,  8},
     { 9, 14, 15,  5,  2,  8, 12,  3,  7,  0,  4, 10,  1, 13, 11,  6},
     { 4,  3,  2, 12,  9,  5, 15, 10, 11, 14,  1,  7,  6,  0,  8, 13}},
    {{ 4, 11,  2, 14, 15,  0,  8, 13,  3, 12,  9,  7,  5, 10,  6,  1},
     {13,  0, 11,  7,  4,  9,  1, 10, 14,  3,  5, 12,  2, 15,  8,  6},
     { 1,  4, 11, 13, 12,  3,  7, 14, 10, 15,  6,  8,  0,  5,  9,  2},
     { 6, 11, 13,  8,  1,  4, 10,  7,  9,  5,  0, 15, 14,  2,  3, 12}},
    {{13,  2,  8,  4,  6, 15, 11,  1, 10,  9,  3, 14,  5,  0, 12,  7},
     { 1, 15, 13,  8, 10,  3,  7,  4, 12,  5,  6, 11,  0, 14,  9,  2},
     { 7, 11,  4,  1,  9, 12, 14,  2,  0,  6, 10, 13, 15,  3,  5,  8},
     { 2,  1, 14,  7,  4, 10,  8, 13, 15, 12,  9,  0,  3,  5,  6, 11}},
};
// clang-format on

// Returns the expansion E of a half block: eight groups of six bits, one in each byte. The upper 32
// bits hold the groups of S-boxes 1, 3, 5, 7 and the lower 32 bits those of 2, 4, 6, 8, each with
// the first in the top byte.
inline constexpr uint64_t DesExpand(uint32_t half) {
    uint32_t odd = (half >> 3 | half << 29) & 0x3F3F3F3Fu;
    uint32_t even = (half << 1 | half >> 31) & 0x3F3F3F3Fu;
    return uint64_t{odd} << 32 | even;
}

// Undoes the expansion: returns the half block, the middle four bits of each group.
inline constexpr uint32_t DesContract(uint64_t expanded) {
    uint32_t odd = static_cast<uint32_t>(expanded >> 32) & 0x1E1E1E1Eu;
    uint32_t even = static_cast<uint32_t>(expanded) & 0x1E1E1E1Eu;
    return (odd << 3 | odd >> 29) | (even >> 1 | even << 31);
}

// For each S-box and its six input bits: the output, permuted by P and expanded for the next round.
using DesRoundTable = std::array<std::array<uint64_t, 64>, 8>;

constexpr DesRoundTable MakeDesRoundTable() {
    DesRoundTable table = {};
    for (int box = 0; box < 8; ++box) {
        for (int group = 0; group < 64; ++group) {
            int row = (group >> 4 & 2) | (group & 1);
            uint32_t out = uint32_t{kDesBoxes[box][row][group >> 1 & 15]} << (28 - 4 * box);
            uint32_t permuted = 0;
            for (int bit : kDesPermutation) permuted = permuted << 1 | (out >> (32 - bit) & 1);
            table[static_cast<size_t>(box)][static_cast<size_t>(group)] = DesExpand(permuted);
        }
    }
    return table;
}

// ---------------------------------------------------------------- the rounds

constexpr DesRoundTable kRoundTable = MakeDesRoundTable();

// The round keys of one pass over a block, in the order in which the rounds use them.
struct RoundKeys {
    uint64_t key[16];
};

struct Halves {
    uint64_t left;
    uint64_t right;
};

static uint32_t RotateKeyHalf(uint32_t half, int shift) {
    return (half << shift | half >> (28 - shift)) & 0x0FFFFFFFu;
}

static uint64_t Select(uint64_t value, int bits, const uint8_t* choice, int count) {
    uint64_t result = 0;
    for (int i = 0; i < count; ++i) result = result << 1 | (value >> (bits - choice[i]) & 1);
    return result;
}

void DesSetKey(uint32_t leftWord, uint32_t rightWord, DesContext* context) {
    uint64_t key = uint64_t{leftWord} << 32 | rightWord;
    uint64_t chosen = Select(key, 64, kDesPermutedChoice1, 56);
    uint32_t c = static_cast<uint32_t>(chosen >> 28),
             d = static_cast<uint32_t>(chosen & 0x0FFFFFFFu);
    for (int round = 0; round < 16; ++round) {
        c = RotateKeyHalf(c, kDesKeyShifts[round]);
        d = RotateKeyHalf(d, kDesKeyShifts[round]);
        uint64_t subkey = Select(uint64_t{c} << 28 | d, 56, kDesPermutedChoice2, 48);
        uint32_t odd = 0, even = 0;
        for (int box = 0; box < 8; box += 2) {
            odd = odd << 8 | static_cast<uint32_t>(subkey >> (42 - 6 * box) & 0x3F);
            even = even << 8 | static_cast<uint32_t>(subkey >> (36 - 6 * box) & 0x3F);
        }
        context->subkeysOdd[round] = odd;
        context->subkeysEven[round] = even;
    }
    memset(context->encryptIv, 0, sizeof(context->encryptIv));
    memset(context->decryptIv, 0, sizeof(context->decryptIv));
}

static void LoadKeys(RoundKeys* keys, const DesContext* context, bool decrypt) {
    for (int i = 0; i < 16; ++i) {
        int round = decrypt ? 15 - i : i;
        keys->key[i] = uint64_t{context->subkeysOdd[round]} << 32 | context->subkeysEven[round];
    }
}

// Swaps the bits of b under the mask with the bits of a that are `shift` places higher.
static inline void SwapBits(uint32_t& a, uint32_t& b, int shift, uint32_t mask) {
    uint32_t difference = (a >> shift ^ b) & mask;
    b ^= difference;
    a ^= difference << shift;
}

static inline Halves InitialPermutation(CipherBlock block) {
    SwapBits(block.left, block.right, 4, 0x0F0F0F0Fu);
    SwapBits(block.left, block.right, 16, 0x0000FFFFu);
    SwapBits(block.right, block.left, 2, 0x33333333u);
    SwapBits(block.right, block.left, 8, 0x00FF00FFu);
    SwapBits(block.left, block.right, 1, 0x55555555u);
    return {DesExpand(block.left), DesExpand(block.right)};
}

static inline CipherBlock FinalPermutation(Halves halves) {
    CipherBlock block = {DesContract(halves.left), DesContract(halves.right)};
    SwapBits(block.left, block.right, 1, 0x55555555u);
    SwapBits(block.right, block.left, 8, 0x00FF00FFu);
    SwapBits(block.right, block.left, 2, 0x33333333u);
    SwapBits(block.left, block.right, 16, 0x0000FFFFu);
    SwapBits(block.left, block.right, 4, 0x0F0F0F0Fu);
    return block;
}

static inline uint64_t Share(size_t box, uint64_t halves, int shift) {
    return kRoundTable[box][static_cast<size_t>(halves >> shift & 0xFF)];
}

static inline uint64_t RoundFunction(uint64_t half, uint64_t key) {
    uint64_t x = half ^ key;
    uint64_t a = Share(0, x, 56) ^ Share(1, x, 24);
    uint64_t b = Share(2, x, 48) ^ Share(3, x, 16);
    uint64_t c = Share(4, x, 40) ^ Share(5, x, 8);
    uint64_t d = Share(6, x, 32) ^ Share(7, x, 0);
    return (a ^ b) ^ (c ^ d);
}

// Runs the sixteen rounds and the final swap of the halves. The next pass of a triple encryption
// uses the result directly, because the final permutation and the next initial permutation cancel
// out.
template <size_t count>
static inline void Rounds(Halves (&halves)[count], const RoundKeys* keys) {
    for (int i = 0; i < 16; i += 2) {
        for (Halves& each : halves) each.left ^= RoundFunction(each.right, keys->key[i]);
        for (Halves& each : halves) each.right ^= RoundFunction(each.left, keys->key[i + 1]);
    }
    for (Halves& each : halves) each = {each.right, each.left};
}

// The block function with `passes` passes, each with its own round keys.
template <int passes, size_t count>
static inline void Encrypt(CipherBlock (&blocks)[count], const RoundKeys* keys) {
    Halves halves[count];
    for (size_t i = 0; i < count; ++i) halves[i] = InitialPermutation(blocks[i]);
    for (int pass = 0; pass < passes; ++pass) Rounds(halves, keys + pass);
    for (size_t i = 0; i < count; ++i) blocks[i] = FinalPermutation(halves[i]);
}

static void OneBlock(uint32_t left, uint32_t right, uint32_t output[2], const DesContext* context,
                     bool decrypt) {
    RoundKeys keys;
    LoadKeys(&keys, context, decrypt);
    CipherBlock block[1] = {{left, right}};
    Encrypt<1>(block, &keys);
    output[0] = block[0].left;
    output[1] = block[0].right;
    Wipe(&keys, sizeof(keys));
}

void DesEncryptBlock(uint32_t left, uint32_t right, uint32_t output[2], const DesContext* context) {
    OneBlock(left, right, output, context, false);
}

void DesDecryptBlock(uint32_t left, uint32_t right, uint32_t output[2], const DesContext* context) {
    OneBlock(left, right, output, context, true);
}

// ---------------------------------------------------------------- CBC

template <int passes>
static void ChainEncrypt(uint8_t* output, const uint8_t* input, int length, const RoundKeys* keys,
                         uint32_t iv[2]) {
    CbcEncrypt<LoadBigBlock, StoreBigBlock>(output, input, length, iv,
                                            [=](auto& blocks) { Encrypt<passes>(blocks, keys); });
}

template <int passes>
static void ChainDecrypt(uint8_t* output, const uint8_t* input, int length, const RoundKeys* keys,
                         uint32_t iv[2]) {
    CbcDecrypt<LoadBigBlock, StoreBigBlock>(output, input, length, iv,
                                            [=](auto& blocks) { Encrypt<passes>(blocks, keys); });
}

void DesCbcEncrypt(uint8_t* output, const uint8_t* input, int length, DesContext* context) {
    RoundKeys keys;
    LoadKeys(&keys, context, false);
    ChainEncrypt<1>(output, input, length, &keys, context->encryptIv);
    Wipe(&keys, sizeof(keys));
}

void DesCbcDecrypt(uint8_t* output, const uint8_t* input, int length, DesContext* context) {
    RoundKeys keys;
    LoadKeys(&keys, context, true);
    ChainDecrypt<1>(output, input, length, &keys, context->decryptIv);
    Wipe(&keys, sizeof(keys));
}

void TripleDesCbcEncrypt(uint8_t* output, const uint8_t* input, int length,
                         DesContext contexts[3]) {
    RoundKeys keys[3];
    for (int i = 0; i < 3; ++i) LoadKeys(&keys[i], &contexts[i], i == 1);
    ChainEncrypt<3>(output, input, length, keys, contexts[0].encryptIv);
    Wipe(keys, sizeof(keys));
}

void TripleDesCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                         DesContext contexts[3]) {
    RoundKeys keys[3];
    for (int i = 0; i < 3; ++i) LoadKeys(&keys[i], &contexts[2 - i], i != 1);
    ChainDecrypt<3>(output, input, length, keys, contexts[0].decryptIv);
    Wipe(keys, sizeof(keys));
}

void TripleDesPassesEncrypt(uint8_t* output, const uint8_t* input, int length,
                            DesContext contexts[3]) {
    DesCbcEncrypt(output, input, length, &contexts[0]);
    DesCbcDecrypt(output, output, length, &contexts[1]);
    DesCbcEncrypt(output, output, length, &contexts[2]);
}

void TripleDesPassesDecrypt(uint8_t* output, const uint8_t* input, int length,
                            DesContext contexts[3]) {
    DesCbcDecrypt(output, input, length, &contexts[2]);
    DesCbcEncrypt(output, output, length, &contexts[1]);
    DesCbcDecrypt(output, output, length, &contexts[0]);
}
