// SPDX-License-Identifier: MIT
// The arithmetic of the scripted server, independent of the client's code. judge.cpp uses GMP and
// libcrypto. If QUILL_JUDGE_RECORD names a file, it also writes each question and its answer to
// that file. On another processor judge_answers.cpp reads the answers from the file, so the client
// must produce the same questions there. Numbers are big-endian bytes.
#ifndef QUILL_TESTS_SSH2_JUDGE_H
#define QUILL_TESTS_SSH2_JUDGE_H

#include <string>

struct DssSecret {
    std::string p, q, g, x, k;  // k: the secret number of the single signature
};

std::string JudgeSha1(const std::string& bytes);
std::string JudgeHmacSha1(const std::string& key, const std::string& bytes);
// The result has no leading zero bytes.
std::string JudgePower(const std::string& base, const std::string& exponent,
                       const std::string& modulus);
std::string JudgeSignature(const DssSecret& secret, const std::string& digest);  // 20 + 20 bytes
// CBC without padding. The key has 16 (Blowfish) or 24 bytes (3DES), or more.
std::string JudgeCipher(bool blowfish, bool encrypt, const std::string& key, const std::string& iv,
                        const std::string& text);

// The name of a question in the file.
std::string QuestionName(const std::string& kind, const std::string& inputs);

#endif
