// SPDX-License-Identifier: MIT
// Passes one escape text through the key table, through a response and through the expansion
// itself, and compares the results with a second implementation of the rules. The responses are at
// most as long as the settings allow; the key table's bytes are read up to their first 0.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/settings.h"
#include "text/text.h"

static const SOCKET kSocket = 7;
static const size_t kResponseBytes = 256;
static std::string wire;

int SliceSend(SOCKET, const char* bytes, int size, int) {
    wire.append(bytes, static_cast<size_t>(size));
    return size;
}

SHORT GetKeyState(int) { return 0; }

// The session library needs this for the terminal, which gets no bytes here.
BOOL MessageBeep(UINT) { return TRUE; }

// The target neither loads nor saves the key table.
LPCWSTR ReadString(LPCWSTR, LPCWSTR fallback) { return fallback; }
void WriteString(LPCWSTR, LPCWSTR) {}
void DeleteNumberedValues(LPCWSTR, int) {}

static void Require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "broken: %s\n", what);
    abort();
}

static bool IsOctal(char c) { return c >= '0' && c <= '7'; }

static std::string Expanded(const std::string& text) {
    std::string bytes;
    for (size_t i = 0; i < text.size();) {
        if (text[i] != '\\') {
            bytes += text[i++];
            continue;
        }
        size_t end = ++i;
        while (end < text.size() && end < i + 3 && IsOctal(text[end])) end++;
        const std::string digits = text.substr(i, end - i);
        bytes += static_cast<char>(digits.empty() ? 0 : std::stoi(digits, nullptr, 8));
        i = end;
    }
    return bytes;
}

static std::string Response(const std::string& text, DWORD escape) {
    session_ports.send = TelnetSendData;
    session.connected = 1;
    session.socket = kSocket;
    session.telnet.escape_iac = escape;
    wire.clear();
    SendResponse(text.c_str());
    return wire;
}

static std::string Doubled(const std::string& bytes) {
    std::string result;
    for (char c : bytes) result.append(c == '\xFF' ? 2 : 1, c);
    return result + "\xFF\xEF";
}

static void CheckExpansion(const std::string& text, const std::string& expected) {
    for (size_t capacity : {size_t{0}, size_t{1}, size_t{7}, text.size()}) {
        std::string bytes(capacity, '#');
        const int count = ExpandEscapeText(text.c_str(), reinterpret_cast<BYTE*>(bytes.data()),
                                           static_cast<int>(capacity));
        Require(count >= 0 && static_cast<size_t>(count) <= capacity, "the count fits");
        bytes.resize(static_cast<size_t>(count));
        Require(bytes == expected.substr(0, capacity), "the expansion");
    }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const char* raw = reinterpret_cast<const char*>(data);
    const std::string text(raw, std::find(raw, raw + size, '\0'));
    const std::string expected = Expanded(text);
    CheckExpansion(text, expected);
    const std::string response = expected.substr(0, kResponseBytes);
    Require(Response(text, 0) == response, "the response");
    Require(Response(text, 1) == Doubled(response), "the escaped response");
    const std::string key = expected.substr(0, kLongestKeyText);
    Require(UnescapeKeyText(text.c_str()) == key.substr(0, key.find('\0')), "the key's bytes");
    return 0;
}
