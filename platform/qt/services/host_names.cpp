// Host addresses: by name and in dots.
#include <cctype>
#include <string>
#include <vector>

#include "platform/qt/services/address_lookup.h"
#include "platform/qt/services/winsock.h"
#include "platform/qt/services/winsock_errors.h"
#include "platform/qt/testing_services.h"
#include "windows_ce.h"

namespace {

constexpr size_t kLongestName = 255;

// The answer of a thread's last lookup; HOSTENT points into it.
struct HostAnswer {
    std::string name;
    std::vector<uint32_t> addresses;
    std::vector<char*> list;
    char* aliases[1] = {nullptr};
    HOSTENT entry = {};
};
thread_local HostAnswer t_answer;

HOSTENT* Answer(std::string name, std::vector<uint32_t> addresses) {
    HostAnswer& answer = t_answer;
    answer.name = std::move(name);
    answer.addresses = std::move(addresses);
    answer.list.clear();
    for (uint32_t& address : answer.addresses)
        answer.list.push_back(reinterpret_cast<char*>(&address));
    answer.list.push_back(nullptr);
    answer.entry = {answer.name.data(), answer.aliases, AF_INET, sizeof(uint32_t),
                    answer.list.data()};
    return &answer.entry;
}

bool IsUsableName(const char* name) {
    return name && *name && strnlen(name, kLongestName + 1) <= kLongestName;
}

int DigitOf(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
    return 16;
}

// 0x begins a hexadecimal number, 0 an octal one.
bool TakePart(const char** text, uint64_t* value) {
    int base = 10;
    if (**text == '0' && ((*text)[1] == 'x' || (*text)[1] == 'X')) {
        base = 16;
        *text += 2;
    } else if (**text == '0') {
        base = 8;
    }
    *value = 0;
    const char* first = *text;
    for (; DigitOf(**text) < base; ++*text) {
        *value = *value * static_cast<uint64_t>(base) + static_cast<uint64_t>(DigitOf(**text));
        if (*value > 0xFFFFFFFF) return false;
    }
    return *text != first;
}

bool IsEnd(char letter) { return letter == 0 || isspace(static_cast<unsigned char>(letter)); }

}  // namespace

HOSTENT* SliceHostByName(const char* name) {
    if (!WinsockStarted()) return nullptr;
    services_test_hooks.host_lookups++;
    if (services_test_hooks.fail_host_lookup || !IsUsableName(name))
        return FailWith(kWsaHostNotFound), nullptr;
    std::vector<uint32_t> addresses;
    std::string official;
    const int result = LookUpAddresses(name, &addresses, &official);
    if (result != 0) return FailWith(WinsockLookupError(result)), nullptr;
    return Answer(std::move(official), std::move(addresses));
}

// One to four parts; the last one fills all bytes that are left.
uint32_t SliceDottedAddress(const char* text) {
    uint64_t address = 0, part = 0;
    int parts = 0;
    for (; text; text++) {
        if (!TakePart(&text, &part)) return INADDR_NONE;
        if (++parts == 4 || *text != '.') break;
        if (part > 0xFF) return INADDR_NONE;
        address = (address << 8) | part;
    }
    if (!text || !IsEnd(*text)) return INADDR_NONE;
    const int left = 8 * (5 - parts);
    if (part >= uint64_t{1} << left) return INADDR_NONE;
    address = (address << left) | part;
    uint32_t ordered = 0;
    for (int i = 0; i < 4; i++)
        reinterpret_cast<BYTE*>(&ordered)[i] = static_cast<BYTE>(address >> (24 - 8 * i));
    return ordered;
}
