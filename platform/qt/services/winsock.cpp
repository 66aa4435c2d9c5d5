// SPDX-License-Identifier: MIT
// WinSock 1.1 on top of the host's sockets; looks up hosts by name and parses dotted addresses.
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/qt/services/posix_sockets.h"
#include "platform/qt/services/services.h"
#include "windows_ce.h"

namespace {

using SocketPointer = std::shared_ptr<StreamSocket>;

}  // namespace

constexpr int kProtocolTcp = 6;
constexpr int kKnownFlags = 7;  // MSG_OOB, MSG_PEEK, MSG_DONTROUTE: the same bits on both sides
constexpr UINT kSetSize = 64;

namespace {

struct SocketTable {
    std::mutex mutex;
    std::map<SOCKET, SocketPointer> open;
    SOCKET last = 0;
    int startups = 0;
};

}  // namespace

// Never destroyed: a receiving thread may still use it while the program ends.
static SocketTable& Table() {
    static SocketTable* table = new SocketTable;
    return *table;
}

static thread_local int t_last_error = 0;

static int FailWith(int winsock_error) {
    t_last_error = winsock_error;
    return SOCKET_ERROR;
}

// Before WSAStartup, sets the thread's error 10093 and returns false.
static bool WinsockStarted() {
    SocketTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    if (table.startups == 0) FailWith(kWsaNotInitialised);
    return table.startups > 0;
}

static int FailFor(int negative_errno) { return FailWith(WinsockError(-negative_errno)); }

// Returns null and sets the error: 10093 before WSAStartup, 10038 if the number is not an open
// socket.
static SocketPointer FindSocket(SOCKET number) {
    if (!WinsockStarted()) return nullptr;
    SocketTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const auto found = table.open.find(number);
    if (found != table.open.end()) return found->second;
    FailWith(WSAENOTSOCK);
    return nullptr;
}

static SOCKET AddSocket(SocketPointer opened) {
    SocketTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    table.last += 4;
    table.open[table.last] = std::move(opened);
    return table.last;
}

static SocketPointer TakeSocket(SOCKET number) {
    SocketTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    const auto found = table.open.find(number);
    if (found == table.open.end()) return nullptr;
    SocketPointer taken = std::move(found->second);
    table.open.erase(found);
    return taken;
}

namespace {

// One wait per socket, whichever of the three sets it is in.
using Waits = std::map<SOCKET, SocketWait>;

}  // namespace

static bool AddSet(const SliceSocketSet* set, bool SocketWait::*want, Waits* waits) {
    for (UINT i = 0; set && i < set->fd_count; ++i) {
        SocketWait& wait = (*waits)[set->fd_array[i]];
        if (!wait.socket) wait.socket = FindSocket(set->fd_array[i]);
        if (!wait.socket) return false;
        wait.*want = true;
    }
    return true;
}

// Removes the sockets that are not ready from the set.
static int KeepReady(SliceSocketSet* set, bool SocketWait::*ready, const Waits& waits) {
    UINT kept = 0;
    for (UINT i = 0; set && i < set->fd_count; ++i) {
        const auto found = waits.find(set->fd_array[i]);
        if (found != waits.end() && found->second.*ready) set->fd_array[kept++] = set->fd_array[i];
    }
    if (set) set->fd_count = kept;
    return static_cast<int>(kept);
}

static int WaitFor(Waits* waits, int64_t microseconds) {
    std::vector<SocketWait> list;
    for (const auto& [number, wait] : *waits) list.push_back(wait);
    const int met = WaitForSockets(&list, microseconds);
    size_t i = 0;
    for (auto& [number, wait] : *waits) wait = list[i++];
    return met;
}

static UINT CountOf(const SliceSocketSet* set) { return set ? set->fd_count : 0; }

static bool AreSetsGood(const SliceSocketSet* read, const SliceSocketSet* write,
                        const SliceSocketSet* except) {
    const UINT r = CountOf(read), w = CountOf(write), e = CountOf(except);
    return r <= kSetSize && w <= kSetSize && e <= kSetSize && r + w + e > 0;
}

static bool TakeTimeout(const TIMEVAL* timeout, int64_t* microseconds) {
    *microseconds = -1;
    if (!timeout) return true;
    if (timeout->tv_sec < 0 || timeout->tv_usec < 0) return false;
    constexpr int64_t kLongest = 1000000;  // seconds
    const int64_t seconds = std::min<int64_t>(timeout->tv_sec, kLongest);
    const int64_t rest = std::min<int64_t>(timeout->tv_usec, kLongest * 1000000);
    *microseconds = seconds * 1000000 + rest;
    return true;
}

static bool IsTcp(int family, int type, int protocol) {
    return family == AF_INET && type == SOCK_STREAM && (protocol == 0 || protocol == kProtocolTcp);
}

// The checks that sending and receiving start with.
static SocketPointer FindForTransfer(SOCKET number, const void* bytes, int size, int flags) {
    SocketPointer found = FindSocket(number);
    if (!found) return nullptr;
    if (size < 0 || (!bytes && size > 0)) return FailWith(kWsaEFault), nullptr;
    if (flags & ~kKnownFlags) return FailWith(kWsaEOpNotSupp), nullptr;
    return found;
}

static int CountOrFail(int result) { return result < 0 ? FailFor(result) : result; }

// Returns the error itself. Agrees on version 1.1 with every caller that supports it.
int SliceStartup(WORD version, WSADATA* data) {
    if (!data) return kWsaEFault;
    if (const int error = ErrorOf(NetworkCall::kStartup)) return error;
    data->wVersion = data->wHighVersion = MAKEWORD(1, 1);
    const int major = version & 0xFF, minor = version >> 8;
    if (major < 1 || (major == 1 && minor < 1)) return kWsaVerNotSupported;
    SocketTable& table = Table();
    const std::lock_guard<std::mutex> lock(table.mutex);
    ++table.startups;
    return 0;
}

int SliceCleanup() {
    if (!WinsockStarted()) return SOCKET_ERROR;
    SocketTable& table = Table();
    std::map<SOCKET, SocketPointer> left;
    {
        const std::lock_guard<std::mutex> lock(table.mutex);
        if (--table.startups == 0) left.swap(table.open);
    }
    for (const auto& [number, open] : left) open->Close();
    return 0;
}

int SliceLastError() { return t_last_error; }

SOCKET SliceSocket(int family, int type, int protocol) {
    if (!WinsockStarted()) return INVALID_SOCKET;
    int error = ErrorOf(NetworkCall::kSocket);
    SocketPointer opened;
    if (error != 0) return FailWith(error), INVALID_SOCKET;
    if (!IsTcp(family, type, protocol))
        error = kWsaEAfNoSupport;
    else if (const int result = StreamSocket::Open(&opened); result < 0)
        error = WinsockError(-result);
    if (error == 0) return AddSocket(std::move(opened));
    FailWith(error);
    return INVALID_SOCKET;
}

int SliceIoctl(SOCKET number, unsigned command, u_long* argument) {
    const SocketPointer found = FindSocket(number);
    if (!found) return SOCKET_ERROR;
    if (!argument) return FailWith(kWsaEFault);
    if (command != FIONBIO) return FailWith(kWsaEInval);
    return CountOrFail(found->SetBlocking(*argument == 0));
}

int SliceConnect(SOCKET number, const SOCKADDR* address, int size) {
    const SocketPointer found = FindSocket(number);
    if (!found) return SOCKET_ERROR;
    if (!address || size < static_cast<int>(sizeof(SOCKADDR_IN))) return FailWith(kWsaEFault);
    SOCKADDR_IN peer;
    memcpy(&peer, address, sizeof(peer));
    if (peer.sin_family != AF_INET) return FailWith(kWsaEAfNoSupport);
    if (const int error = ErrorOf(NetworkCall::kConnect)) return FailWith(error);
    return CountOrFail(found->Connect(peer.sin_addr.s_addr, peer.sin_port));
}

int SliceSelect(int, SliceSocketSet* read, SliceSocketSet* write, SliceSocketSet* except,
                const TIMEVAL* timeout) {
    if (!WinsockStarted()) return SOCKET_ERROR;
    int64_t microseconds = 0;
    if (!AreSetsGood(read, write, except) || !TakeTimeout(timeout, &microseconds))
        return FailWith(kWsaEInval);
    Waits waits;
    if (!AddSet(read, &SocketWait::want_read, &waits) ||
        !AddSet(write, &SocketWait::want_write, &waits) ||
        !AddSet(except, &SocketWait::want_except, &waits))
        return SOCKET_ERROR;
    const int met = WaitFor(&waits, microseconds);
    if (met < 0) return FailFor(met);
    return KeepReady(read, &SocketWait::can_read, waits) +
           KeepReady(write, &SocketWait::can_write, waits) +
           KeepReady(except, &SocketWait::has_except, waits);
}

int SliceReceive(SOCKET number, char* bytes, int size, int flags) {
    const SocketPointer found = FindForTransfer(number, bytes, size, flags);
    if (!found) return SOCKET_ERROR;
    return CountOrFail(found->Receive(bytes, static_cast<size_t>(size), flags));
}

int SliceSend(SOCKET number, const char* bytes, int size, int flags) {
    const SocketPointer found = FindForTransfer(number, bytes, size, flags);
    if (!found) return SOCKET_ERROR;
    return CountOrFail(found->Send(bytes, static_cast<size_t>(size), flags));
}

int SliceShutdown(SOCKET number, int how) {
    const SocketPointer found = FindSocket(number);
    if (!found) return SOCKET_ERROR;
    if (how < 0 || how > SD_BOTH) return FailWith(kWsaEInval);
    return CountOrFail(found->Shutdown(how));
}

int SliceCloseSocket(SOCKET number) {
    if (!WinsockStarted()) return SOCKET_ERROR;
    const SocketPointer taken = TakeSocket(number);
    if (!taken) return FailWith(WSAENOTSOCK);
    taken->Close();
    return 0;
}

uint16_t SliceNetworkShort(uint16_t value) {
    const BYTE bytes[2] = {static_cast<BYTE>(value >> 8), static_cast<BYTE>(value)};
    uint16_t ordered;
    memcpy(&ordered, bytes, sizeof(ordered));
    return ordered;
}

constexpr size_t kLongestName = 255;

namespace {

// The result of a thread's last lookup; HOSTENT points into it.
struct HostAnswer {
    std::string name;
    std::vector<uint32_t> addresses;
    std::vector<char*> list;
    char* aliases[1] = {nullptr};
    HOSTENT entry = {};
};

}  // namespace
static thread_local HostAnswer t_answer;

static HOSTENT* Answer(std::string name, std::vector<uint32_t> addresses) {
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

static bool IsUsableName(const char* name) {
    return name && *name && strnlen(name, kLongestName + 1) <= kLongestName;
}

static int DigitOf(char letter) {
    if (letter >= '0' && letter <= '9') return letter - '0';
    if (letter >= 'a' && letter <= 'f') return letter - 'a' + 10;
    if (letter >= 'A' && letter <= 'F') return letter - 'A' + 10;
    return 16;
}

// 0x starts a hexadecimal number, 0 an octal one.
static bool TakePart(const char** text, uint64_t* value) {
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

static bool IsEnd(char letter) {
    return letter == 0 || isspace(static_cast<unsigned char>(letter));
}

HOSTENT* SliceHostByName(const char* name) {
    if (!WinsockStarted()) return nullptr;
    if (const int error = ErrorOf(NetworkCall::kHostLookup)) return FailWith(error), nullptr;
    if (!IsUsableName(name)) return FailWith(kWsaHostNotFound), nullptr;
    std::vector<uint32_t> addresses;
    std::string official;
    const int result = LookUpAddresses(name, &addresses, &official);
    if (result != 0) return FailWith(WinsockLookupError(result)), nullptr;
    return Answer(std::move(official), std::move(addresses));
}

// Reads one to four parts; the last one fills all remaining bytes.
uint32_t SliceDottedAddress(const char* text) {
    uint64_t address = 0, part = 0;
    int parts = 0;
    for (; text; ++text) {
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
    for (int i = 0; i < 4; ++i)
        reinterpret_cast<BYTE*>(&ordered)[i] = static_cast<BYTE>(address >> (24 - 8 * i));
    return ordered;
}
