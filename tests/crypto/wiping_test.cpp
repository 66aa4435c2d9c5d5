// SPDX-License-Identifier: MIT
// Memory that held a secret is wiped before it is released. The sanitizer's hook checks every heap
// block at its release, and a search checks the stack after a procedure has returned.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <functional>

#include "crypto/block_ciphers.h"
#include "crypto/ciphers.h"
#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "crypto/public_key.h"
#include "crypto_test_support.h"
#include "tests/support/leftovers.h"
#include "text/bytes.h"

// ---------------------------------------------------------------- heap

extern "C" {
// A function of the sanitizer runtime; null in a build without sanitizers.
[[gnu::weak]] int __sanitizer_install_malloc_and_free_hooks(void (*)(const volatile void*, size_t),
                                                            void (*)(const volatile void*));
[[gnu::weak]] size_t __sanitizer_get_allocated_size(const volatile void*);
}

static bool watching = false;
static int blocks_released = 0;
static int blocks_not_wiped = 0;

static void SeeAllocation(const volatile void*, size_t) {}

static void SeeRelease(const volatile void* block) {
    if (!watching || block == nullptr) return;
    watching = false;
    const volatile uint8_t* bytes = static_cast<const volatile uint8_t*>(block);
    size_t left = __sanitizer_get_allocated_size(block);
    while (left > 0 && bytes[left - 1] == 0) left--;
    blocks_released++;
    if (left > 0) blocks_not_wiped++;
    watching = true;
}

class HeapWiping : public testing::Test {
  protected:
    void SetUp() override {
        if (__sanitizer_install_malloc_and_free_hooks == nullptr) {
            GTEST_SKIP() << "the allocator has no hooks in this build";
        }
        static const int kInstalled =
            __sanitizer_install_malloc_and_free_hooks(SeeAllocation, SeeRelease);
        ASSERT_NE(kInstalled, 0);
    }
    // Runs work that allocates and releases only blocks of crypto/.
    template <typename Work>
    static void Watch(Work work) {
        blocks_released = blocks_not_wiped = 0;
        watching = true;
        work();
        watching = false;
    }
};

TEST_F(HeapWiping, HookTellsAWipedBlockFromOneThatIsNot) {
    Watch([] {
        void* volatile block = malloc(40);
        memset(block, 1, 40);
        WipeAndFree(block, 39);
        block = malloc(40);
        memset(block, 1, 40);
        WipeAndFree(block, 40);
    });
    EXPECT_EQ(blocks_released, 2);
    EXPECT_EQ(blocks_not_wiped, 1);
}

TEST_F(HeapWiping, KeyAgreementLeavesNothing) {
    clock_milliseconds = 3;
    Watch([] {
        DhContext context = {};
        for (int bits : {kDhExponentBits, 0}) {
            DhSetup(&context);
            ConstBignum e = DhGenerate(&context, bits);
            BignumFree(DhSharedSecret(&context, e));
        }
        DhForget(&context);
    });
    EXPECT_GE(blocks_released, 18);
    EXPECT_EQ(blocks_not_wiped, 0);
}

TEST_F(HeapWiping, HashingOfASecretNumberNeedsNoHeap) {
    for (int bits : {0, 1, 7, 8, 15, 16, 17, 1023, 1024}) {
        Number secret = RandomNumber(bits, 0);
        Sha1Context context;
        Sha1Init(&context);
        Watch([&] { Sha1UpdateMpint(&context, secret.get()); });
        EXPECT_EQ(blocks_released, 0) << bits;
    }
}

TEST_F(HeapWiping, EncryptionWithAPublicKeyLeavesNothing) {
    const Number modulus = RandomNumber(1024, 0), exponent(BignumFromUint32(35));
    const RsaKey key = {1024, 128, modulus.get(), exponent.get()};
    uint8_t buffer[128] = "the session key";
    Watch([&] { EXPECT_TRUE(RsaEncrypt(buffer, 32, &key)); });
    EXPECT_GE(blocks_released, 3);
    EXPECT_EQ(blocks_not_wiped, 0);
}

TEST_F(HeapWiping, EveryOperationOnIntegersLeavesNothing) {
    const Number a = RandomNumber(700, 0), b = RandomNumber(300, 0), m = RandomNumber(512, 0);
    Watch([&] {
        BignumFree(BignumCopy(a.get()));
        BignumFree(BignumShiftRight(a.get(), 33));
        BignumFree(BignumMod(a.get(), m.get()));
        BignumFree(BignumDiv(a.get(), b.get()));
        BignumFree(BignumMulAdd(a.get(), b.get(), m.get()));
        BignumFree(BignumModMul(a.get(), b.get(), m.get()));
        BignumFree(BignumModPow(a.get(), b.get(), m.get()));
        BignumFree(BignumModInverse(b.get(), m.get()));
    });
    EXPECT_GE(blocks_released, 8 + 5);
    EXPECT_EQ(blocks_not_wiped, 0);
}

// ---------------------------------------------------------------- stack

TEST(StackWiping, SearchFindsWhatIsLeftThere) {
    const ByteString secret = RandomBytes(16);
    EXPECT_GT(LeftOnStack(secret.data(),
                          [&] {
                              [[maybe_unused]] volatile uint8_t copy[16];
                              for (size_t i = 0; i < 16; i++) copy[i] = secret[i];
                          }),
              0);
}

TEST(StackWiping, DesLeavesNoRoundKeys) {
    static DesContext contexts[3];
    static uint8_t text[32];
    DesSetKey(0x01234567, 0x89ABCDEF, &contexts[0]);
    contexts[1] = contexts[2] = contexts[0];
    auto round_key = [](int i) {
        return uint64_t{contexts[0].subkeysOdd[i]} << 32 | contexts[0].subkeysEven[i];
    };
    const uint64_t forth[2] = {round_key(0), round_key(1)};
    const uint64_t back[2] = {round_key(15), round_key(14)};
    const std::function<void()> kUses[] = {
        [] { DesCbcEncrypt(text, text, 32, contexts); },
        [] { DesCbcDecrypt(text, text, 32, contexts); },
        [] { TripleDesCbcEncrypt(text, text, 32, contexts); },
        [] { TripleDesCbcDecrypt(text, text, 32, contexts); },
        [] { TripleDesPassesEncrypt(text, text, 32, contexts); },
        [] { TripleDesPassesDecrypt(text, text, 32, contexts); },
        [] {
            static uint32_t block[2];
            DesEncryptBlock(1, 2, block, contexts);
        },
        [] {
            static uint32_t block[2];
            DesDecryptBlock(1, 2, block, contexts);
        },
    };
    for (size_t i = 0; i < std::size(kUses); i++) {
        EXPECT_EQ(LeftOnStack(forth, kUses[i]) + LeftOnStack(back, kUses[i]), 0) << i;
    }
}

TEST(StackWiping, HmacLeavesNeitherKeyNorPadsNorPreparedContexts) {
    const ByteString key = RandomBytes(20), message = RandomBytes(100);
    static uint8_t packet[120];
    static Sha1Context inner, outer;
    HmacSha1Prepare(&inner, &outer, key.data(), 20);
    ByteString inner_pad = key, outer_pad = key;
    for (uint8_t& byte : inner_pad) byte = static_cast<uint8_t>(byte ^ 0x36);
    for (uint8_t& byte : outer_pad) byte = static_cast<uint8_t>(byte ^ 0x5C);
    const std::function<void()> kUses[] = {
        [&] { HmacSha1(key.data(), 20, message.data(), 100, packet); },
        [&] { kHmacSha1.setOutgoingKey(key.data()); },
        [] { kHmacSha1.generate(packet, 100, 1); },
        [&] { kHmacSha1.setIncomingKey(key.data()); },
        [] { EXPECT_EQ(kHmacSha1.verify(packet, 100, 1), 1); },
    };
    for (const std::function<void()>& use : kUses) {
        EXPECT_EQ(LeftOnStack(key.data(), use), 0);
        EXPECT_EQ(LeftOnStack(inner_pad.data(), use), 0);
        EXPECT_EQ(LeftOnStack(outer_pad.data(), use), 0);
        EXPECT_EQ(LeftOnStack(inner.state, use), 0);
        EXPECT_EQ(LeftOnStack(outer.state, use), 0);
    }
    WipeMacKeys();
}

// With the expected MAC an attacker could forge a packet without the key.
TEST(StackWiping, ExpectedMacIsNotLeftAfterAMismatch) {
    const ByteString key = RandomBytes(20);
    static uint8_t packet[120];
    kHmacSha1.setOutgoingKey(key.data());
    kHmacSha1.setIncomingKey(key.data());
    kHmacSha1.generate(packet, 100, 1);
    const ByteString expected(packet + 100, packet + 120);
    packet[100] ^= 1;
    static int verified = 1;  // static: a check on that stack would overwrite it
    const auto verify = [] { verified = kHmacSha1.verify(packet, 100, 1); };
    EXPECT_EQ(LeftOnStack(expected.data(), verify), 0);
    EXPECT_EQ(verified, 0);
    WipeMacKeys();
}

TEST(StackWiping, HmacLeavesNoInnerDigest) {
    const ByteString key = RandomBytes(20), message = RandomBytes(100);
    static uint8_t packet[120], mac[kSha1Size];
    const auto inner_digest = [&](const ByteString& hashed) {
        ByteString input = key, digest(kSha1Size);
        input.resize(64);
        for (uint8_t& byte : input) byte = static_cast<uint8_t>(byte ^ 0x36);
        input.insert(input.end(), hashed.begin(), hashed.end());
        Sha1(input.data(), Size(input), digest.data());
        return digest;
    };
    const ByteString of_message = inner_digest(message);
    const ByteString of_packet = inner_digest(ByteString(4 + 100));  // sequence number 0
    kHmacSha1.setOutgoingKey(key.data());
    kHmacSha1.setIncomingKey(key.data());
    EXPECT_EQ(
        LeftOnStack(of_message.data(), [&] { HmacSha1(key.data(), 20, message.data(), 100, mac); }),
        0);
    EXPECT_EQ(LeftOnStack(of_packet.data(), [] { kHmacSha1.generate(packet, 100, 0); }), 0);
    EXPECT_EQ(LeftOnStack(of_packet.data(), [] { kHmacSha1.verify(packet, 100, 0); }), 0);
    WipeMacKeys();
}

// The message schedules of one block (FIPS 180-2, 6.1.2 and 6.3.2).
static std::vector<uint32_t> Sha1Schedule(const uint8_t block[64]) {
    std::vector<uint32_t> w(80);
    for (size_t t = 0; t < 16; t++) w[t] = LoadBig<uint32_t>(block + 4 * t);
    for (size_t t = 16; t < 80; t++)
        w[t] = std::rotl(w[t - 3] ^ w[t - 8] ^ w[t - 14] ^ w[t - 16], 1);
    return w;
}

static std::vector<uint64_t> Sha512Schedule(const uint8_t block[128]) {
    const auto sigma = [](uint64_t x, int first, int second, int shift) {
        return std::rotr(x, first) ^ std::rotr(x, second) ^ x >> shift;
    };
    std::vector<uint64_t> w(80);
    for (size_t t = 0; t < 16; t++) w[t] = LoadBig<uint64_t>(block + 8 * t);
    for (size_t t = 16; t < 80; t++)
        w[t] = sigma(w[t - 2], 19, 61, 6) + w[t - 7] + sigma(w[t - 15], 1, 8, 7) + w[t - 16];
    return w;
}

// A schedule reveals the whole block. The code keeps sixteen words of it at a time.
TEST(StackWiping, PortableSha1LeavesNoWordsOfItsSchedule) {
    const ByteString block = RandomBytes(64);
    const std::vector<uint32_t> w = Sha1Schedule(block.data());
    static uint32_t state[5];
    const auto compress = [&] { Sha1CompressPortable(state, block.data(), 1); };
    for (size_t t = 0; t < 80; t += 4) EXPECT_EQ(LeftOnStack(&w[t], compress), 0) << t;
}

// The state before a block is a key if the block before was a pad; the state after it may be a MAC.
TEST(StackWiping, PortableSha1LeavesNoStateBeforeOrAfterABlock) {
    const ByteString blocks = RandomBytes(2 * 64), first = RandomBytes(20);
    uint32_t states[3][5];
    memcpy(states[0], first.data(), sizeof(states[0]));
    for (size_t i = 0; i < 2; i++) {
        memcpy(states[i + 1], states[i], sizeof(states[i]));
        Sha1CompressPortable(states[i + 1], blocks.data() + 64 * i, 1);
    }
    static uint32_t state[5];
    const auto compress = [&] {
        memcpy(state, states[0], sizeof(state));
        Sha1CompressPortable(state, blocks.data(), 2);
    };
    for (const auto& each : states) EXPECT_EQ(LeftOnStack(each, compress), 0) << &each - states;
}

TEST(StackWiping, PortableSha512LeavesNoWordsOfItsScheduleAndNoSums) {
    const ByteString block = RandomBytes(128);
    const std::vector<uint64_t> w = Sha512Schedule(block.data());
    static uint64_t state[8];
    const auto compress = [&] { Sha512CompressPortable(state, block.data(), 1); };
    for (size_t t = 0; t < 80; t += 2) {
        const uint64_t sums[2] = {w[t] + kSha512Constants[t], w[t + 1] + kSha512Constants[t + 1]};
        EXPECT_EQ(LeftOnStack(&w[t], compress), 0) << t;
        EXPECT_EQ(LeftOnStack(sums, compress), 0) << t;
    }
}

// The compiler may leave the pair of sums on which it works, which begins with an even word. Pairs
// that begin with an odd word are next to each other in the schedule only.
TEST(StackWiping, TwoLaneSha512LeavesNothingOfItsSchedules) {
    const Sha512Compressor wide = Sha512CompressWide();
    if (wide == nullptr) GTEST_SKIP() << "this processor has no wide vectors";
    const ByteString blocks = RandomBytes(2 * 128);
    static uint64_t state[8];
    for (int count = 1; count <= 2; count++) {
        for (int block = 0; block < count; block++) {
            const std::vector<uint64_t> w = Sha512Schedule(blocks.data() + 128 * block);
            for (size_t t = 1; t < 79; t += 12) {
                const uint64_t sums[2] = {w[t] + kSha512Constants[t],
                                          w[t + 1] + kSha512Constants[t + 1]};
                EXPECT_EQ(LeftOnStack(sums, [&] { wide(state, blocks.data(), count); }), 0)
                    << count << ' ' << block << ' ' << t;
            }
        }
    }
}

TEST(StackWiping, HashesLeaveNothingOfTheirMessage) {
    const ByteString message = RandomBytes(40);
    static uint8_t digest[kSha512Size];
    auto md5 = [&] {
        Md5Context context;
        Md5Init(&context);
        Md5Update(&context, message.data(), 40);
        Md5Final(&context, digest);
    };
    EXPECT_EQ(LeftOnStack(message.data(), [&] { Sha1(message.data(), 40, digest); }), 0);
    // With vector instructions and low optimisation, a compiler leaves loaded values on the stack.
    Sha512Compressor fastest = sha512_compressor;
    sha512_compressor = Sha512CompressPortable;
    EXPECT_EQ(LeftOnStack(message.data(), [&] { Sha512(message.data(), 40, digest); }), 0);
    sha512_compressor = fastest;
    EXPECT_EQ(LeftOnStack(message.data(), md5), 0);
}
