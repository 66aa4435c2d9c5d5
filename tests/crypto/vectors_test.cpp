// SPDX-License-Identifier: MIT
// The runner over the vector files. Each file is one test, which prints how many vectors passed
// (the script `test` adds them up).
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "crypto/block_ciphers.h"
#include "crypto/hashes.h"
#include "crypto/packet_checks.h"
#include "crypto/public_key.h"
#include "crypto_test_support.h"
#include "text/bytes.h"

// ---------------------------------------------------------------- hashes

// Gives each hash the same interface.
template <typename Context, void (*Init)(Context*), void (*Update)(Context*, const uint8_t*, int),
          void (*Final)(Context*, uint8_t*), int size>
struct Hash {
    static std::string Whole(const ByteString& message) {
        Context context;
        Init(&context);
        Update(&context, message.data(), Size(message));
        return End(&context);
    }
    static std::string Repeated(const ByteString& message, int times) {
        Context context;
        Init(&context);
        for (int i = 0; i < times; i++) Update(&context, message.data(), Size(message));
        return End(&context);
    }
    // Hashes the message in two pieces, split at every position (for a message of more than 2,000
    // bytes, near its ends and at some positions between). `prefix` is fed byte by byte.
    static void EverySplit(const ByteString& message, const std::string& digest) {
        Context prefix;
        Init(&prefix);
        for (int at = 0; at <= Size(message); at++) {
            bool near_an_end = at < 130 || at > Size(message) - 260;
            if (Size(message) <= 2000 || near_an_end || at % 61 == 0) {
                Context context = prefix;
                Update(&context, message.data() + at, Size(message) - at);
                ASSERT_EQ(End(&context), digest) << "split at " << at;
            }
            if (at < Size(message)) Update(&prefix, message.data() + at, 1);
        }
        ASSERT_EQ(End(&prefix), digest) << "byte by byte";
    }
    static std::string End(Context* context) {
        uint8_t digest[size];
        Final(context, digest);
        return ToHex(digest, size);
    }
};
typedef Hash<Sha1Context, Sha1Init, Sha1Update, Sha1Final, kSha1Size> Sha1Hash;
typedef Hash<Sha512Context, Sha512Init, Sha512Update, Sha512Final, kSha512Size> Sha512Hash;
typedef Hash<Md5Context, Md5Init, Md5Update, Md5Final, kMd5Size> Md5Hash;

// Runs `work` in each form of the compression function that this processor has.
template <typename Compressor, typename Work>
static void InEachForm(Compressor* in_use, Compressor portable, Work work) {
    Compressor fastest = *in_use;
    work();
    *in_use = portable;
    if (fastest != portable) work();
    *in_use = fastest;
}

template <typename Hash>
static void RunHash(const Vector& vector) {
    const ByteString message = Hex(vector, "message");
    const std::string digest = Text(vector, "digest");
    EXPECT_EQ(Hash::Whole(message), digest);
    Hash::EverySplit(message, digest);
}

template <typename Hash>
static void RunRepeat(const Vector& vector) {
    EXPECT_EQ(Hash::Repeated(Hex(vector, "message"), std::stoi(Text(vector, "times"))),
              Text(vector, "digest"));
}

// The SHA Validation System, 6.4: each message is the last three digests, joined.
template <typename Hash>
static void RunMonte(const Vector& vector) {
    ByteString last[3];
    for (ByteString& digest : last) digest = Hex(vector, "seed");
    for (int i = 0; i < 1000; i++) {
        ByteString message = last[0];
        message.insert(message.end(), last[1].begin(), last[1].end());
        message.insert(message.end(), last[2].begin(), last[2].end());
        last[0] = last[1];
        last[1] = last[2];
        last[2] = FromHex(Hash::Whole(message));
    }
    EXPECT_EQ(ToHex(last[2]), Text(vector, "digest"));
}

template <void (*Run)(const Vector&)>
static void Sha1Forms(const Vector& vector) {
    InEachForm(&sha1_compressor, &Sha1CompressPortable, [&] { Run(vector); });
}

template <void (*Run)(const Vector&)>
static void Sha512Forms(const Vector& vector) {
    InEachForm(&sha512_compressor, &Sha512CompressPortable, [&] { Run(vector); });
}

static std::string Mac(const ByteString& key, const ByteString& message) {
    uint8_t mac[kSha1Size];
    HmacSha1(key.data(), Size(key), message.data(), Size(message), mac);
    return ToHex(mac, kSha1Size);
}

static void RunHmac(const Vector& vector) {
    EXPECT_EQ(Mac(Hex(vector, "key"), Hex(vector, "message")), Text(vector, "mac"));
}

// A key of more than 64 bytes: the published MAC hashes it first, ours truncates it. If the caller
// hashes the key, the result is the published MAC here too.
static void RunHmacCut(const Vector& vector) {
    const ByteString key = Hex(vector, "key"), message = Hex(vector, "message");
    EXPECT_EQ(Mac(key, message), Text(vector, "cut"));
    EXPECT_EQ(Mac(FromHex(Sha1Hash::Whole(key)), message), Text(vector, "mac"));
}

static void RunCrc(const Vector& vector) {
    const ByteString message = Hex(vector, "message");
    uint8_t crc[4];
    StoreBig<uint32_t>(crc, Crc32(message.data(), Size(message)));
    EXPECT_EQ(ToHex(crc, 4), Text(vector, "crc"));
}

// ---------------------------------------------------------------- ciphers

static void SetKeys(const ByteString& key, DesContext* contexts) {
    for (size_t i = 0; i < key.size() / 8; i++) {
        DesSetKey(LoadBig<uint32_t>(&key[8 * i]), LoadBig<uint32_t>(&key[8 * i + 4]), &contexts[i]);
    }
}

static void SetIv(const Vector& vector, uint32_t iv[2]) {
    const ByteString bytes = Hex(vector, "iv");
    ASSERT_EQ(bytes.size(), 8u);
    iv[0] = LoadBig<uint32_t>(bytes.data());
    iv[1] = LoadBig<uint32_t>(bytes.data() + 4);
}

// Runs the vector in its direction, and then in the opposite one.
template <typename Encrypt, typename Decrypt>
static void BothWays(const Vector& vector, Encrypt encrypt, Decrypt decrypt) {
    const std::string operation = Text(vector, "operation");
    EXPECT_TRUE(operation == "encrypt" || operation == "decrypt");
    EXPECT_EQ(ToHex(encrypt(Hex(vector, "plaintext"))), ToHex(Hex(vector, "ciphertext")));
    EXPECT_EQ(ToHex(decrypt(Hex(vector, "ciphertext"))), ToHex(Hex(vector, "plaintext")));
}

template <typename Work>
static ByteString EachBlock(ByteString text, Work work) {
    for (size_t i = 0; i + 8 <= text.size(); i += 8) {
        uint32_t block[2] = {LoadBig<uint32_t>(&text[i]), LoadBig<uint32_t>(&text[i + 4])};
        work(block);
        StoreBig<uint32_t>(&text[i], block[0]);
        StoreBig<uint32_t>(&text[i + 4], block[1]);
    }
    return text;
}

static void RunDesEcb(const Vector& vector) {
    DesContext key;
    SetKeys(Hex(vector, "key"), &key);
    BothWays(
        vector,
        [&](const ByteString& text) {
            return EachBlock(text, [&](uint32_t* b) { DesEncryptBlock(b[0], b[1], b, &key); });
        },
        [&](const ByteString& text) {
            return EachBlock(text, [&](uint32_t* b) { DesDecryptBlock(b[0], b[1], b, &key); });
        });
}

static void RunTripleDesEcb(const Vector& vector) {
    DesContext keys[3];
    SetKeys(Hex(vector, "key"), keys);
    BothWays(
        vector,
        [&](const ByteString& text) {
            return EachBlock(text, [&](uint32_t* b) {
                DesEncryptBlock(b[0], b[1], b, &keys[0]);
                DesDecryptBlock(b[0], b[1], b, &keys[1]);
                DesEncryptBlock(b[0], b[1], b, &keys[2]);
            });
        },
        [&](const ByteString& text) {
            return EachBlock(text, [&](uint32_t* b) {
                DesDecryptBlock(b[0], b[1], b, &keys[2]);
                DesEncryptBlock(b[0], b[1], b, &keys[1]);
                DesDecryptBlock(b[0], b[1], b, &keys[0]);
            });
        });
}

static void RunDesCbc(const Vector& vector) {
    DesContext key;
    SetKeys(Hex(vector, "key"), &key);
    SetIv(vector, key.encryptIv);
    SetIv(vector, key.decryptIv);
    BothWays(
        vector,
        [&](ByteString text) {
            DesCbcEncrypt(text.data(), text.data(), Size(text), &key);
            return text;
        },
        [&](ByteString text) {
            DesCbcDecrypt(text.data(), text.data(), Size(text), &key);
            return text;
        });
}

static void RunTripleDesCbc(const Vector& vector) {
    DesContext keys[3];
    SetKeys(Hex(vector, "key"), keys);
    SetIv(vector, keys[0].encryptIv);
    SetIv(vector, keys[0].decryptIv);
    BothWays(
        vector,
        [&](ByteString text) {
            TripleDesCbcEncrypt(text.data(), text.data(), Size(text), keys);
            return text;
        },
        [&](ByteString text) {
            TripleDesCbcDecrypt(text.data(), text.data(), Size(text), keys);
            return text;
        });
}

static void RunRivest(const Vector& vector) {
    ByteString x = Hex(vector, "start");
    for (int i = 0; i < 16; i++) {
        DesContext key;
        SetKeys(x, &key);
        x = EachBlock(x, [&](uint32_t* b) {
            i % 2 == 0 ? DesEncryptBlock(b[0], b[1], b, &key)
                       : DesDecryptBlock(b[0], b[1], b, &key);
        });
    }
    EXPECT_EQ(ToHex(x), Text(vector, "end"));
}

static void RunBlowfishEcb(const Vector& vector) {
    static BlowfishContext context;
    const ByteString key = Hex(vector, "key");
    BlowfishSetKey(&context, key.data(), Size(key));
    BothWays(
        vector,
        [&](const ByteString& text) {
            return EachBlock(text,
                             [&](uint32_t* b) { BlowfishEncryptBlock(b[0], b[1], b, &context); });
        },
        [&](const ByteString& text) {
            return EachBlock(text,
                             [&](uint32_t* b) { BlowfishDecryptBlock(b[0], b[1], b, &context); });
        });
}

static void RunBlowfishCbc(const Vector& vector) {
    static BlowfishContext context;
    const ByteString key = Hex(vector, "key");
    BlowfishSetKey(&context, key.data(), Size(key));
    BothWays(
        vector,
        [&](ByteString text) {
            SetIv(vector, context.iv);
            BlowfishCbcEncrypt(text.data(), text.data(), Size(text), &context);
            return text;
        },
        [&](ByteString text) {
            SetIv(vector, context.iv);
            BlowfishCbcDecrypt(text.data(), text.data(), Size(text), &context);
            return text;
        });
}

// ---------------------------------------------------------------- public keys

static void RunDssVerify(const Vector& vector) {
    Number p = FromHexNumber(Text(vector, "p")), q = FromHexNumber(Text(vector, "q"));
    Number g = FromHexNumber(Text(vector, "g")), y = FromHexNumber(Text(vector, "y"));
    Number r = FromHexNumber(Text(vector, "r")), s = FromHexNumber(Text(vector, "s"));
    DssKey key = {p.get(), q.get(), g.get(), y.get()};
    ByteString message = Hex(vector, "message");
    uint8_t signature[40];
    BignumToBytes(signature, 20, r.get());
    BignumToBytes(signature + 20, 20, s.get());
    EXPECT_EQ(DssVerify(&key, signature, 40, message.data(), Size(message)),
              Text(vector, "result") == "P");
}

static void RunModPow(const Vector& vector) {
    Number base = FromHexNumber(Text(vector, "base"));
    Number exponent = FromHexNumber(Text(vector, "exponent"));
    Number modulus = FromHexNumber(Text(vector, "modulus"));
    Number wanted = FromHexNumber(Text(vector, "result"));
    Number result(BignumModPow(base.get(), exponent.get(), modulus.get()));
    EXPECT_EQ(NumberHex(result.get()), NumberHex(wanted.get()));
}

static void RunDhPrime(const Vector& vector) {
    DhContext context = {};
    DhSetup(&context);
    EXPECT_EQ(NumberHex(context.p), Text(vector, "prime"));
    EXPECT_EQ(NumberHex(context.g), Text(vector, "generator"));
    DhForget(&context);
}

// ---------------------------------------------------------------- the runner

struct TestRow {
    const char* name;
    void (*run)(const Vector& vector);
};

// clang-format off
static const TestRow kTests[] = {
    {"sha1",          Sha1Forms<RunHash<Sha1Hash>>},
    {"sha1-repeat",   Sha1Forms<RunRepeat<Sha1Hash>>},
    {"sha1-monte",    Sha1Forms<RunMonte<Sha1Hash>>},
    {"sha512",        Sha512Forms<RunHash<Sha512Hash>>},
    {"sha512-repeat", Sha512Forms<RunRepeat<Sha512Hash>>},
    {"sha512-monte",  Sha512Forms<RunMonte<Sha512Hash>>},
    {"md5",           RunHash<Md5Hash>},
    {"hmac-sha1",     RunHmac},
    {"hmac-sha1-cut", RunHmacCut},
    {"crc32",         RunCrc},
    {"des-ecb",       RunDesEcb},
    {"des-cbc",       RunDesCbc},
    {"des-rivest",    RunRivest},
    {"tdes-ecb",      RunTripleDesEcb},
    {"tdes-cbc",      RunTripleDesCbc},
    {"blowfish-ecb",  RunBlowfishEcb},
    {"blowfish-cbc",  RunBlowfishCbc},
    {"dss-verify",    RunDssVerify},
    {"modpow",        RunModPow},
    {"dh-prime",      RunDhPrime},
};

// How many vectors each file holds; a file that shrinks is noticed.
struct FileRow {
    const char* name;
    int vectors;
};

// The name of a file's test in the list of tests.
static void PrintTo(const FileRow& row, std::ostream* out) {
    *out << row.name;
}

static const FileRow kFiles[] = {
    {"blowfish.data",         56},
    {"crc32.data",             3},
    {"des.data",            1061},
    {"diffie_hellman.data",    1},
    {"dss.data",              80},
    {"hmac_sha1.data",         7},
    {"md5.data",               7},
    {"sha1.data",            232},
    {"sha512.data",          360},
};
// clang-format on

static void RunVector(const Vector& vector) {
    const std::string name = Text(vector, "test");
    for (const TestRow& row : kTests) {
        if (name == row.name) return row.run(vector);
    }
    ADD_FAILURE() << "no test is named " << name;
}

class Vectors : public testing::TestWithParam<FileRow> {};

TEST_P(Vectors, GiveThePublishedResults) {
    const std::vector<Vector> vectors = ReadVectorFile(GetParam().name);
    int passed = 0;
    for (const Vector& vector : vectors) {
        SCOPED_TRACE(std::string(GetParam().name) + ":" + std::to_string(vector.line));
        RunVector(vector);
        if (HasFailure()) break;
        passed++;
    }
    printf("%d vectors of %s\n", passed, GetParam().name);
    EXPECT_EQ(static_cast<int>(vectors.size()), GetParam().vectors);
}

static std::string FileTestName(const testing::TestParamInfo<FileRow>& info) {
    std::string name = info.param.name;
    return name.substr(0, name.find('.'));
}

INSTANTIATE_TEST_SUITE_P(File, Vectors, testing::ValuesIn(kFiles), FileTestName);
