// SPDX-License-Identifier: MIT
// Diffie-Hellman, DSA and RSA: the edge cases by name, and libcrypto as the other side.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <gtest/gtest.h>
#include <openssl/bn.h>
#include <openssl/dsa.h>
#include <openssl/rsa.h>

#include <cstring>

#include "crypto/hashes.h"
#include "crypto/public_key.h"
#include "crypto/random.h"
#include "crypto_test_support.h"
#include "gmp_bridge.h"
#include "public_key_blobs.h"

static void Seed(int milliseconds) {
    clock_milliseconds = milliseconds;
    SeedRandom();
}

// ---------------------------------------------------------------- Diffie-Hellman

class DiffieHellman : public testing::Test {
  protected:
    DhContext context = {};
    void SetUp() override { DhSetup(&context); }
    void TearDown() override { DhForget(&context); }
};

TEST_F(DiffieHellman, GroupIsTheOakleyGroup2WithItsHalfOrder) {
    EXPECT_EQ(BignumBitLength(context.p), 1024);
    EXPECT_EQ(NumberHex(context.g), "2");
    Mpz p(context.p), q(context.q);
    EXPECT_NE(mpz_probab_prime_p(p.value, 30), 0);
    EXPECT_NE(mpz_probab_prime_p(q.value, 30), 0);
    mpz_mul_ui(q.value, q.value, 2);
    mpz_add_ui(q.value, q.value, 1);
    EXPECT_EQ(p.Hex(), q.Hex());
    EXPECT_EQ(BignumBitLength(context.bound), BignumBitLength(context.q));
}

TEST_F(DiffieHellman, ExponentTakesItsBitsFromRandomBytesLowestFirst) {
    Seed(11);
    DhGenerate(&context, kDhExponentBits);
    Seed(11);
    ByteString bytes;
    for (int i = 0; i < 32; i++) bytes.insert(bytes.begin(), RandomByte());
    Number wanted(BignumFromBytes(bytes.data(), 32));
    EXPECT_EQ(NumberHex(context.x), NumberHex(wanted.get()));
}

TEST_F(DiffieHellman, PublicValueIsTheGeneratorToTheExponent) {
    Seed(12);
    ConstBignum e = DhGenerate(&context, kDhExponentBits);
    Mpz x(context.x), p(context.p), wanted(context.g);
    mpz_powm(wanted.value, wanted.value, x.value, p.value);
    EXPECT_EQ(NumberHex(e), wanted.Hex());
    EXPECT_EQ(e, context.e);
}

TEST_F(DiffieHellman, ExponentHasAtMost256BitsAndMayHaveFewer) {
    bool shorter = false;
    for (int seed = 0; seed < 37; seed++) {
        Seed(seed);
        DhGenerate(&context, kDhExponentBits);
        int bits = BignumBitLength(context.x);
        EXPECT_LE(bits, 256);
        EXPECT_GT(bits, 200);
        EXPECT_EQ(BignumCompare(context.x, BignumOne), 1);
        shorter = shorter || bits < 256;
    }
    EXPECT_TRUE(shorter);
}

TEST_F(DiffieHellman, SmallExponentsAreDrawnAgainUntilTheyAreAboveOne) {
    for (int seed = 0; seed < 20; seed++) {
        Seed(seed);
        DhGenerate(&context, 2);
        EXPECT_GE(BignumCompare(context.x, BignumOne), 1);
        EXPECT_LE(BignumBitLength(context.x), 2);
    }
}

// Sets the draws for the bytes of an exponent of 256 bits, the lowest byte first.
static void ScriptExponent(int low_byte) {
    scripted_draws.push_back(0x100 + low_byte);
    scripted_draws.insert(scripted_draws.end(), 31, 0x100);
}

TEST_F(DiffieHellman, ExponentOfZeroOrOneIsDrawnAgain) {
    for (int low_byte : {0, 1, 1, 0, 2}) ScriptExponent(low_byte);
    DhGenerate(&context, kDhExponentBits);
    EXPECT_TRUE(scripted_draws.empty());
    EXPECT_EQ(NumberHex(context.x), "2");
    EXPECT_EQ(NumberHex(context.e), "4");
}

// Random bytes of all ones leave the bound as it is, and the bound is above q.
TEST_F(DiffieHellman, ExponentThatIsNotBelowQIsDrawnAgain) {
    scripted_draws.assign(2 * 128, 0xFF);
    scripted_draws.insert(scripted_draws.end(), 127, 0x100);
    scripted_draws.push_back(3);
    EXPECT_EQ(BignumCompare(context.bound, context.q), 1);
    DhGenerate(&context, 0);
    EXPECT_TRUE(scripted_draws.empty());
    EXPECT_EQ(NumberHex(context.x), "3");
}

TEST_F(DiffieHellman, ExponentEqualToQIsDrawnAgainAndTheOneBelowItIsTaken) {
    for (const int below : {0, 1}) {
        for (int i = 0; i < 128; i++)
            scripted_draws.push_back(0x100 + BignumByte(context.q, 127 - i) -
                                     (i == 127 ? below : 0));
        scripted_draws.insert(scripted_draws.end(), 127, 0x100);
        scripted_draws.push_back(3);
        DhGenerate(&context, 0);
        const int taken = BignumByte(context.x, 0);
        EXPECT_EQ(taken, below == 0 ? 3 : BignumByte(context.q, 0) - 1);
        EXPECT_EQ(scripted_draws.empty(), below == 0);
        scripted_draws.clear();
    }
}

// Without a bit count the exponent is the bound with each byte masked by a random byte.
TEST_F(DiffieHellman, ExponentWithoutABitCountComesFromTheBound) {
    for (int bits : {0, 1024, 5000}) {
        Seed(3);
        DhGenerate(&context, bits);
        Seed(3);
        ByteString bytes(128);
        BignumToBytes(bytes.data(), 128, context.bound);
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(byte & RandomByte());
        Number wanted(BignumFromBytes(bytes.data(), 128));
        EXPECT_EQ(NumberHex(context.x), NumberHex(wanted.get())) << bits;
        EXPECT_EQ(BignumCompare(context.x, context.q), -1);
    }
}

TEST_F(DiffieHellman, BothSidesReachTheSameSecret) {
    DhContext other = {};
    DhSetup(&other);
    Seed(1);
    DhGenerate(&context, kDhExponentBits);
    Seed(2);
    DhGenerate(&other, kDhExponentBits);
    Number ours(DhSharedSecret(&context, other.e)), theirs(DhSharedSecret(&other, context.e));
    EXPECT_EQ(NumberHex(ours.get()), NumberHex(theirs.get()));
    EXPECT_GT(BignumBitLength(ours.get()), 900);
    DhForget(&other);
}

TEST_F(DiffieHellman, PeersValueOutOfRangeIsRefused) {
    Seed(1);
    DhGenerate(&context, kDhExponentBits);
    Mpz above(context.p);
    mpz_add_ui(above.value, above.value, 1);
    EXPECT_EQ(DhSharedSecret(&context, BignumZero), nullptr);
    EXPECT_EQ(DhSharedSecret(&context, context.p), nullptr);
    EXPECT_EQ(DhSharedSecret(&context, FromMpz(above).get()), nullptr);
    EXPECT_EQ(DhSharedSecret(&context, RandomNumber(60000, 0).get()), nullptr);
    mpz_sub_ui(above.value, above.value, 2);
    EXPECT_NE(Number(DhSharedSecret(&context, FromMpz(above).get())), nullptr);
    EXPECT_NE(Number(DhSharedSecret(&context, BignumOne)), nullptr);
}

TEST_F(DiffieHellman, ReleaseKeepsTheExponentAndThePublicValue) {
    Seed(1);
    DhGenerate(&context, kDhExponentBits);
    const std::string x = NumberHex(context.x);
    DhRelease(&context);
    EXPECT_EQ(context.p, nullptr);
    EXPECT_EQ(context.g, nullptr);
    EXPECT_EQ(context.q, nullptr);
    EXPECT_EQ(context.bound, nullptr);
    EXPECT_EQ(NumberHex(context.x), x);
    EXPECT_NE(context.e, nullptr);
    EXPECT_EQ(DhSharedSecret(&context, BignumOne), nullptr);
    DhForget(&context);
    EXPECT_EQ(context.x, nullptr);
}

TEST_F(DiffieHellman, SecondExchangeReplacesTheFirst) {
    Seed(1);
    DhGenerate(&context, kDhExponentBits);
    const std::string first = NumberHex(context.x);
    DhSetup(&context);
    Seed(2);
    DhGenerate(&context, kDhExponentBits);
    EXPECT_NE(NumberHex(context.x), first);
}

// ---------------------------------------------------------------- DSA

class Dss : public testing::Test {
  protected:
    static void SetUpTestSuite() { peer = MakeDsaKey(); }
    static void TearDownTestSuite() { DSA_free(peer); }
    void SetUp() override {
        ByteString blob = KeyBlob(peer);
        key = DssParseKey(blob.data(), Size(blob));
        ASSERT_NE(key, nullptr);
    }
    void TearDown() override { DssFreeKey(key); }
    bool Verify(const ByteString& signature, const ByteString& data) {
        return DssVerify(key, signature.data(), Size(signature), data.data(), Size(data));
    }
    static DSA* peer;
    DssKey* key = nullptr;
    ByteString hash = RandomBytes(20);
};
DSA* Dss::peer = nullptr;

TEST_F(Dss, KeyHoldsTheNumbersInTheOrderOfTheBlob) {
    const BIGNUM *p, *q, *g, *y;
    DSA_get0_pqg(peer, &p, &q, &g);
    DSA_get0_key(peer, &y, nullptr);
    EXPECT_EQ(NumberHex(key->p), BigHex(p));
    EXPECT_EQ(NumberHex(key->q), BigHex(q));
    EXPECT_EQ(NumberHex(key->g), BigHex(g));
    EXPECT_EQ(NumberHex(key->y), BigHex(y));
}

TEST_F(Dss, BareAndWrappedSignaturesAreTheSame) {
    const ByteString signature = Sign(peer, hash);
    EXPECT_TRUE(Verify(signature, hash));
    EXPECT_TRUE(Verify(WrapSignature(signature), hash));
}

TEST_F(Dss, DataIsHashedOnceMoreBeforeTheCheck) {
    const ByteString over_hash = Sign(peer, hash);        // over SHA-1(H)
    const ByteString over_data = SignDigest(peer, hash);  // over H itself
    EXPECT_TRUE(Verify(over_hash, hash));
    EXPECT_FALSE(Verify(over_data, hash));
}

TEST_F(Dss, EachBitOfRAndSAndTheMessageCounts) {
    ByteString signature = Sign(peer, hash);
    for (size_t bit = 0; bit < 320; bit++) {
        ByteString changed = signature;
        changed[bit / 8] = static_cast<uint8_t>(changed[bit / 8] ^ 1 << bit % 8);
        ASSERT_FALSE(Verify(changed, hash)) << "signature bit " << bit;
    }
    for (size_t bit = 0; bit < 160; bit++) {
        ByteString changed = hash;
        changed[bit / 8] = static_cast<uint8_t>(changed[bit / 8] ^ 1 << bit % 8);
        ASSERT_FALSE(Verify(signature, changed)) << "message bit " << bit;
    }
    EXPECT_TRUE(Verify(signature, hash));
}

TEST_F(Dss, SignaturesOfThePeerVerify) {
    for (int round = 0; round < 60; round++) {
        const ByteString data = RandomBytes(RandomBelow(100));
        ASSERT_TRUE(Verify(Sign(peer, data), data)) << round;
    }
}

TEST_F(Dss, KeysOf2048And3072BitsVerify) {
    for (int bits : {2048, 3072}) {
        DSA* longer = MakeLongDsaKey(bits);
        const ByteString blob = KeyBlob(longer);
        DssKey* parsed = DssParseKey(blob.data(), Size(blob));
        ASSERT_NE(parsed, nullptr) << bits;
        EXPECT_EQ(BignumBitLength(parsed->p), bits);
        for (int round = 0; round < 5; round++) {
            const ByteString data = RandomBytes(20);
            ByteString signature = WrapSignature(Sign(longer, data));
            EXPECT_TRUE(DssVerify(parsed, signature.data(), Size(signature), data.data(), 20));
            signature.back() = static_cast<uint8_t>(signature.back() ^ 1);
            EXPECT_FALSE(DssVerify(parsed, signature.data(), Size(signature), data.data(), 20));
        }
        DssFreeKey(parsed);
        DSA_free(longer);
    }
}

// The same key modulo p: g and y may be sent with any multiple of it added.
TEST_F(Dss, NumbersFarAboveThePrimeAreReducedModuloIt) {
    const ByteString signature = Sign(peer, hash);
    for (Bignum* number : {&key->g, &key->y}) {
        const Number factor = RandomNumber(30000, 0);
        const Number reduced(*number);
        *number = BignumMulAdd(key->p, factor.get(), reduced.get());
    }
    EXPECT_GT(BignumBitLength(key->y), 30000);
    EXPECT_TRUE(Verify(signature, hash));
}

// r and s moved out of range by q would pass the equations, but not the check of the range.
TEST_F(Dss, ROrSOfZeroOrNotBelowQIsRefused) {
    ByteString signature = Sign(peer, hash);
    const ByteString zero(20), ones(20, 0xFF);
    ByteString q(20);
    BignumToBytes(q.data(), 20, key->q);
    for (const ByteString& wrong : {zero, q, ones}) {
        ByteString bad_r = signature, bad_s = signature;
        std::copy(wrong.begin(), wrong.end(), bad_r.begin());
        std::copy(wrong.begin(), wrong.end(), bad_s.begin() + 20);
        EXPECT_FALSE(Verify(bad_r, hash));
        EXPECT_FALSE(Verify(bad_s, hash));
    }
}

// s + q fits into 20 bytes in one signature of thirty.
TEST_F(Dss, SMovedByQIsRefused) {
    for (int round = 0; round < 5000; round++) {
        ByteString signature = Sign(peer, hash);
        Number s(BignumFromBytes(signature.data() + 20, 20));
        Mpz moved(s.get()), q(key->q);
        mpz_add(moved.value, moved.value, q.value);
        Number sum = FromMpz(moved);
        if (BignumBitLength(sum.get()) > 160) continue;
        EXPECT_TRUE(Verify(signature, hash));
        BignumToBytes(signature.data() + 20, 20, sum.get());
        EXPECT_FALSE(Verify(signature, hash));
        return;
    }
    FAIL() << "no s that can be moved";
}

TEST_F(Dss, LongerNameThatStartsWithTheRightOneIsAccepted) {
    ByteString blob = KeyBlob(peer, "ssh-dss-and-more");
    DssKey* named = DssParseKey(blob.data(), Size(blob));
    ASSERT_NE(named, nullptr);
    EXPECT_EQ(NumberHex(named->y), NumberHex(key->y));
    DssFreeKey(named);
}

TEST_F(Dss, AnotherNameIsNoKey) {
    for (const char* name : {"ssh-rsa", "ssh-ds", "", "Ssh-dss", "xssh-dss"}) {
        ByteString blob = KeyBlob(peer, name);
        EXPECT_EQ(DssParseKey(blob.data(), Size(blob)), nullptr) << name;
    }
}

TEST_F(Dss, SignatureOfAnotherNameIsRefused) {
    const ByteString signature = Sign(peer, hash);
    for (const char* name : {"ssh-rsa", "ssh-ds", "ssh-dss2", ""}) {
        EXPECT_FALSE(Verify(WrapSignature(signature, name), hash)) << name;
    }
}

TEST_F(Dss, InnerSignatureLengthIsIgnored) {
    ByteString wrapped = WrapSignature(Sign(peer, hash));
    for (size_t i = 0; i < 4; i++) wrapped[11 + i] = static_cast<uint8_t>(0xFF - i);
    EXPECT_TRUE(Verify(wrapped, hash));
}

// ---------------------------------------------------------------- RSA

static RSA* MakeRsaKey(int bits) {
    RSA* rsa = RSA_new();
    BIGNUM* exponent = BN_new();
    BN_set_word(exponent, 35);  // as SSH-1 servers use
    EXPECT_EQ(RSA_generate_key_ex(rsa, bits, exponent, nullptr), 1);
    BN_free(exponent);
    return rsa;
}

static ByteString Decrypt(RSA* rsa, const ByteString& block, int padding) {
    ByteString text(block.size());
    int size = RSA_private_decrypt(Size(block), block.data(), text.data(), rsa, padding);
    EXPECT_GE(size, 0);
    text.resize(static_cast<size_t>(size < 0 ? 0 : size));
    return text;
}

class RsaTest : public testing::TestWithParam<int> {
  protected:
    void SetUp() override {
        peer = MakeRsaKey(GetParam());
        ByteString blob = RsaBlob(peer);
        ASSERT_EQ(RsaParseKey(blob.data(), Size(blob), &key, nullptr), Size(blob));
    }
    void TearDown() override {
        RsaReleaseKey(&key);
        RSA_free(peer);
    }
    RSA* peer = nullptr;
    RsaKey key = {};
};
INSTANTIATE_TEST_SUITE_P(Bits, RsaTest, testing::Values(512, 768, 1017, 1024));

TEST_P(RsaTest, KeyHoldsBitsBytesModulusAndExponent) {
    const BIGNUM *n, *e;
    RSA_get0_key(peer, &n, &e, nullptr);
    EXPECT_EQ(key.bits, static_cast<uint32_t>(GetParam()));
    EXPECT_EQ(key.bytes, (GetParam() + 7) / 8);
    EXPECT_EQ(NumberHex(key.modulus), BigHex(n));
    EXPECT_EQ(NumberHex(key.exponent), BigHex(e));
}

TEST_P(RsaTest, PeerDecryptsWhatIsEncryptedHere) {
    Seed(GetParam());
    for (int length = 0; length <= key.bytes - 11; length++) {
        const ByteString text = RandomBytes(length);
        ByteString buffer = text;
        buffer.resize(static_cast<size_t>(key.bytes));
        ASSERT_TRUE(RsaEncrypt(buffer.data(), length, &key));
        ASSERT_EQ(ToHex(Decrypt(peer, buffer, RSA_PKCS1_PADDING)), ToHex(text)) << length;
    }
}

TEST_P(RsaTest, PaddingHasTheStandardFormAndNoZeroByte) {
    for (int seed = 0; seed < 37; seed++) {
        Seed(seed);
        ByteString buffer(static_cast<size_t>(key.bytes), 0xEE);
        ASSERT_TRUE(RsaEncrypt(buffer.data(), 32, &key));
        const ByteString block = Decrypt(peer, buffer, RSA_NO_PADDING);
        ASSERT_EQ(Size(block), key.bytes);
        size_t separator = block.size() - 33;
        EXPECT_EQ(block[0], 0);
        EXPECT_EQ(block[1], 2);
        for (size_t i = 2; i < separator; i++) ASSERT_NE(block[i], 0) << seed << ", " << i;
        EXPECT_EQ(block[separator], 0);
        EXPECT_EQ(ToHex(&block[separator + 1], 32), ToHex(ByteString(32, 0xEE)));
    }
}

TEST_P(RsaTest, PaddingIsTheRandomBytesWithTheZerosLeftOut) {
    Seed(4);
    ByteString buffer(static_cast<size_t>(key.bytes));
    ASSERT_TRUE(RsaEncrypt(buffer.data(), 16, &key));
    const ByteString block = Decrypt(peer, buffer, RSA_NO_PADDING);
    Seed(4);
    for (size_t i = 2; i < block.size() - 17; i++) {
        uint8_t byte = RandomByte();
        while (byte == 0) byte = RandomByte();
        ASSERT_EQ(block[i], byte);
    }
}

TEST_P(RsaTest, MessageWithoutRoomForThePaddingIsRefusedAndKept) {
    ByteString buffer(static_cast<size_t>(key.bytes), 0x77);
    const ByteString before = buffer;
    for (int length : {key.bytes - 2, key.bytes - 1, key.bytes, key.bytes + 1, -1}) {
        EXPECT_FALSE(RsaEncrypt(buffer.data(), length, &key));
        EXPECT_EQ(ToHex(buffer), ToHex(before));
    }
    EXPECT_TRUE(RsaEncrypt(buffer.data(), key.bytes - 3, &key));
}

// Encrypts with the server key first, then the result with a longer host key.
TEST(Rsa, TwoEncryptionsInARowDecryptInReverseOrder) {
    RSA* inner = MakeRsaKey(768);
    RSA* outer = MakeRsaKey(1024);
    RsaKey keys[2] = {};
    ByteString first = RsaBlob(inner), second = RsaBlob(outer);
    ASSERT_GT(RsaParseKey(first.data(), Size(first), &keys[0], nullptr), 0);
    ASSERT_GT(RsaParseKey(second.data(), Size(second), &keys[1], nullptr), 0);
    const ByteString session_key = RandomBytes(32);
    ByteString buffer = session_key;
    buffer.resize(128);
    Seed(9);
    ASSERT_TRUE(RsaEncrypt(buffer.data(), 32, &keys[0]));
    ASSERT_TRUE(RsaEncrypt(buffer.data(), keys[0].bytes, &keys[1]));
    const ByteString middle = Decrypt(outer, buffer, RSA_PKCS1_PADDING);
    EXPECT_EQ(ToHex(Decrypt(inner, middle, RSA_PKCS1_PADDING)), ToHex(session_key));
    RsaReleaseKey(&keys[0]);
    RsaReleaseKey(&keys[1]);
    RSA_free(inner);
    RSA_free(outer);
}
