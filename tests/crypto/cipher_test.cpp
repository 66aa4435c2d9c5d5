// SPDX-License-Identifier: MIT
// Ciphers, modes and the records of both SSH versions: the edge cases, by name.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <functional>

#include "crypto/block_ciphers.h"
#include "crypto/ciphers.h"
#include "crypto_test_support.h"
#include "text/bytes.h"

static void SetDesKey(DesContext* context, const uint8_t* key) {
    DesSetKey(LoadBig<uint32_t>(key), LoadBig<uint32_t>(key + 4), context);
}

TEST(Des, SchedulingAKeyClearsBothChainingValues) {
    DesContext context;
    memset(&context, 0xAA, sizeof(context));
    DesSetKey(1, 2, &context);
    EXPECT_EQ(context.encryptIv[0] | context.encryptIv[1], 0u);
    EXPECT_EQ(context.decryptIv[0] | context.decryptIv[1], 0u);
}

TEST(Des, ParityBitsOfTheKeyDoNotCount) {
    uint32_t first[2], second[2];
    DesContext context;
    DesSetKey(0x01234567, 0x89ABCDEF, &context);
    DesEncryptBlock(1, 2, first, &context);
    DesSetKey(0x01234567 ^ 0x01010101, 0x89ABCDEF ^ 0x01010101, &context);
    DesEncryptBlock(1, 2, second, &context);
    EXPECT_EQ(first[0], second[0]);
    EXPECT_EQ(first[1], second[1]);
}

static uint64_t Encrypt(uint64_t key, uint64_t block) {
    DesContext context;
    uint32_t words[2];
    DesSetKey(static_cast<uint32_t>(key >> 32), static_cast<uint32_t>(key), &context);
    DesEncryptBlock(static_cast<uint32_t>(block >> 32), static_cast<uint32_t>(block), words,
                    &context);
    return uint64_t{words[0]} << 32 | words[1];
}

// FIPS 74, 3.6: the keys whose schedule reads the same from either end, and the pairs of keys of
// which each undoes the other.
TEST(Des, WeakAndSemiWeakKeysUndoTheirPartners) {
    const uint64_t kPairs[][2] = {
        {0x0101010101010101, 0x0101010101010101}, {0xFEFEFEFEFEFEFEFE, 0xFEFEFEFEFEFEFEFE},
        {0xE0E0E0E0F1F1F1F1, 0xE0E0E0E0F1F1F1F1}, {0x1F1F1F1F0E0E0E0E, 0x1F1F1F1F0E0E0E0E},
        {0x01FE01FE01FE01FE, 0xFE01FE01FE01FE01}, {0x1FE01FE00EF10EF1, 0xE01FE01FF10EF10E},
        {0x01E001E001F101F1, 0xE001E001F101F101}, {0x1FFE1FFE0EFE0EFE, 0xFE1FFE1FFE0EFE0E},
        {0x011F011F010E010E, 0x1F011F010E010E01}, {0xE0FEE0FEF1FEF1FE, 0xFEE0FEE0FEF1FEF1},
    };
    for (const auto& pair : kPairs) {
        for (int round = 0; round < 20; round++) {
            const uint64_t block = random_engine();
            EXPECT_NE(Encrypt(pair[0], block), block);
            EXPECT_EQ(Encrypt(pair[1], Encrypt(pair[0], block)), block);
            EXPECT_EQ(Encrypt(pair[0], Encrypt(pair[1], block)), block);
        }
    }
}

TEST(Des, ComplementOfKeyAndBlockGivesTheComplementOfTheResult) {
    for (int round = 0; round < 500; round++) {
        const uint64_t key = random_engine(), block = random_engine();
        EXPECT_EQ(Encrypt(~key, ~block), ~Encrypt(key, block));
    }
}

TEST(Des, EachBitOfBlockAndKeyButParityChangesTheResult) {
    const uint64_t key = random_engine(), block = random_engine();
    const uint64_t result = Encrypt(key, block);
    for (int bit = 0; bit < 64; bit++) {
        EXPECT_NE(Encrypt(key, block ^ uint64_t{1} << bit), result) << bit;
        EXPECT_EQ(Encrypt(key ^ uint64_t{1} << bit, block) == result, bit % 8 == 0) << bit;
    }
}

TEST(Des, OneContextCarriesAnEncryptionAndADecryptionStream) {
    const ByteString key = RandomBytes(8), text = RandomBytes(64);
    DesContext sender, both;
    SetDesKey(&sender, key.data());
    SetDesKey(&both, key.data());
    ByteString theirs = text, ours = text, plain(64);
    DesCbcEncrypt(theirs.data(), theirs.data(), 64, &sender);
    for (int at = 0; at < 64; at += 8) {
        DesCbcEncrypt(&ours[static_cast<size_t>(at)], &text[static_cast<size_t>(at)], 8, &both);
        DesCbcDecrypt(&plain[static_cast<size_t>(at)], &theirs[static_cast<size_t>(at)], 8, &both);
    }
    EXPECT_EQ(ToHex(ours), ToHex(theirs));
    EXPECT_EQ(ToHex(plain), ToHex(text));
}

TEST(Des, LengthThatIsNoMultipleOfEightIsRoundedUp) {
    const ByteString key = RandomBytes(8), text = RandomBytes(24);
    for (int length = 17; length <= 24; length++) {
        DesContext rounded, whole;
        SetDesKey(&rounded, key.data());
        SetDesKey(&whole, key.data());
        ByteString a(24), b(24);
        DesCbcEncrypt(a.data(), text.data(), length, &rounded);
        DesCbcEncrypt(b.data(), text.data(), 24, &whole);
        EXPECT_EQ(ToHex(a), ToHex(b)) << length;
    }
}

TEST(TripleDes, ThreeEqualKeysAreSingleDesInCbc) {
    const ByteString key = RandomBytes(8), text = RandomBytes(80);
    DesContext single, triple[3];
    SetDesKey(&single, key.data());
    for (DesContext& context : triple) SetDesKey(&context, key.data());
    ByteString a = text, b = text;
    DesCbcEncrypt(a.data(), a.data(), 80, &single);
    TripleDesCbcEncrypt(b.data(), b.data(), 80, triple);
    EXPECT_EQ(ToHex(a), ToHex(b));
    DesCbcDecrypt(a.data(), a.data(), 80, &single);
    TripleDesCbcDecrypt(b.data(), b.data(), 80, triple);
    EXPECT_EQ(ToHex(a), ToHex(text));
    EXPECT_EQ(ToHex(b), ToHex(text));
}

// The two triple-DES modes over `count` blocks with the same keys and IVs of zero.
static bool ModesAgree(int count) {
    const ByteString key = RandomBytes(24), text = RandomBytes(8 * count);
    DesContext outer[3], passes[3];
    for (int i = 0; i < 3; i++) {
        SetDesKey(&outer[i], key.data() + 8 * i);
        SetDesKey(&passes[i], key.data() + 8 * i);
    }
    ByteString a = text, b = text;
    TripleDesCbcEncrypt(a.data(), a.data(), 8 * count, outer);
    TripleDesPassesEncrypt(b.data(), b.data(), 8 * count, passes);
    return a == b;
}

TEST(TripleDes, ThreePassesEqualTheOuterChainForOneBlockOnly) {
    EXPECT_TRUE(ModesAgree(1));
    for (int count = 2; count < 6; count++) EXPECT_FALSE(ModesAgree(count)) << count;
}

TEST(TripleDes, ThreePassesUseSixChainingValues) {
    const ByteString key = RandomBytes(24);
    DesContext contexts[3];
    for (int i = 0; i < 3; i++) SetDesKey(&contexts[i], key.data() + 8 * i);
    ByteString buffer = RandomBytes(16);
    TripleDesPassesEncrypt(buffer.data(), buffer.data(), 16, contexts);
    EXPECT_NE(contexts[0].encryptIv[0], 0u);
    EXPECT_NE(contexts[1].decryptIv[0], 0u);
    EXPECT_NE(contexts[2].encryptIv[0], 0u);
    EXPECT_EQ(contexts[0].decryptIv[0] | contexts[1].encryptIv[0] | contexts[2].decryptIv[0], 0u);
    TripleDesPassesDecrypt(buffer.data(), buffer.data(), 16, contexts);
    EXPECT_NE(contexts[0].decryptIv[0], 0u);
    EXPECT_NE(contexts[1].encryptIv[0], 0u);
    EXPECT_NE(contexts[2].decryptIv[0], 0u);
}

TEST(Blowfish, SchedulingAKeyKeepsTheChainingValue) {
    static BlowfishContext context;
    context.iv[0] = 0x1234;
    context.iv[1] = 0x5678;
    BlowfishSetKey(&context, reinterpret_cast<const uint8_t*>("key"), 3);
    EXPECT_EQ(context.iv[0], 0x1234u);
    EXPECT_EQ(context.iv[1], 0x5678u);
}

TEST(Blowfish, KeyWrapsAroundWhenItsLengthIsNoMultipleOfFour) {
    static BlowfishContext context, wrapped;
    const ByteString key = RandomBytes(5);
    ByteString repeated;
    for (int i = 0; i < 72; i++) repeated.push_back(key[static_cast<size_t>(i % 5)]);
    BlowfishSetKey(&context, key.data(), 5);
    BlowfishSetKey(&wrapped, repeated.data(), 72);
    EXPECT_EQ(memcmp(context.p, wrapped.p, sizeof(context.p)), 0);
}

TEST(Blowfish, NoKeyLeavesTheContextAlone) {
    static BlowfishContext context, before;
    BlowfishSetKey(&context, nullptr, 0);
    EXPECT_EQ(memcmp(&context, &before, sizeof(context)), 0);
}

TEST(Blowfish, LittleEndianBlocksEncipherTheWordsFromTheirLowestByteOn) {
    static BlowfishContext context;
    const ByteString key = RandomBytes(32);
    BlowfishSetKey(&context, key.data(), 32);
    uint32_t wanted[2];
    BlowfishEncryptBlock(0x03020100, 0x07060504, wanted, &context);
    ByteString block = FromHex("0001020304050607");
    BlowfishLittleCbcEncrypt(block.data(), block.data(), 8, &context);
    EXPECT_EQ(LoadLittle<uint32_t>(block.data()), wanted[0]);
    EXPECT_EQ(LoadLittle<uint32_t>(block.data() + 4), wanted[1]);
}

// ---------------------------------------------------------------- the records

class SshCiphers : public testing::Test {
  protected:
    ByteString key = RandomBytes(40);
    ByteString iv = RandomBytes(40);
    void TearDown() override { WipeCipherKeys(); }
    void Install(const CipherAlgorithm& cipher) {
        cipher.setOutgoingKey(key.data());
        cipher.setIncomingKey(key.data());
        cipher.setOutgoingIv(iv.data());
        cipher.setIncomingIv(iv.data());
    }
};

TEST_F(SshCiphers, RecordsOfSsh2HoldTheirNamesAndSizes) {
    EXPECT_STREQ(kTripleDesCbc.name, "3des-cbc");
    EXPECT_EQ(kTripleDesCbc.nameRef, kTripleDesCbc.name);
    EXPECT_EQ(kTripleDesCbc.blockSize, 8);
    EXPECT_EQ(kTripleDesCbc.keyBits, 168);
    EXPECT_STREQ(kBlowfishCbc.name, "blowfish-cbc");
    EXPECT_EQ(kBlowfishCbc.nameRef, kBlowfishCbc.name);
    EXPECT_EQ(kBlowfishCbc.blockSize, 8);
    EXPECT_EQ(kBlowfishCbc.keyBits, 128);
}

TEST_F(SshCiphers, RecordsOfSsh1HoldTheirNamesAndSizes) {
    EXPECT_STREQ(kSsh1BlowfishName, "Blowfish");
    EXPECT_STREQ(kSsh1TripleDesName, "3DES encryption");
    EXPECT_STREQ(kSsh1DesName, "DES encryption");
    for (const Ssh1Cipher* cipher : {&kSsh1Blowfish, &kSsh1TripleDes, &kSsh1Des}) {
        EXPECT_EQ(cipher->blockSize, 8);
    }
}

TEST_F(SshCiphers, TripleDesTakes24BytesOfKeyAndBlowfish16) {
    const struct {
        const CipherAlgorithm* cipher;
        size_t used;
    } kRows[] = {{&kTripleDesCbc, 24}, {&kBlowfishCbc, 16}};
    for (const auto& row : kRows) {
        const ByteString text = RandomBytes(16);
        ByteString first = text, beyond = text, within = text;
        Install(*row.cipher);
        row.cipher->encrypt(first.data(), 16);
        key[row.used] = static_cast<uint8_t>(key[row.used] ^ 0x10);
        Install(*row.cipher);
        row.cipher->encrypt(beyond.data(), 16);
        EXPECT_EQ(ToHex(first), ToHex(beyond));
        key[row.used - 1] = static_cast<uint8_t>(key[row.used - 1] ^ 0x10);
        Install(*row.cipher);
        row.cipher->encrypt(within.data(), 16);
        EXPECT_NE(ToHex(first), ToHex(within));
    }
}

TEST_F(SshCiphers, TripleDesIvSetBeforeItsKeyIsLost) {
    const ByteString text = RandomBytes(8);
    ByteString early = text, zero = text;
    kTripleDesCbc.setOutgoingIv(iv.data());
    kTripleDesCbc.setOutgoingKey(key.data());
    kTripleDesCbc.encrypt(early.data(), 8);
    kTripleDesCbc.setOutgoingKey(key.data());
    kTripleDesCbc.encrypt(zero.data(), 8);
    EXPECT_EQ(ToHex(early), ToHex(zero));
}

TEST_F(SshCiphers, DirectionsOfSsh2AreIndependent) {
    for (const CipherAlgorithm* cipher : {&kTripleDesCbc, &kBlowfishCbc}) {
        Install(*cipher);
        const ByteString text = RandomBytes(32);
        ByteString sent = text;
        cipher->encrypt(sent.data(), 32);
        const ByteString other = RandomBytes(40);
        cipher->setOutgoingKey(other.data());
        cipher->setOutgoingIv(other.data());
        cipher->decrypt(sent.data(), 32);
        EXPECT_EQ(ToHex(sent), ToHex(text)) << cipher->name;
    }
}

// A stream in one call and in many, both ways.
template <typename Cipher, typename Start>
static void ExpectOneStream(const Cipher& cipher, Start start) {
    const ByteString text = RandomBytes(200);
    ByteString whole = text, cut = text;
    start();
    cipher.encrypt(whole.data(), 200);
    start();
    for (int at = 0; at < 200;) {
        int piece = std::min(8 * (1 + RandomBelow(4)), 200 - at);
        cipher.encrypt(cut.data() + at, piece);
        at += piece;
    }
    EXPECT_EQ(ToHex(cut), ToHex(whole));
    for (int at = 0; at < 200; at += 40) cipher.decrypt(cut.data() + at, 40);
    EXPECT_EQ(ToHex(cut), ToHex(text));
}

TEST_F(SshCiphers, OneCallAndManyCallsGiveTheSameBytes) {
    ExpectOneStream(kTripleDesCbc, [&] { Install(kTripleDesCbc); });
    ExpectOneStream(kBlowfishCbc, [&] { Install(kBlowfishCbc); });
    for (const Ssh1Cipher* cipher : {&kSsh1Blowfish, &kSsh1TripleDes, &kSsh1Des}) {
        ExpectOneStream(*cipher, [&] { cipher->setKey(key.data()); });
    }
}

TEST_F(SshCiphers, ZeroAndNegativeLengthsChangeNeitherBytesNorChains) {
    auto check = [](const auto& cipher, auto start) {
        const ByteString text = RandomBytes(16);
        ByteString plain = text, disturbed = text, untouched = text;
        start();
        cipher.encrypt(plain.data(), 16);
        start();
        for (int length : {0, -1, -8, -1000}) {
            cipher.encrypt(nullptr, length);
            cipher.decrypt(nullptr, length);
            cipher.encrypt(untouched.data(), length);
        }
        cipher.encrypt(disturbed.data(), 16);
        EXPECT_EQ(ToHex(disturbed), ToHex(plain));
        EXPECT_EQ(ToHex(untouched), ToHex(text));
    };
    check(kTripleDesCbc, [&] { Install(kTripleDesCbc); });
    check(kBlowfishCbc, [&] { Install(kBlowfishCbc); });
    for (const Ssh1Cipher* cipher : {&kSsh1Blowfish, &kSsh1TripleDes, &kSsh1Des}) {
        check(*cipher, [&] { cipher->setKey(key.data()); });
    }
}

// Blocks that lie anywhere, from one buffer to another and in place.
TEST_F(SshCiphers, ModesGiveTheSameInPlaceAndFromBufferToBufferAtAnyAddress) {
    static BlowfishContext blowfish;
    BlowfishSetKey(&blowfish, key.data(), 16);
    DesContext des[3];
    for (int i = 0; i < 3; i++) SetDesKey(&des[i], key.data() + 8 * i);
    const std::function<void(uint8_t*, const uint8_t*, int)> kModes[] = {
        [&](uint8_t* to, const uint8_t* from, int n) { DesCbcEncrypt(to, from, n, des); },
        [&](uint8_t* to, const uint8_t* from, int n) { DesCbcDecrypt(to, from, n, des); },
        [&](uint8_t* to, const uint8_t* from, int n) { TripleDesCbcEncrypt(to, from, n, des); },
        [&](uint8_t* to, const uint8_t* from, int n) { TripleDesCbcDecrypt(to, from, n, des); },
        [&](uint8_t* to, const uint8_t* from, int n) { TripleDesPassesEncrypt(to, from, n, des); },
        [&](uint8_t* to, const uint8_t* from, int n) { TripleDesPassesDecrypt(to, from, n, des); },
        [&](uint8_t* to, const uint8_t* from, int n) {
            BlowfishCbcEncrypt(to, from, n, &blowfish);
        },
        [&](uint8_t* to, const uint8_t* from, int n) {
            BlowfishCbcDecrypt(to, from, n, &blowfish);
        },
        [&](uint8_t* to, const uint8_t* from, int n) {
            BlowfishLittleCbcEncrypt(to, from, n, &blowfish);
        },
        [&](uint8_t* to, const uint8_t* from, int n) {
            BlowfishLittleCbcDecrypt(to, from, n, &blowfish);
        },
    };
    const BlowfishContext blowfish_before = blowfish;
    const std::vector<DesContext> des_before(des, des + 3);
    for (const auto& mode : kModes) {
        for (size_t offset = 0; offset < 8; offset++) {
            const ByteString text = RandomBytes(64 + 8);
            ByteString in_place = text, apart(64 + 8, 0xEE);
            blowfish = blowfish_before;
            std::copy(des_before.begin(), des_before.end(), des);
            mode(&in_place[offset], &in_place[offset], 64);
            blowfish = blowfish_before;
            std::copy(des_before.begin(), des_before.end(), des);
            mode(&apart[offset], &text[offset], 64);
            EXPECT_EQ(ToHex(&apart[offset], 64), ToHex(&in_place[offset], 64));
            for (size_t i = 0; i < apart.size(); i++) {
                if (i >= offset && i < offset + 64) continue;
                EXPECT_EQ(apart[i], 0xEE);
                EXPECT_EQ(in_place[i], text[i]);
            }
        }
    }
}

// The offsets of the fields of the records and contexts.
TEST_F(SshCiphers, ContextsAndRecordsKeepTheOrderOfTheirFields) {
    EXPECT_EQ(offsetof(DesContext, subkeysOdd), 0u);
    EXPECT_EQ(offsetof(DesContext, subkeysEven), 64u);
    EXPECT_EQ(offsetof(DesContext, encryptIv), 128u);
    EXPECT_EQ(offsetof(DesContext, decryptIv), 136u);
    EXPECT_EQ(offsetof(BlowfishContext, boxes), 0u);
    EXPECT_EQ(offsetof(BlowfishContext, p), 4096u);
    EXPECT_EQ(offsetof(BlowfishContext, iv), 4096u + 72u);
    const size_t kAlgorithm[] = {
        offsetof(CipherAlgorithm, name),           offsetof(CipherAlgorithm, setOutgoingIv),
        offsetof(CipherAlgorithm, setOutgoingKey), offsetof(CipherAlgorithm, setIncomingIv),
        offsetof(CipherAlgorithm, setIncomingKey), offsetof(CipherAlgorithm, encrypt),
        offsetof(CipherAlgorithm, decrypt),        offsetof(CipherAlgorithm, nameRef),
        offsetof(CipherAlgorithm, blockSize),      offsetof(CipherAlgorithm, keyBits)};
    EXPECT_TRUE(std::is_sorted(std::begin(kAlgorithm), std::end(kAlgorithm)));
    EXPECT_EQ(kAlgorithm[1], 16u);
    const size_t kSsh1[] = {offsetof(Ssh1Cipher, setKey), offsetof(Ssh1Cipher, encrypt),
                            offsetof(Ssh1Cipher, decrypt), offsetof(Ssh1Cipher, blockSize)};
    EXPECT_TRUE(std::is_sorted(std::begin(kSsh1), std::end(kSsh1)));
}

TEST_F(SshCiphers, LengthIsRoundedUpToWholeBlocks) {
    const ByteString text = RandomBytes(32);
    ByteString rounded = text, whole = text;
    Install(kTripleDesCbc);
    kTripleDesCbc.encrypt(rounded.data(), 28);  // the length that a packet of 4 + 28 bytes passes
    Install(kTripleDesCbc);
    kTripleDesCbc.encrypt(whole.data(), 32);
    EXPECT_EQ(ToHex(rounded), ToHex(whole));
}

TEST_F(SshCiphers, Ssh1TripleDesIsNotTheOneOfSsh2BeyondABlock) {
    const ByteString text = RandomBytes(16);
    ByteString ssh1 = text, ssh2 = text;
    kSsh1TripleDes.setKey(key.data());
    kSsh1TripleDes.encrypt(ssh1.data(), 16);
    kTripleDesCbc.setOutgoingKey(key.data());  // the IV stays zero
    kTripleDesCbc.encrypt(ssh2.data(), 16);
    EXPECT_EQ(ToHex(ssh1.data(), 8), ToHex(ssh2.data(), 8));
    EXPECT_NE(ToHex(ssh1), ToHex(ssh2));
}

TEST_F(SshCiphers, Ssh1BlowfishReadsBlocksFromTheLowestByte) {
    static BlowfishContext context;
    uint32_t wanted[2];
    BlowfishSetKey(&context, key.data(), 32);
    BlowfishEncryptBlock(0x03020100, 0x07060504, wanted, &context);
    ByteString block = FromHex("0001020304050607");
    kSsh1Blowfish.setKey(key.data());
    kSsh1Blowfish.encrypt(block.data(), 8);
    EXPECT_EQ(LoadLittle<uint32_t>(block.data()), wanted[0]);
    EXPECT_EQ(LoadLittle<uint32_t>(block.data() + 4), wanted[1]);
}

TEST_F(SshCiphers, Ssh1SetKeyStartsEveryChainAtZero) {
    for (const Ssh1Cipher* cipher : {&kSsh1Blowfish, &kSsh1TripleDes, &kSsh1Des}) {
        const ByteString text = RandomBytes(24);
        ByteString first = text, again = text;
        cipher->setKey(key.data());
        cipher->encrypt(first.data(), 24);
        cipher->decrypt(again.data(), 24);
        cipher->setKey(key.data());
        again = text;
        cipher->encrypt(again.data(), 24);
        EXPECT_EQ(ToHex(first), ToHex(again));
    }
}

TEST_F(SshCiphers, Ssh1DirectionsDoNotDisturbEachOther) {
    for (const Ssh1Cipher* cipher : {&kSsh1Blowfish, &kSsh1TripleDes, &kSsh1Des}) {
        const ByteString text = RandomBytes(64);
        ByteString sent = text, alone = text;
        cipher->setKey(key.data());
        cipher->encrypt(alone.data(), 64);
        cipher->setKey(key.data());
        for (int at = 0; at < 64; at += 16) {
            ByteString noise = RandomBytes(16);
            cipher->encrypt(sent.data() + at, 16);
            cipher->decrypt(noise.data(), 16);
        }
        EXPECT_EQ(ToHex(sent), ToHex(alone));
    }
}

TEST_F(SshCiphers, WipeForgetsKeysAndChainsOfBothDirections) {
    const ByteString text = RandomBytes(16);
    for (const CipherAlgorithm* cipher : {&kTripleDesCbc, &kBlowfishCbc}) {
        for (const auto& use : {cipher->encrypt, cipher->decrypt}) {
            ByteString keyed = text, wiped = text;
            Install(*cipher);
            use(keyed.data(), 16);
            Install(*cipher);
            WipeCipherKeys();
            use(wiped.data(), 16);
            EXPECT_NE(ToHex(keyed), ToHex(wiped)) << cipher->name;
        }
    }
}

// Both have contexts of their own.
TEST_F(SshCiphers, KeysOfTripleDesLeaveThoseOfBlowfish) {
    const ByteString text = RandomBytes(16);
    const ByteString session_key = RandomBytes(40);
    const std::function<void()> kSetKeys[] = {
        [&] { kTripleDesCbc.setOutgoingKey(session_key.data()); },
        [&] { kTripleDesCbc.setIncomingKey(session_key.data()); },
        [&] { kSsh1TripleDes.setKey(session_key.data()); },
        [&] { kSsh1Des.setKey(session_key.data()); },
    };
    for (size_t i = 0; i < std::size(kSetKeys); i++) {
        Install(kBlowfishCbc);
        ByteString sent = text, received = text;
        kBlowfishCbc.encrypt(sent.data(), 16);
        kBlowfishCbc.decrypt(received.data(), 16);
        Install(kBlowfishCbc);
        kSetKeys[i]();
        ByteString sent_then = text, received_then = text;
        kBlowfishCbc.encrypt(sent_then.data(), 16);
        kBlowfishCbc.decrypt(received_then.data(), 16);
        EXPECT_EQ(ToHex(sent), ToHex(sent_then)) << i;
        EXPECT_EQ(ToHex(received), ToHex(received_then)) << i;
    }
}
