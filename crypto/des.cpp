// DES and triple DES.
//
// Both halves of a block are kept expanded (DesExpand) through all rounds: the tables give what
// an S-box contributes in that form already, so a round is eight look-ups by byte and their XOR.
#include "crypto/des.h"

#include "crypto/cbc.h"
#include "crypto/des_tables.h"
#include "crypto/wipe.h"
#include "text/byte_order.h"

static constexpr DesRoundTable kRoundTable = MakeDesRoundTable();

// The round keys of one pass over a block, in the order of their use.
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
    for (int i = 0; i < count; i++) result = result << 1 | (value >> (bits - choice[i]) & 1);
    return result;
}

void DesSetKey(uint32_t leftWord, uint32_t rightWord, DesContext* context) {
    uint64_t key = uint64_t{leftWord} << 32 | rightWord;
    uint64_t chosen = Select(key, 64, kDesPermutedChoice1, 56);
    uint32_t c = static_cast<uint32_t>(chosen >> 28),
             d = static_cast<uint32_t>(chosen & 0x0FFFFFFFu);
    for (int round = 0; round < 16; round++) {
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
    for (int i = 0; i < 16; i++) {
        int round = decrypt ? 15 - i : i;
        keys->key[i] = uint64_t{context->subkeysOdd[round]} << 32 | context->subkeysEven[round];
    }
}

// Swaps the bits of a and b that lie `shift` apart under the mask.
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

// Sixteen rounds and the exchange of the halves that ends them. The next pass of a triple
// encryption takes the result as it is: final and initial permutation would undo each other.
template <size_t count>
static inline void Rounds(Halves (&halves)[count], const RoundKeys* keys) {
    for (int i = 0; i < 16; i += 2) {
        for (Halves& each : halves) each.left ^= RoundFunction(each.right, keys->key[i]);
        for (Halves& each : halves) each.right ^= RoundFunction(each.left, keys->key[i + 1]);
    }
    for (Halves& each : halves) each = {each.right, each.left};
}

// A block function of `passes` passes, each with its round keys.
template <int passes, size_t count>
static inline void Encrypt(CipherBlock (&blocks)[count], const RoundKeys* keys) {
    Halves halves[count];
    for (size_t i = 0; i < count; i++) halves[i] = InitialPermutation(blocks[i]);
    for (int pass = 0; pass < passes; pass++) Rounds(halves, keys + pass);
    for (size_t i = 0; i < count; i++) blocks[i] = FinalPermutation(halves[i]);
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
    for (int i = 0; i < 3; i++) LoadKeys(&keys[i], &contexts[i], i == 1);
    ChainEncrypt<3>(output, input, length, keys, contexts[0].encryptIv);
    Wipe(keys, sizeof(keys));
}

void TripleDesCbcDecrypt(uint8_t* output, const uint8_t* input, int length,
                         DesContext contexts[3]) {
    RoundKeys keys[3];
    for (int i = 0; i < 3; i++) LoadKeys(&keys[i], &contexts[2 - i], i != 1);
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
