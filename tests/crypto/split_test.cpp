// SPDX-License-Identifier: MIT
// Splitting the input does not change the result: hashes at every split of messages of many
// lengths, compared with libcrypto's digest; ciphers at every split of a stream, compared with a
// single call.
#include <gtest/gtest.h>
#include <openssl/evp.h>

#include "crypto/ciphers.h"
#include "crypto/hashes.h"
#include "crypto_test_support.h"

// ---------------------------------------------------------------- hashes

struct HashRow {
    std::string (*in_pieces)(const ByteString& message, int length, int first, int second);
    const EVP_MD* (*judge)();
};

// The digest of the first `length` bytes, cut at two places.
template <typename Context, void (*Init)(Context*), void (*Update)(Context*, const uint8_t*, int),
          void (*Final)(Context*, uint8_t*), int size>
static std::string InPieces(const ByteString& message, int length, int first, int second) {
    Context context;
    uint8_t digest[size];
    Init(&context);
    Update(&context, message.data(), first);
    Update(&context, message.data() + first, second - first);
    Update(&context, message.data() + second, length - second);
    Final(&context, digest);
    return std::string(reinterpret_cast<char*>(digest), size);
}

static const HashRow kSha1 = {InPieces<Sha1Context, Sha1Init, Sha1Update, Sha1Final, kSha1Size>,
                              EVP_sha1};
static const HashRow kMd5 = {InPieces<Md5Context, Md5Init, Md5Update, Md5Final, kMd5Size>, EVP_md5};
static const HashRow kSha512 = {
    InPieces<Sha512Context, Sha512Init, Sha512Update, Sha512Final, kSha512Size>, EVP_sha512};

static std::string Judge(const HashRow& hash, const ByteString& message, int length) {
    uint8_t digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    EXPECT_EQ(EVP_Digest(message.data(), static_cast<size_t>(length), digest, &size, hash.judge(),
                         nullptr),
              1);
    return std::string(reinterpret_cast<char*>(digest), size);
}

// Every length up to 300, then lengths around each block boundary up to 1,300.
static void CheckEverySplitInTwo(const HashRow& hash) {
    const ByteString message = RandomBytes(1300);
    for (int length = 0; length <= 1300; length++) {
        if (length > 300 && (length + 1) % 64 > 2) continue;
        const std::string digest = Judge(hash, message, length);
        for (int at = 0; at <= length; at++) {
            ASSERT_EQ(hash.in_pieces(message, length, at, at), digest) << length << " at " << at;
        }
    }
}

static void CheckEverySplitInThree(const HashRow& hash, int length) {
    const ByteString message = RandomBytes(length);
    const std::string digest = Judge(hash, message, length);
    for (int first = 0; first <= length; first++) {
        for (int second = first; second <= length; second++) {
            ASSERT_EQ(hash.in_pieces(message, length, first, second), digest)
                << first << " and " << second;
        }
    }
}

// Runs `work` with one form of a compression function.
template <typename Compressor, typename Work>
static void WithForm(Compressor* in_use, Compressor form, Work work) {
    Compressor before = *in_use;
    *in_use = form;
    work();
    *in_use = before;
}

TEST(Splits, Sha1InTwoAtEveryByteIsTheWhole) { CheckEverySplitInTwo(kSha1); }

TEST(Splits, Sha1PortableInTwoAtEveryByteIsTheWhole) {
    WithForm(&sha1_compressor, &Sha1CompressPortable, [] { CheckEverySplitInTwo(kSha1); });
}

TEST(Splits, Md5InTwoAtEveryByteIsTheWhole) { CheckEverySplitInTwo(kMd5); }

TEST(Splits, Sha512InTwoAtEveryByteIsTheWhole) { CheckEverySplitInTwo(kSha512); }

TEST(Splits, Sha512PortableInTwoAtEveryByteIsTheWhole) {
    WithForm(&sha512_compressor, &Sha512CompressPortable, [] { CheckEverySplitInTwo(kSha512); });
}

TEST(Splits, HashesInThreeAtEveryTwoBytesAreTheWhole) {
    CheckEverySplitInThree(kSha1, 150);
    CheckEverySplitInThree(kMd5, 150);
    CheckEverySplitInThree(kSha512, 280);
}

// ---------------------------------------------------------------- ciphers

static const int kBlocks = 100;

class CipherSplits : public testing::Test {
  protected:
    const ByteString key = RandomBytes(32), iv = RandomBytes(8), text = RandomBytes(8 * kBlocks);
    void TearDown() override { WipeCipherKeys(); }

    void Start(const CipherAlgorithm& cipher) {
        cipher.setOutgoingKey(key.data());
        cipher.setIncomingKey(key.data());
        cipher.setOutgoingIv(iv.data());
        cipher.setIncomingIv(iv.data());
    }
    void Start(const Ssh1Cipher& cipher) { cipher.setKey(key.data()); }

    // Both directions over the first `blocks` blocks, cut at two places.
    template <typename Cipher>
    ByteString InPieces(const Cipher& cipher, int blocks, int first, int second) {
        ByteString out(text.begin(), text.begin() + 8 * blocks), in = out;
        Start(cipher);
        auto run = [&](void (*work)(uint8_t*, int), uint8_t* bytes) {
            work(bytes, 8 * first);
            work(bytes + 8 * first, 8 * (second - first));
            work(bytes + 8 * second, 8 * (blocks - second));
        };
        run(cipher.encrypt, out.data());
        run(cipher.decrypt, in.data());
        out.insert(out.end(), in.begin(), in.end());
        return out;
    }
    template <typename Cipher>
    void CheckEverySplit(const Cipher& cipher) {
        const ByteString whole = InPieces(cipher, kBlocks, 0, kBlocks);
        for (int at = 0; at <= kBlocks; at++) {
            ASSERT_EQ(InPieces(cipher, kBlocks, at, at), whole) << at;
        }
        const ByteString few = InPieces(cipher, 12, 0, 12);
        for (int first = 0; first <= 12; first++) {
            for (int second = first; second <= 12; second++) {
                ASSERT_EQ(InPieces(cipher, 12, first, second), few) << first << ", " << second;
            }
        }
        ASSERT_EQ(BlockByBlock(cipher), whole);
    }
    template <typename Cipher>
    ByteString BlockByBlock(const Cipher& cipher) {
        ByteString out = text, in = text;
        Start(cipher);
        for (int at = 0; at < 8 * kBlocks; at += 8) {
            cipher.encrypt(out.data() + at, 8);
            cipher.decrypt(in.data() + at, 8);
        }
        out.insert(out.end(), in.begin(), in.end());
        return out;
    }
};

TEST_F(CipherSplits, TripleDesOfSsh2InPiecesIsOneStream) { CheckEverySplit(kTripleDesCbc); }

TEST_F(CipherSplits, BlowfishOfSsh2InPiecesIsOneStream) { CheckEverySplit(kBlowfishCbc); }

TEST_F(CipherSplits, TripleDesOfSsh1InPiecesIsOneStream) { CheckEverySplit(kSsh1TripleDes); }

TEST_F(CipherSplits, BlowfishOfSsh1InPiecesIsOneStream) { CheckEverySplit(kSsh1Blowfish); }

TEST_F(CipherSplits, DesOfSsh1InPiecesIsOneStream) { CheckEverySplit(kSsh1Des); }
