// SPDX-License-Identifier: MIT
// The arithmetic of the scripted server, by code that is not the client's. judge.cpp does it with
// GMP and libcrypto, and writes each question with its answer to the file named by
// QUILL_JUDGE_RECORD, if there is one. On another processor judge_answers.cpp gives the answers out
// of that file: there the client has to ask what it asked here. Numbers are big-endian bytes.
#ifndef QUILL_TESTS_SSH2_JUDGE_H
#define QUILL_TESTS_SSH2_JUDGE_H

#include <string>

struct DssSecret {
    std::string p, q, g, x, k;  // k: the secret number of the one signature
};

std::string JudgeSha1(const std::string& bytes);
std::string JudgeHmacSha1(const std::string& key, const std::string& bytes);
// Without leading zero bytes.
std::string JudgePower(const std::string& base, const std::string& exponent,
                       const std::string& modulus);
std::string JudgeSignature(const DssSecret& secret, const std::string& digest);  // 20 + 20 bytes
// CBC without padding. The key has 16 (Blowfish) or 24 bytes (3DES), or more.
std::string JudgeCipher(bool blowfish, bool encrypt, const std::string& key, const std::string& iv,
                        const std::string& text);

// How a question is named in the file.
std::string QuestionName(const std::string& kind, const std::string& inputs);

#endif
