// SPDX-License-Identifier: MIT
// The arithmetic of the scripted server on this machine, by GMP and libcrypto.
#include "tests/ssh2/judge.h"

#include <gmp.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <openssl/provider.h>

#include <cstdio>
#include <cstdlib>

#include "tests/ssh2/scripted_server.h"

namespace {

struct Number {
    Number() { mpz_init(value); }
    explicit Number(const std::string& big_endian) : Number() {
        mpz_import(value, big_endian.size(), 1, 1, 1, 0, big_endian.data());
    }
    Number(const Number&) = delete;
    Number& operator=(const Number&) = delete;
    ~Number() { mpz_clear(value); }
    mpz_t value;
};

std::string Bytes(const Number& number) {
    std::string bytes((mpz_sizeinbase(number.value, 2) + 7) / 8, '\0');
    size_t count = 0;
    mpz_export(bytes.data(), &count, 1, 1, 1, 0, number.value);
    return bytes.substr(0, count);
}

std::string FixedBytes(const Number& number, size_t size) {
    const std::string bytes = Bytes(number);
    return std::string(size - bytes.size(), '\0') + bytes;
}

const unsigned char* Raw(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

unsigned char* Raw(std::string& bytes) { return reinterpret_cast<unsigned char*>(bytes.data()); }

std::string Recorded(const std::string& kind, const std::string& inputs,
                     const std::string& answer) {
    static const char* const name = getenv("QUILL_JUDGE_RECORD");
    static FILE* const file = name ? fopen(name, "a") : nullptr;
    if (file) fprintf(file, "%s %s\n", QuestionName(kind, inputs).c_str(), Hex(answer).c_str());
    return answer;
}

EVP_CIPHER* FetchCipher(bool blowfish) {
    static OSSL_PROVIDER* const legacy = OSSL_PROVIDER_load(nullptr, "legacy");
    static OSSL_PROVIDER* const standard = OSSL_PROVIDER_load(nullptr, "default");
    EXPECT_TRUE(legacy && standard);
    return EVP_CIPHER_fetch(nullptr, blowfish ? "BF-CBC" : "DES-EDE3-CBC", nullptr);
}

std::string RunCipher(bool blowfish, bool encrypt, const std::string& key, const std::string& iv,
                      std::string text) {
    EVP_CIPHER* const cipher = FetchCipher(blowfish);
    EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    EVP_CipherInit_ex(context, cipher, nullptr, nullptr, nullptr, encrypt);
    EVP_CIPHER_CTX_set_key_length(context, blowfish ? 16 : 24);
    EVP_CipherInit_ex(context, nullptr, nullptr, Raw(key), Raw(iv), encrypt);
    EVP_CIPHER_CTX_set_padding(context, 0);
    int size = 0;
    EVP_CipherUpdate(context, Raw(text), &size, Raw(text), static_cast<int>(text.size()));
    EXPECT_EQ(static_cast<size_t>(size), text.size());
    EVP_CIPHER_CTX_free(context);
    EVP_CIPHER_free(cipher);
    return text;
}

}  // namespace

std::string JudgeSha1(const std::string& bytes) {
    std::string digest(20, '\0');
    EVP_Digest(bytes.data(), bytes.size(), Raw(digest), nullptr, EVP_sha1(), nullptr);
    return Recorded("sha1", bytes, digest);
}

std::string JudgeHmacSha1(const std::string& key, const std::string& bytes) {
    std::string mac(20, '\0');
    HMAC(EVP_sha1(), key.data(), static_cast<int>(key.size()), Raw(bytes), bytes.size(), Raw(mac),
         nullptr);
    return Recorded("hmac", Str(key) + bytes, mac);
}

std::string JudgePower(const std::string& base, const std::string& exponent,
                       const std::string& modulus) {
    Number result, b(base), x(exponent), m(modulus);
    mpz_powm(result.value, b.value, x.value, m.value);
    return Recorded("power", Str(base) + Str(exponent) + modulus, Bytes(result));
}

std::string JudgeSignature(const DssSecret& secret, const std::string& digest) {
    Number p(secret.p), q(secret.q), g(secret.g), x(secret.x), k(secret.k), h(digest), r, s;
    mpz_mod(k.value, k.value, q.value);
    mpz_powm(r.value, g.value, k.value, p.value);
    mpz_mod(r.value, r.value, q.value);
    mpz_mul(s.value, x.value, r.value);
    mpz_add(s.value, s.value, h.value);
    mpz_invert(k.value, k.value, q.value);
    mpz_mul(s.value, s.value, k.value);
    mpz_mod(s.value, s.value, q.value);
    return Recorded("signature", Str(secret.p) + Str(secret.k) + digest,
                    FixedBytes(r, 20) + FixedBytes(s, 20));
}

std::string JudgeCipher(bool blowfish, bool encrypt, const std::string& key, const std::string& iv,
                        const std::string& text) {
    const std::string kind = std::string(blowfish ? "blowfish" : "3des") + (encrypt ? "+" : "-");
    return Recorded(kind, Str(key) + Str(iv) + text, RunCipher(blowfish, encrypt, key, iv, text));
}
