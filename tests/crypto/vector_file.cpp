// SPDX-License-Identifier: MIT
// Reads vector files.
#include "vector_file.h"

#include <gtest/gtest.h>

#include <fstream>

static std::string Trim(const std::string& text) {
    size_t first = text.find_first_not_of(" \t\r");
    size_t last = text.find_last_not_of(" \t\r");
    return first == std::string::npos ? "" : text.substr(first, last - first + 1);
}

std::vector<Vector> ReadVectorFile(const std::string& name) {
    std::ifstream file(std::string(QUILL_CRYPTO_VECTORS "/") + name);
    std::vector<Vector> vectors;
    bool inside = false;
    std::string line;
    for (int number = 1; std::getline(file, line); number++) {
        line = Trim(line);
        size_t equals = line.find('=');
        if (line.empty()) inside = false;
        if (line.empty() || line[0] == '#' || equals == std::string::npos) continue;
        if (!inside) vectors.push_back({number, {}});
        inside = true;
        vectors.back().fields[Trim(line.substr(0, equals))] = Trim(line.substr(equals + 1));
    }
    return vectors;
}

std::string Text(const Vector& vector, const std::string& field) {
    auto found = vector.fields.find(field);
    if (found != vector.fields.end()) return found->second;
    ADD_FAILURE() << "no field " << field;
    return "";
}

ByteString Hex(const Vector& vector, const std::string& field) {
    return FromHex(Text(vector, field));
}

static int DigitValue(char digit) {
    if (digit >= '0' && digit <= '9') return digit - '0';
    if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
    if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
    ADD_FAILURE() << "no hexadecimal digit: " << digit;
    return 0;
}

ByteString FromHex(const std::string& digits) {
    ByteString bytes((digits.size() + 1) / 2);
    size_t odd = digits.size() % 2;
    for (size_t i = 0; i < digits.size(); i++) {
        uint8_t& byte = bytes[(i + odd) / 2];
        byte = static_cast<uint8_t>(byte << 4 | DigitValue(digits[i]));
    }
    return bytes;
}

std::string ToHex(const uint8_t* bytes, size_t count) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < count; i++) {
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text;
}

std::string ToHex(const ByteString& bytes) { return ToHex(bytes.data(), bytes.size()); }
