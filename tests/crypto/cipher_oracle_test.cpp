// SPDX-License-Identifier: MIT
// Compares ciphers with libcrypto on random input. Blowfish and single DES are in its legacy
// provider, which is loaded here.
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/provider.h>

#include <string>
#include <tuple>

#include "crypto/block_ciphers.h"
#include "crypto/ciphers.h"
#include "crypto_test_support.h"
#include "text/bytes.h"

static const int kRounds = 3000;

// An encryption or decryption stream of libcrypto without padding.
class Peer {
  public:
    Peer(const char* name, const ByteString& key, const ByteString& iv, bool encrypt) {
        static OSSL_PROVIDER* const kLegacy = OSSL_PROVIDER_load(nullptr, "legacy");
        static OSSL_PROVIDER* const kDefault = OSSL_PROVIDER_load(nullptr, "default");
        EXPECT_NE(kLegacy, nullptr);
        EXPECT_NE(kDefault, nullptr);
        cipher_ = EVP_CIPHER_fetch(nullptr, name, nullptr);
        context_ = EVP_CIPHER_CTX_new();
        EXPECT_NE(cipher_, nullptr) << name;
        EXPECT_EQ(EVP_CipherInit_ex(context_, cipher_, nullptr, nullptr, nullptr, encrypt), 1);
        EXPECT_EQ(EVP_CIPHER_CTX_set_key_length(context_, Size(key)), 1);
        EXPECT_EQ(EVP_CipherInit_ex(context_, nullptr, nullptr, key.data(), iv.data(), encrypt), 1);
        EVP_CIPHER_CTX_set_padding(context_, 0);
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;
    ~Peer() {
        EVP_CIPHER_CTX_free(context_);
        EVP_CIPHER_free(cipher_);
    }
    ByteString Run(ByteString text) {
        int size = 0;
        EXPECT_EQ(EVP_CipherUpdate(context_, text.data(), &size, text.data(), Size(text)), 1);
        EXPECT_EQ(size, Size(text));
        return text;
    }

  private:
    EVP_CIPHER* cipher_;
    EVP_CIPHER_CTX* context_;
};

static void SetDesKeys(const ByteString& key, DesContext* contexts) {
    for (size_t i = 0; i < key.size() / 8; i++) {
        DesSetKey(LoadBig<uint32_t>(&key[8 * i]), LoadBig<uint32_t>(&key[8 * i + 4]), &contexts[i]);
    }
}

static void SetIv(const ByteString& iv, uint32_t words[2]) {
    words[0] = LoadBig<uint32_t>(iv.data());
    words[1] = LoadBig<uint32_t>(iv.data() + 4);
}

static ByteString RandomBlocks() { return RandomBytes(8 * (1 + RandomBelow(20))); }

// One key, then streams in both directions over several texts.
template <typename Encrypt, typename Decrypt>
static void CompareStreams(const char* name, const ByteString& key, const ByteString& iv,
                           Encrypt encrypt, Decrypt decrypt) {
    Peer forth(name, key, iv, true), back(name, key, iv, false);
    for (int text = 0; text < 3; text++) {
        const ByteString blocks = RandomBlocks();
        ByteString ours = blocks;
        encrypt(&ours);
        ASSERT_EQ(ToHex(ours), ToHex(forth.Run(blocks))) << name;
        ours = blocks;
        decrypt(&ours);
        ASSERT_EQ(ToHex(ours), ToHex(back.Run(blocks))) << name;
    }
}

TEST(CipherOracle, DesCbcMatchesLibcrypto) {
    for (int round = 0; round < kRounds && !HasFatalFailure(); round++) {
        const ByteString key = RandomBytes(8), iv = RandomBytes(8);
        DesContext context;
        SetDesKeys(key, &context);
        SetIv(iv, context.encryptIv);
        SetIv(iv, context.decryptIv);
        CompareStreams(
            "DES-CBC", key, iv,
            [&](ByteString* text) {
                DesCbcEncrypt(text->data(), text->data(), Size(*text), &context);
            },
            [&](ByteString* text) {
                DesCbcDecrypt(text->data(), text->data(), Size(*text), &context);
            });
    }
}

TEST(CipherOracle, TripleDesOfSsh2MatchesLibcrypto) {
    for (int round = 0; round < kRounds && !HasFatalFailure(); round++) {
        const ByteString key = RandomBytes(24), iv = RandomBytes(8);
        kTripleDesCbc.setOutgoingKey(key.data());
        kTripleDesCbc.setIncomingKey(key.data());
        kTripleDesCbc.setOutgoingIv(iv.data());
        kTripleDesCbc.setIncomingIv(iv.data());
        CompareStreams(
            "DES-EDE3-CBC", key, iv,
            [](ByteString* text) { kTripleDesCbc.encrypt(text->data(), Size(*text)); },
            [](ByteString* text) { kTripleDesCbc.decrypt(text->data(), Size(*text)); });
    }
}

TEST(CipherOracle, BlowfishOfSsh2MatchesLibcrypto) {
    for (int round = 0; round < kRounds / 3 && !HasFatalFailure(); round++) {
        const ByteString key = RandomBytes(16), iv = RandomBytes(8);
        kBlowfishCbc.setOutgoingKey(key.data());
        kBlowfishCbc.setIncomingKey(key.data());
        kBlowfishCbc.setOutgoingIv(iv.data());
        kBlowfishCbc.setIncomingIv(iv.data());
        CompareStreams(
            "BF-CBC", key, iv,
            [](ByteString* text) { kBlowfishCbc.encrypt(text->data(), Size(*text)); },
            [](ByteString* text) { kBlowfishCbc.decrypt(text->data(), Size(*text)); });
    }
}

TEST(CipherOracle, BlowfishMatchesLibcryptoWithKeysOfEveryLength) {
    static BlowfishContext forth, back;
    for (int length = 1; length <= 72 && !HasFatalFailure(); length++) {
        const ByteString key = RandomBytes(length), iv = RandomBytes(8);
        BlowfishSetKey(&forth, key.data(), length);
        SetIv(iv, forth.iv);
        back = forth;
        CompareStreams(
            "BF-CBC", key, iv,
            [&](ByteString* text) {
                BlowfishCbcEncrypt(text->data(), text->data(), Size(*text), &forth);
            },
            [&](ByteString* text) {
                BlowfishCbcDecrypt(text->data(), text->data(), Size(*text), &back);
            });
    }
}

// The result of SSH-1 for a buffer, composed of libcrypto's single passes.
TEST(CipherOracle, TripleDesOfSsh1IsThreePasses) {
    const ByteString zero(8);
    for (int round = 0; round < kRounds / 2; round++) {
        const ByteString key = RandomBytes(32);
        ByteString part[3];
        for (size_t i = 0; i < 3; i++) part[i].assign(&key[8 * i], &key[8 * i] + 8);
        Peer first("DES-CBC", part[0], zero, true), second("DES-CBC", part[1], zero, false);
        Peer third("DES-CBC", part[2], zero, true);
        kSsh1TripleDes.setKey(key.data());
        for (int text = 0; text < 3; text++) {
            const ByteString blocks = RandomBlocks();
            ByteString ours = blocks;
            kSsh1TripleDes.encrypt(ours.data(), Size(ours));
            ASSERT_EQ(ToHex(ours), ToHex(third.Run(second.Run(first.Run(blocks)))));
            kSsh1TripleDes.decrypt(ours.data(), Size(ours));
            ASSERT_EQ(ToHex(ours), ToHex(blocks));
        }
    }
}

static ByteString SwapWords(ByteString text) {
    for (size_t i = 0; i < text.size(); i += 4) {
        std::swap(text[i], text[i + 3]);
        std::swap(text[i + 1], text[i + 2]);
    }
    return text;
}

TEST(CipherOracle, BlowfishOfSsh1IsTheCommonOneWithEachWordReversed) {
    const ByteString zero(8);
    for (int round = 0; round < kRounds / 6; round++) {
        const ByteString key = RandomBytes(32);
        Peer forth("BF-CBC", key, zero, true), back("BF-CBC", key, zero, false);
        kSsh1Blowfish.setKey(key.data());
        for (int text = 0; text < 3; text++) {
            const ByteString blocks = RandomBlocks();
            ByteString ours = blocks;
            kSsh1Blowfish.encrypt(ours.data(), Size(ours));
            ASSERT_EQ(ToHex(ours), ToHex(SwapWords(forth.Run(SwapWords(blocks)))));
            ours = blocks;
            kSsh1Blowfish.decrypt(ours.data(), Size(ours));
            ASSERT_EQ(ToHex(ours), ToHex(SwapWords(back.Run(SwapWords(blocks)))));
        }
    }
}

TEST(CipherOracle, DesOfSsh1MatchesLibcrypto) {
    const ByteString zero(8);
    for (int round = 0; round < kRounds && !HasFatalFailure(); round++) {
        const ByteString key = RandomBytes(8);
        kSsh1Des.setKey(key.data());
        CompareStreams(
            "DES-CBC", key, zero,
            [](ByteString* text) { kSsh1Des.encrypt(text->data(), Size(*text)); },
            [](ByteString* text) { kSsh1Des.decrypt(text->data(), Size(*text)); });
    }
}

// The Monte Carlo tests of NIST SP 800-20 beside libcrypto: ECB and CBC, both ways, with three
// different keys, with K1 = K3, and with all three equal, which is single DES. The standard has 400
// keys of 10,000 blocks each; these are the first of them.
static const int kMonteKeys = 8;
static const int kMonteBlocks = 10000;

struct Monte {
    ByteString last[3];  // the last three results, the newest first
    void Take(const ByteString& result) {
        last[2] = last[1];
        last[1] = last[0];
        last[0] = result;
    }
};

static ByteString Xor(ByteString a, const ByteString& b) {
    for (size_t i = 0; i < a.size(); i++) a[i] = static_cast<uint8_t>(a[i] ^ b[i]);
    return a;
}

// `different` is how many of the three keys are: 1, 2 (the first and the last are one) or 3.
static ByteString Keys(const ByteString& k1, const ByteString& k2, const ByteString& k3,
                       int different) {
    ByteString key = k1;
    const ByteString& second = different == 1 ? k1 : k2;
    const ByteString& third = different == 3 ? k3 : k1;
    key.insert(key.end(), second.begin(), second.end());
    key.insert(key.end(), third.begin(), third.end());
    return key;
}

static void NextKey(ByteString* key, const Monte& results, int different) {
    *key = Xor(*key, Keys(results.last[0], results.last[1], results.last[2], different));
}

static void TripleDesBlock(ByteString* text, const DesContext contexts[3], bool encrypt) {
    uint32_t b[2] = {LoadBig<uint32_t>(&(*text)[0]), LoadBig<uint32_t>(&(*text)[4])};
    auto outer = encrypt ? DesEncryptBlock : DesDecryptBlock;
    auto inner = encrypt ? DesDecryptBlock : DesEncryptBlock;
    outer(b[0], b[1], b, &contexts[encrypt ? 0 : 2]);
    inner(b[0], b[1], b, &contexts[1]);
    outer(b[0], b[1], b, &contexts[encrypt ? 2 : 0]);
    StoreBig<uint32_t>(&(*text)[0], b[0]);
    StoreBig<uint32_t>(&(*text)[4], b[1]);
}

// Direction, and how many keys are different.
class MonteCarlo : public testing::TestWithParam<std::tuple<bool, int>> {
  protected:
    const bool encrypt = std::get<0>(GetParam());
    const int different = std::get<1>(GetParam());
    ByteString key = Keys(FromHex("0123456789abcdef"), FromHex("23456789abcdef01"),
                          FromHex("456789abcdef0123"), different);
};
INSTANTIATE_TEST_SUITE_P(TripleDes, MonteCarlo,
                         testing::Combine(testing::Bool(), testing::Values(1, 2, 3)),
                         [](const auto& info) {
                             return std::string(std::get<0>(info.param) ? "Encrypt" : "Decrypt")
                                 .append(std::to_string(std::get<1>(info.param)));
                         });

TEST_P(MonteCarlo, EcbMatchesLibcrypto) {
    ByteString block = FromHex("4e6f772069732074");
    for (int k = 0; k < kMonteKeys; k++) {
        DesContext contexts[3];
        SetDesKeys(key, contexts);
        Peer peer("DES-EDE3-ECB", key, ByteString(8), encrypt);
        ByteString theirs = block;
        Monte results;
        for (int i = 0; i < kMonteBlocks; i++) {
            TripleDesBlock(&block, contexts, encrypt);
            theirs = peer.Run(theirs);
            results.Take(block);
        }
        ASSERT_EQ(ToHex(block), ToHex(theirs)) << k;
        NextKey(&key, results, different);
    }
}

TEST_P(MonteCarlo, CbcMatchesLibcrypto) {
    ByteString input = FromHex("6d65206f6f6b2061"), iv = FromHex("1234567890abcdef");
    for (int k = 0; k < kMonteKeys; k++) {
        DesContext contexts[3];
        SetDesKeys(key, contexts);
        SetIv(iv, contexts[0].encryptIv);
        SetIv(iv, contexts[0].decryptIv);
        Peer peer("DES-EDE3-CBC", key, iv, encrypt);
        ByteString theirs, before = iv, next = input;
        Monte results;
        for (int i = 0; i < kMonteBlocks; i++) {
            ByteString output = next;
            (encrypt ? TripleDesCbcEncrypt : TripleDesCbcDecrypt)(output.data(), output.data(), 8,
                                                                  contexts);
            theirs = peer.Run(next);
            // Encryption takes the output before last as its next input, decryption the last.
            next = encrypt ? before : output;
            before = output;
            results.Take(output);
        }
        ASSERT_EQ(ToHex(results.last[0]), ToHex(theirs)) << k;
        NextKey(&key, results, different);
        input = encrypt ? results.last[1] : results.last[0];
        iv = results.last[0];
    }
}
