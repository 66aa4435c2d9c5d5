// SPDX-License-Identifier: MIT
// Reads transcripts.
#include "tests/telnet/transcript.h"

#include <fstream>

namespace {

bool IsOctal(char c) { return c >= '0' && c <= '7'; }

// The byte of the escape whose backslash is at `at`; moves `at` to its last character.
char Escaped(const std::string& text, size_t* at) {
    const char c = text[++*at];
    if (c == 'r') return '\r';
    if (c == 'n') return '\n';
    if (!IsOctal(c) || *at + 2 >= text.size()) return c;
    const int value = (c - '0') * 64 + (text[*at + 1] - '0') * 8 + (text[*at + 2] - '0');
    *at += 2;
    return static_cast<char>(value);
}

std::string BytesOf(const std::string& text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); i++)
        bytes += text[i] == '\\' && i + 1 < text.size() ? Escaped(text, &i) : text[i];
    return bytes;
}

Exchange* ForHost(Transcript* transcript, int line) {
    auto& all = transcript->exchanges;
    if (all.empty() || !all.back().show.empty() || !all.back().client.empty())
        all.push_back({line, {}, {}, {}});
    return &all.back();
}

// False for a line of an unknown kind.
bool Take(Transcript* transcript, const std::string& word, const std::string& bytes, int line) {
    if (word.rfind("set ", 0) == 0) {
        transcript->settings.emplace_back(word.substr(4), bytes);
    } else if (word == "host") {
        ForHost(transcript, line)->host += bytes;
    } else if (transcript->exchanges.empty()) {
        return false;
    } else if (word == "show") {
        transcript->exchanges.back().show += bytes;
    } else if (word == "client") {
        transcript->exchanges.back().client += bytes;
    } else {
        return false;
    }
    return true;
}

bool TakeLine(Transcript* transcript, const std::string& text, int line) {
    if (text.empty() || text[0] == '#') return true;
    const size_t open = text.find('"'), close = text.rfind('"');
    if (open == std::string::npos || close == open) return false;
    const size_t last = text.find_last_not_of(' ', open - 1);
    return Take(transcript, text.substr(0, last + 1),
                BytesOf(text.substr(open + 1, close - open - 1)), line);
}

}  // namespace

Transcript ReadTranscript(const std::string& path) {
    Transcript transcript;
    std::ifstream file(path);
    std::string text;
    for (int line = 1; std::getline(file, text); line++)
        if (!TakeLine(&transcript, text, line) && transcript.wrong.empty())
            transcript.wrong = std::to_string(line) + ": " + text;
    return transcript;
}
