// SPDX-License-Identifier: MIT
// Parses the host to connect to: HOST, PORT, telnet://HOST:PORT, ssh://USER@HOST:PORT.
#include <strings.h>

#include <algorithm>
#include <cstring>

#include "platform/qt/host/command_line.h"

constexpr size_t kLongestName = 39;  // the settings hold no more
constexpr char kLetters[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789";

static bool IsMadeOf(const std::string& text, const char* others) {
    return text.find_first_not_of(std::string(kLetters) + others) == text.npos;
}

static const char* TakeHost(const std::string& text, std::string* host) {
    if (text.empty()) return "has no host";
    if (text[0] == '[' || std::count(text.begin(), text.end(), ':') > 1)
        return "is an IPv6 address; Quill connects to names and IPv4 addresses";
    if (text.size() > kLongestName) return "is too long; a host has at most 39 characters";
    if (text[0] == '-' || !IsMadeOf(text, ".-_"))
        return "is no host; it has letters, digits, '.', '-' and '_' and begins with no '-'";
    return *host = text, nullptr;
}

static const char* TakeUser(const std::string& text, RunTarget* target) {
    if (target->protocol != RunProtocol::kSsh) return "names a user, which only ssh:// can";
    if (text.find(':') != text.npos) return "has a password, which no command line should";
    if (text.empty() || text.size() > kLongestName || text[0] == '-' || !IsMadeOf(text, ".-_"))
        return "names no user of at most 39 letters, digits, '.', '-' and '_'";
    return target->user = text, nullptr;
}

// Parses USER@HOST:PORT, with or without a slash at its end.
static const char* TakeAddress(std::string text, RunTarget* target) {
    if (!text.empty() && text.back() == '/') text.pop_back();
    const size_t at = text.rfind('@');
    if (at != text.npos) {
        if (const char* trouble = TakeUser(text.substr(0, at), target)) return trouble;
        text.erase(0, at + 1);
    }
    const size_t colon = text.find(':');
    if (colon != text.npos && colon == text.rfind(':')) {
        if (const char* trouble = TakePort(text.substr(colon + 1), &target->port)) return trouble;
        text.erase(colon);
    }
    return TakeHost(text, &target->host);
}

namespace {

struct SchemeRow {
    const char* name;
    RunProtocol protocol;
};

}  // namespace

const SchemeRow kSchemes[] = {{"telnet://", RunProtocol::kTelnet}, {"ssh://", RunProtocol::kSsh}};

const char* TakePort(const std::string& text, int* port) {
    const bool digits = text.find_first_not_of("0123456789") == text.npos;
    *port = digits && text.size() <= 5 ? std::atoi(text.c_str()) : 0;
    return *port >= 1 && *port <= 65535 ? nullptr : "has a port that is no number from 1 to 65535";
}

const char* TakeTarget(const std::string& text, RunTarget* target) {
    for (const SchemeRow& row : kSchemes) {
        if (strncasecmp(text.c_str(), row.name, std::strlen(row.name)) != 0) continue;
        target->protocol = row.protocol;
        return TakeAddress(text.substr(std::strlen(row.name)), target);
    }
    if (text.find("://") != text.npos) return "is no address; it begins with telnet:// or ssh://";
    return TakeHost(text, &target->host);
}
