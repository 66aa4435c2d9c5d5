// SPDX-License-Identifier: MIT
// The judge on another processor: reads the answers that judge.cpp has written to the file named by
// QUILL_JUDGE_ANSWERS. A question that is not in it fails the test.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>

#include "tests/ssh2/judge.h"
#include "tests/ssh2/scripted_server.h"

namespace {

std::map<std::string, std::string> ReadAnswers() {
    const char* const name = getenv("QUILL_JUDGE_ANSWERS");
    std::ifstream file(name ? name : "");
    std::map<std::string, std::string> answers;
    std::string line;
    while (std::getline(file, line)) {
        const size_t space = line.find(' ');
        std::string& answer = answers[line.substr(0, space)];
        answer.clear();
        for (size_t i = space + 1; i + 1 < line.size(); i += 2)
            answer += static_cast<char>(std::stoi(line.substr(i, 2), nullptr, 16));
    }
    return answers;
}

std::string Answer(const std::string& kind, const std::string& inputs, size_t size) {
    static const std::map<std::string, std::string> answers = ReadAnswers();
    const auto found = answers.find(QuestionName(kind, inputs));
    if (found != answers.end()) return found->second;
    ADD_FAILURE() << "nobody asked this on the other machine: " << kind << " of " << Hex(inputs);
    return std::string(size, '?');
}

}  // namespace

std::string JudgeSha1(const std::string& bytes) { return Answer("sha1", bytes, 20); }

std::string JudgeHmacSha1(const std::string& key, const std::string& bytes) {
    return Answer("hmac", Str(key) + bytes, 20);
}

std::string JudgePower(const std::string& base, const std::string& exponent,
                       const std::string& modulus) {
    return Answer("power", Str(base) + Str(exponent) + modulus, modulus.size());
}

std::string JudgeSignature(const DssSecret& secret, const std::string& digest) {
    return Answer("signature", Str(secret.p) + Str(secret.k) + digest, 40);
}

std::string JudgeCipher(bool blowfish, bool encrypt, const std::string& key, const std::string& iv,
                        const std::string& text) {
    const std::string kind = std::string(blowfish ? "blowfish" : "3des") + (encrypt ? "+" : "-");
    return Answer(kind, Str(key) + Str(iv) + text, text.size());
}
