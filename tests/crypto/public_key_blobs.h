// SPDX-License-Identifier: MIT
// Keys and signatures of libcrypto in the forms in which SSH carries them.
#ifndef QUILL_TESTS_CRYPTO_PUBLIC_KEY_BLOBS_H
#define QUILL_TESTS_CRYPTO_PUBLIC_KEY_BLOBS_H

#define OPENSSL_SUPPRESS_DEPRECATED
#include <openssl/dsa.h>
#include <openssl/rsa.h>

#include <string>

#include "vector_file.h"

// A new key pair over the first group of dss.data (1,024 and 160 bits).
DSA* MakeDsaKey();
// The same over the group of dsa_groups.data whose p has 2048 or 3072 bits.
DSA* MakeLongDsaKey(int bits);
ByteString KeyBlob(const DSA* dsa, const std::string& name = "ssh-dss");
// r and s (40 bytes) over the SHA-1 of the data, or over a digest without another hash.
ByteString Sign(DSA* dsa, const ByteString& data);
ByteString SignDigest(DSA* dsa, const ByteString& digest);
ByteString WrapSignature(const ByteString& signature, const std::string& name = "ssh-dss");
ByteString RsaBlob(const RSA* rsa);  // uint32 bits, exponent, modulus

std::string BigHex(const BIGNUM* number);  // in the form of NumberHex

ByteString SshString(const ByteString& bytes);
ByteString operator+(ByteString a, const ByteString& b);

#endif
