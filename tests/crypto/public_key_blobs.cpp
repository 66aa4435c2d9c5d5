// SPDX-License-Identifier: MIT
// Keys and signatures of libcrypto in the forms of SSH.
#include "public_key_blobs.h"

#include <gtest/gtest.h>
#include <openssl/bn.h>

#include "crypto/hashes.h"
#include "text/bytes.h"

ByteString operator+(ByteString a, const ByteString& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

ByteString SshString(const ByteString& bytes) {
    ByteString size(4);
    StoreBig<uint32_t>(size.data(), static_cast<uint32_t>(bytes.size()));
    return size + bytes;
}

static ByteString Magnitude(const BIGNUM* number) {
    ByteString bytes(static_cast<size_t>(BN_num_bytes(number)));
    BN_bn2bin(number, bytes.data());
    return bytes;
}

static ByteString SshMpint(const BIGNUM* number) {
    ByteString bytes = Magnitude(number);
    if (!bytes.empty() && bytes[0] >= 0x80) bytes.insert(bytes.begin(), uint8_t{0});
    return SshString(bytes);
}

static ByteString Ssh1Number(const BIGNUM* number) {
    ByteString size(2);
    StoreBig<uint16_t>(size.data(), static_cast<uint16_t>(BN_num_bits(number)));
    return size + Magnitude(number);
}

std::string BigHex(const BIGNUM* number) {
    std::string text = ToHex(Magnitude(number));
    size_t first = text.find_first_not_of('0');
    return first == std::string::npos ? "0" : text.substr(first);
}

static BIGNUM* FromText(const std::string& digits) {
    BIGNUM* number = nullptr;
    BN_hex2bn(&number, digits.c_str());
    return number;
}

static DSA* KeyOver(const Vector& vector) {
    DSA* dsa = DSA_new();
    EXPECT_EQ(DSA_set0_pqg(dsa, FromText(Text(vector, "p")), FromText(Text(vector, "q")),
                           FromText(Text(vector, "g"))),
              1);
    EXPECT_EQ(DSA_generate_key(dsa), 1);
    return dsa;
}

DSA* MakeDsaKey() { return KeyOver(ReadVectorFile("dss.data").front()); }

DSA* MakeLongDsaKey(int bits) {
    for (const Vector& vector : ReadVectorFile("dsa_groups.data"))
        if (Text(vector, "bits") == std::to_string(bits)) return KeyOver(vector);
    ADD_FAILURE() << "no group of " << bits << " bits";
    return nullptr;
}

ByteString KeyBlob(const DSA* dsa, const std::string& name) {
    const BIGNUM *p, *q, *g, *y;
    DSA_get0_pqg(dsa, &p, &q, &g);
    DSA_get0_key(dsa, &y, nullptr);
    return SshString(ByteString(name.begin(), name.end())) + SshMpint(p) + SshMpint(q) +
           SshMpint(g) + SshMpint(y);
}

ByteString SignDigest(DSA* dsa, const ByteString& digest) {
    DSA_SIG* signature = DSA_do_sign(digest.data(), static_cast<int>(digest.size()), dsa);
    const BIGNUM *r, *s;
    DSA_SIG_get0(signature, &r, &s);
    ByteString bytes(40);
    BN_bn2binpad(r, bytes.data(), 20);
    BN_bn2binpad(s, bytes.data() + 20, 20);
    DSA_SIG_free(signature);
    return bytes;
}

ByteString Sign(DSA* dsa, const ByteString& data) {
    ByteString digest(kSha1Size);
    Sha1(data.data(), static_cast<int>(data.size()), digest.data());
    return SignDigest(dsa, digest);
}

ByteString WrapSignature(const ByteString& signature, const std::string& name) {
    return SshString(ByteString(name.begin(), name.end())) + SshString(signature);
}

ByteString RsaBlob(const RSA* rsa) {
    const BIGNUM *n, *e;
    RSA_get0_key(rsa, &n, &e, nullptr);
    ByteString bits(4);
    StoreBig<uint32_t>(bits.data(), static_cast<uint32_t>(BN_num_bits(n)));
    return bits + Ssh1Number(e) + Ssh1Number(n);
}
