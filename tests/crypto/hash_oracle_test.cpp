// SPDX-License-Identifier: MIT
// Compares hashes and HMAC with libcrypto on random input, cut into random pieces.
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "crypto_test_support.h"

static const int kRounds = 4000;

static std::string Judge(const EVP_MD* algorithm, const ByteString& message) {
    uint8_t digest[EVP_MAX_MD_SIZE];
    unsigned size = 0;
    EXPECT_EQ(EVP_Digest(message.data(), message.size(), digest, &size, algorithm, nullptr), 1);
    return ToHex(digest, size);
}

template <typename Context, int size>
static std::string InPieces(const ByteString& message, void (*init)(Context*),
                            void (*update)(Context*, const uint8_t*, int),
                            void (*final)(Context*, uint8_t*)) {
    Context context;
    uint8_t digest[size];
    init(&context);
    for (int at = 0; at < Size(message);) {
        int piece = std::min(RandomBelow(RandomBelow(8) == 0 ? 2000 : 150), Size(message) - at);
        update(&context, message.data() + at, piece);
        at += piece;
    }
    final(&context, digest);
    return ToHex(digest, size);
}

static ByteString RandomMessage() {
    return RandomBytes(RandomBelow(RandomBelow(20) == 0 ? 20000 : 700));
}

static void CompareSha1() {
    for (int round = 0; round < kRounds; round++) {
        const ByteString message = RandomMessage();
        ASSERT_EQ((InPieces<Sha1Context, kSha1Size>(message, Sha1Init, Sha1Update, Sha1Final)),
                  Judge(EVP_sha1(), message));
    }
}

TEST(HashOracle, Sha1MatchesLibcrypto) { CompareSha1(); }

TEST(HashOracle, PortableSha1MatchesLibcrypto) {
    Sha1Compressor fastest = sha1_compressor;
    sha1_compressor = Sha1CompressPortable;
    CompareSha1();
    sha1_compressor = fastest;
}

static void CompareSha512() {
    for (int round = 0; round < kRounds; round++) {
        const ByteString message = RandomMessage();
        ASSERT_EQ(
            (InPieces<Sha512Context, kSha512Size>(message, Sha512Init, Sha512Update, Sha512Final)),
            Judge(EVP_sha512(), message));
    }
}

TEST(HashOracle, Sha512MatchesLibcrypto) { CompareSha512(); }

TEST(HashOracle, PortableSha512MatchesLibcrypto) {
    Sha512Compressor fastest = sha512_compressor;
    sha512_compressor = Sha512CompressPortable;
    CompareSha512();
    sha512_compressor = fastest;
}

TEST(HashOracle, Md5MatchesLibcrypto) {
    for (int round = 0; round < kRounds; round++) {
        const ByteString message = RandomMessage();
        ASSERT_EQ((InPieces<Md5Context, kMd5Size>(message, Md5Init, Md5Update, Md5Final)),
                  Judge(EVP_md5(), message));
    }
}

TEST(HashOracle, HmacSha1MatchesLibcryptoWithKeysUpTo64Bytes) {
    for (int round = 0; round < kRounds; round++) {
        const ByteString key = RandomBytes(RandomBelow(65)), message = RandomMessage();
        uint8_t ours[kSha1Size], theirs[EVP_MAX_MD_SIZE];
        unsigned size = 0;
        HmacSha1(key.data(), Size(key), message.data(), Size(message), ours);
        ASSERT_NE(HMAC(EVP_sha1(), key.empty() ? "" : static_cast<const void*>(key.data()),
                       Size(key), message.data(), message.size(), theirs, &size),
                  nullptr);
        ASSERT_EQ(ToHex(ours, kSha1Size), ToHex(theirs, size));
    }
}
