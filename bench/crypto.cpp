// SPDX-License-Identifier: MIT
// Compares the speed of crypto/ with libcrypto and GMP, in one process and one run.
//
// Each line measures both sides in turn, long enough to find a quiet moment of the machine, and
// compares the best times: other work on the machine only adds time. A child process measures SHA-1
// again, with libcrypto told not to use the processor's SHA instructions.
#define OPENSSL_SUPPRESS_DEPRECATED
#include <gmp.h>
#include <openssl/blowfish.h>
#include <openssl/des.h>
#include <openssl/md5.h>
#include <openssl/sha.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "crypto/bignum.h"
#include "crypto/block_ciphers.h"
#include "crypto/hashes.h"
#include "crypto/long_division.h"
#include "windows_ce.h"

// The benchmarks draw no random numbers.
void GetSystemTime(SYSTEMTIME* time) { *time = {}; }

static const int kBufferSize = 32768;
static const int kMinRounds = 60;
static const double kMinSeconds = 0.3;  // for each line
static std::vector<uint8_t> buffer(kBufferSize, 0x5A);

static double Seconds(const std::function<void()>& work) {
    auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

struct Times {
    double ours;
    double theirs;
};

static Times Compare(const std::function<void()>& ours, const std::function<void()>& theirs) {
    Times best = {1e9, 1e9};
    double spent = 0;
    for (int i = 0; i < kMinRounds || spent < kMinSeconds; i++) {
        Times round = {Seconds(ours), Seconds(theirs)};
        best.ours = std::min(best.ours, round.ours);
        best.theirs = std::min(best.theirs, round.theirs);
        spent += round.ours + round.theirs;
    }
    return best;
}

static void PrintSpeed(const char* what, const Times& times) {
    printf("%-58s %8.1f MB/s %8.1f MB/s %6.2f times its speed\n", what,
           kBufferSize / times.ours / 1e6, kBufferSize / times.theirs / 1e6,
           times.theirs / times.ours);
}

static void BenchTripleDes() {
    DesContext ours[3] = {};
    DES_key_schedule theirs[3];
    for (int i = 0; i < 3; i++) {
        DES_cblock key = {1, 2, 3, 4, 5, 6, 7, static_cast<uint8_t>(8 + i)};
        DES_set_key_unchecked(&key, &theirs[i]);
        DesSetKey(0x01020304, 0x05060708u + static_cast<uint32_t>(i), &ours[i]);
    }
    DES_cblock iv = {};
    auto peer = [&](int direction) {
        DES_ede3_cbc_encrypt(buffer.data(), buffer.data(), kBufferSize, &theirs[0], &theirs[1],
                             &theirs[2], &iv, direction);
    };
    PrintSpeed(
        "3DES-CBC, encrypt",
        Compare([&] { TripleDesCbcEncrypt(buffer.data(), buffer.data(), kBufferSize, ours); },
                [&] { peer(DES_ENCRYPT); }));
    PrintSpeed(
        "3DES-CBC, decrypt",
        Compare([&] { TripleDesCbcDecrypt(buffer.data(), buffer.data(), kBufferSize, ours); },
                [&] { peer(DES_DECRYPT); }));
}

static void BenchBlowfish() {
    static const uint8_t kKey[16] = {1, 2, 3};
    static BlowfishContext ours;
    static BF_KEY theirs;
    BlowfishSetKey(&ours, kKey, sizeof(kKey));
    BF_set_key(&theirs, sizeof(kKey), kKey);
    uint8_t iv[8] = {};
    auto peer = [&](int direction) {
        BF_cbc_encrypt(buffer.data(), buffer.data(), kBufferSize, &theirs, iv, direction);
    };
    PrintSpeed(
        "Blowfish-CBC, encrypt",
        Compare([&] { BlowfishCbcEncrypt(buffer.data(), buffer.data(), kBufferSize, &ours); },
                [&] { peer(BF_ENCRYPT); }));
    PrintSpeed(
        "Blowfish-CBC, decrypt",
        Compare([&] { BlowfishCbcDecrypt(buffer.data(), buffer.data(), kBufferSize, &ours); },
                [&] { peer(BF_DECRYPT); }));
}

static void OurMd5() {
    uint8_t digest[kMd5Size];
    Md5Context context;
    Md5Init(&context);
    Md5Update(&context, buffer.data(), kBufferSize);
    Md5Final(&context, digest);
}

static void BenchSha1(const char* peer) {
    uint8_t digest[kSha512Size];
    auto ours = [&] { Sha1(buffer.data(), kBufferSize, digest); };
    auto theirs = [&] { SHA1(buffer.data(), kBufferSize, digest); };
    Sha1Compressor fastest = sha1_compressor;
    if (fastest != Sha1CompressPortable) {
        PrintSpeed((std::string("SHA-1, with SHA instructions; ") + peer).c_str(),
                   Compare(ours, theirs));
    }
    sha1_compressor = Sha1CompressPortable;
    PrintSpeed((std::string("SHA-1, portable; ") + peer).c_str(), Compare(ours, theirs));
    sha1_compressor = fastest;
}

static void BenchSha512() {
    uint8_t digest[kSha512Size];
    auto ours = [&] { Sha512(buffer.data(), kBufferSize, digest); };
    auto theirs = [&] { SHA512(buffer.data(), kBufferSize, digest); };
    Sha512Compressor fastest = sha512_compressor;
    if (fastest != Sha512CompressPortable) PrintSpeed("SHA-512", Compare(ours, theirs));
    sha512_compressor = Sha512CompressPortable;
    PrintSpeed("SHA-512, portable", Compare(ours, theirs));
    sha512_compressor = fastest;
}

static Bignum FromGmp(const mpz_t value) {
    std::vector<uint8_t> bytes((mpz_sizeinbase(value, 2) + 7) / 8);
    mpz_export(bytes.data(), nullptr, 1, 1, 1, 0, value);
    return BignumFromBytes(bytes.data(), static_cast<int>(bytes.size()));
}

static void BenchModPow(const char* what) {
    gmp_randstate_t random;
    gmp_randinit_default(random);
    mpz_t base, exponent, modulus, result;
    mpz_inits(base, exponent, modulus, result, nullptr);
    mpz_urandomb(modulus, random, 1024);
    mpz_setbit(modulus, 1023);
    mpz_setbit(modulus, 0);
    mpz_urandomm(base, random, modulus);
    mpz_urandomb(exponent, random, 256);
    mpz_setbit(exponent, 255);
    Bignum b = FromGmp(base), e = FromGmp(exponent), m = FromGmp(modulus);
    Times times = Compare([&] { BignumFree(BignumModPow(b, e, m)); },
                          [&] { mpz_powm(result, base, exponent, modulus); });
    printf("%-58s %8.1f us   %8.1f us   %6.2f times its time\n", what, times.ours * 1e6,
           times.theirs * 1e6, times.ours / times.theirs);
    BignumFree(b);
    BignumFree(e);
    BignumFree(m);
    mpz_clears(base, exponent, modulus, result, nullptr);
    gmp_randclear(random);
}

// libcrypto reads the variable at its start: bit 29 of the second word means SHA instructions.
static void RunWithoutShaInstructions(const char* program) {
    fflush(stdout);
    setenv("OPENSSL_ia32cap", ":~0x20000000", 1);
    execl("/proc/self/exe", program, "--sha1-without", nullptr);
    perror("execl");
}

int main(int count, char** arguments) {
    if (count > 1 && strcmp(arguments[1], "--sha1-without") == 0) {
        BenchSha1("libcrypto without them");
        return 0;
    }
    printf("%-58s %13s %13s\n", "", "ours", "peer");
    BenchTripleDes();
    BenchBlowfish();
    PrintSpeed("MD5", Compare(OurMd5, [] {
                   uint8_t digest[kMd5Size];
                   MD5(buffer.data(), kBufferSize, digest);
               }));
    BenchSha512();
    if (LongDivisionUseWide(true)) BenchModPow("modular exponentiation 1024/256, wide vectors");
    LongDivisionUseWide(false);
    BenchModPow("modular exponentiation 1024/256, portable");
    BenchSha1("libcrypto with what there is");
    RunWithoutShaInstructions(arguments[0]);
    return 1;
}
