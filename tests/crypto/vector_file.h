// SPDX-License-Identifier: MIT
// Files of test vectors (*.data): lines "name = value", a blank line after each vector, comments
// after '#'. The field "test" names the test that the vector is for.
#ifndef QUILL_TESTS_CRYPTO_VECTOR_FILE_H
#define QUILL_TESTS_CRYPTO_VECTOR_FILE_H

#include <cstdint>
#include <map>
#include <string>
#include <vector>

typedef std::vector<uint8_t> ByteString;

struct Vector {
    int line = 0;  // number of its first line
    std::map<std::string, std::string> fields;
};

// All vectors of a file of this folder; empty if the file cannot be read.
std::vector<Vector> ReadVectorFile(const std::string& name);

// The text of a field. A missing field fails the running test and returns "".
std::string Text(const Vector& vector, const std::string& field);
// The bytes of a field of hexadecimal digits (an odd count gets a zero in front).
ByteString Hex(const Vector& vector, const std::string& field);

ByteString FromHex(const std::string& digits);
std::string ToHex(const uint8_t* bytes, size_t count);
std::string ToHex(const ByteString& bytes);

#endif
