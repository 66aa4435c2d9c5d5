// SPDX-License-Identifier: MIT
// Prints the results of seeded work, one line each: integers of every size, hashes of input split
// anywhere, ciphers in both directions, and the terminal after random streams. A processor passes
// if it prints the same lines as this machine.
#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "crypto/bignum.h"
#include "crypto/ciphers.h"
#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "tests/terminal/terminal_state.h"
#include "windows_ce.h"

BOOL MessageBeep(UINT) { return TRUE; }

void GetSystemTime(SYSTEMTIME* time) { *time = {}; }

namespace {

typedef std::vector<uint8_t> ByteVector;

std::mt19937_64 g_random(20260301);

int Below(int limit) { return static_cast<int>(g_random() % static_cast<uint64_t>(limit)); }

ByteVector Drawn(int count) {
    ByteVector bytes(static_cast<size_t>(count));
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(g_random());
    return bytes;
}

int Size(const ByteVector& bytes) { return static_cast<int>(bytes.size()); }

// FNV-1a over all results.
struct Digest {
    uint64_t value = 0xcbf29ce484222325;
    void Add(const void* bytes, size_t count) {
        for (size_t i = 0; i < count; i++)
            value = (value ^ static_cast<const uint8_t*>(bytes)[i]) * 0x100000001b3;
    }
    void AddNumber(uint32_t number) {
        for (int shift = 0; shift < 32; shift += 8) {
            const uint8_t byte = static_cast<uint8_t>(number >> shift);
            Add(&byte, 1);
        }
    }
    // Adds the integer to the hash and releases it.
    void AddInteger(Bignum a) {
        AddNumber(a ? a[0] : 0xFFFFFFFF);
        for (int i = 0; a && i < 2 * a[0]; i++) AddNumber(BignumByte(a, i));
        if (a) BignumFree(a);
    }
};

void Print(const char* name, int number, const Digest& digest) {
    printf("%s %d %08x%08x\n", name, number, static_cast<unsigned>(digest.value >> 32),
           static_cast<unsigned>(digest.value));
}

// ---------------------------------------------------------------- integers

Bignum DrawnInteger(int bits) {
    ByteVector bytes = Drawn((bits + 7) / 8);
    if (Below(3) == 0)
        for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(Below(4) ? 0xFF : 0);
    bytes.back() |= 1;
    bytes.front() |= static_cast<uint8_t>(1 << (bits + 7) % 8);
    return BignumFromBytes(bytes.data(), Size(bytes));
}

void AnswerIntegers(int bits) {
    Digest digest;
    Bignum a = DrawnInteger(bits), b = DrawnInteger(1 + Below(2 * bits)), m = DrawnInteger(bits);
    digest.AddInteger(BignumMulAdd(a, b, m));
    digest.AddInteger(BignumMod(b, m));
    digest.AddInteger(BignumDiv(b, m));
    digest.AddInteger(BignumModMul(a, b, m));
    digest.AddInteger(BignumModInverse(a, m));
    digest.AddInteger(BignumShiftRight(b, Below(bits)));
    digest.AddNumber(BignumModSmall(b, static_cast<uint16_t>(1 + Below(65535))));
    if (bits <= 256) digest.AddInteger(BignumModPow(b, a, m));
    BignumFree(a), BignumFree(b), BignumFree(m);
    Print("integers", bits, digest);
}

// ---------------------------------------------------------------- hashes and ciphers

template <typename Context>
void AddCut(void (*update)(Context*, const uint8_t*, int), Context* context,
            const ByteVector& bytes) {
    for (int at = 0; at < Size(bytes);) {
        const int count = std::min(1 + Below(150), Size(bytes) - at);
        update(context, bytes.data() + at, count);
        at += count;
    }
}

void AnswerHashes(int length) {
    Digest digest;
    const ByteVector bytes = Drawn(length);
    uint8_t out[kSha512Size];
    Md5Context md5;
    Md5Init(&md5), AddCut(Md5Update, &md5, bytes), Md5Final(&md5, out);
    digest.Add(out, kMd5Size);
    Sha1Context sha1;
    Sha1Init(&sha1), AddCut(Sha1Update, &sha1, bytes), Sha1Final(&sha1, out);
    digest.Add(out, kSha1Size);
    Sha512Context sha512;
    Sha512Init(&sha512), AddCut(Sha512Update, &sha512, bytes), Sha512Final(&sha512, out);
    digest.Add(out, kSha512Size);
    const ByteVector key = Drawn(1 + Below(100));
    HmacSha1(key.data(), Size(key), bytes.data(), length, out);
    digest.Add(out, kSha1Size);
    digest.AddNumber(Crc32(bytes.data(), length));
    Print("hashes", length, digest);
}

template <typename Cipher>
void AddBothWays(Digest* digest, const Cipher& cipher, int blocks) {
    for (const bool out : {true, false}) {
        ByteVector bytes = Drawn(8 * blocks);
        const int first = 8 * Below(blocks + 1);
        const auto run = out ? cipher.encrypt : cipher.decrypt;
        run(bytes.data(), first);
        run(bytes.data() + first, Size(bytes) - first);
        digest->Add(bytes.data(), bytes.size());
    }
}

void AnswerCiphers(int blocks) {
    Digest digest;
    for (const CipherAlgorithm* cipher : {&kTripleDesCbc, &kBlowfishCbc}) {
        const ByteVector key = Drawn(24), iv = Drawn(8);
        cipher->setOutgoingIv(iv.data()), cipher->setOutgoingKey(key.data());
        cipher->setIncomingIv(iv.data()), cipher->setIncomingKey(key.data());
        AddBothWays(&digest, *cipher, blocks);
    }
    for (const Ssh1Cipher* cipher : {&kSsh1Blowfish, &kSsh1TripleDes, &kSsh1Des}) {
        cipher->setKey(Drawn(32).data());
        AddBothWays(&digest, *cipher, blocks);
    }
    Print("ciphers", blocks, digest);
}

// ---------------------------------------------------------------- the terminal

std::string DrawnStream() {
    static const char kBytes[] =
        "\x1b\x1b[[[;;?>!\"0012345789HJKLMP@XmrhlcnxypqsgABCDtd \r\n\t\b#(";
    std::string text;
    for (int i = 0; i < 400; i++) {
        if (Below(12) == 0) text += static_cast<char>(Below(256));
        text += kBytes[Below(sizeof kBytes - 1)];
        if (Below(6) == 0) {
            const int row = Below(30), column = Below(90);
            text += "\x1b[" + std::to_string(row) + ";" + std::to_string(column) + "H";
        }
        if (Below(9) == 0) text += std::string(static_cast<size_t>(Below(90)), 'x');
    }
    return text;
}

void AnswerTerminal(int number) {
    Digest digest;
    std::string replies;
    NewTerminal();
    FeedWhole(DrawnStream(), &replies);
    digest.Add(replies.data(), replies.size());
    for (const auto& slot : session.screen.slots)
        for (const DWORD word : slot) digest.AddNumber(word);
    for (const int value :
         {session.screen.ring_origin, session.screen.cursor_col, session.screen.cursor_row,
          session.screen.top_margin, session.screen.bottom_margin, session.parser.parser_state,
          session.modes.g0_set, session.split.upper_height})
        digest.AddNumber(static_cast<uint32_t>(value));
    Print("terminal", number, digest);
}

}  // namespace

int main() {
    for (int bits = 1; bits <= 2100; bits += bits < 140 ? 1 : 41) AnswerIntegers(bits);
    for (int length = 0; length <= 600; length += 1 + length / 64) AnswerHashes(length);
    for (int blocks = 1; blocks <= 12; blocks++) AnswerCiphers(blocks);
    for (int number = 1; number <= 60; number++) AnswerTerminal(number);
}
