// SPDX-License-Identifier: MIT
// Finds the bus by its address, as the toolkit does, and begins a conversation with it.
#include "platform/qt/host/mute_bus.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>

constexpr int kPatienceMilliseconds = 2000;
constexpr char kAddressVariable[] = "DBUS_SESSION_BUS_ADDRESS";

// Returns what follows `key` in the address, up to the next comma or semicolon; "" if it has no
// such key.
static std::string ValueOf(const std::string& address, const std::string& key) {
    const size_t found = address.find(key);
    if (found == std::string::npos) return "";
    const size_t start = found + key.size();
    return address.substr(start, address.find_first_of(",;", start) - start);
}

// Fills in the socket's address and returns its length; 0 if the bus has none of this kind.
static socklen_t FindBus(sockaddr_un* socket_address) {
    const char* given = std::getenv(kAddressVariable);
    const char* folder = std::getenv("XDG_RUNTIME_DIR");
    const std::string address = given ? given : "";
    std::string path = ValueOf(address, "unix:path=");
    const std::string name = ValueOf(address, "unix:abstract=");
    if (address.empty() && folder) path = std::string(folder) + "/bus";
    if (path.empty() && !name.empty()) path = '\0' + name;
    if (path.empty() || path.size() >= sizeof(socket_address->sun_path)) return 0;
    *socket_address = {};
    socket_address->sun_family = AF_UNIX;
    std::memcpy(socket_address->sun_path, path.data(), path.size());
    return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
}

// A bus that cannot be reached is not mute: the toolkit finds that out at once.
static bool IsMute(const sockaddr_un& address, socklen_t length) {
    constexpr char kGreeting[] = "\0AUTH\r\n";  // the answer is a list of ways to log in
    const int bus = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (bus < 0) return false;
    bool mute = false;
    if (connect(bus, reinterpret_cast<const sockaddr*>(&address), length) == 0 &&
        send(bus, kGreeting, sizeof(kGreeting) - 1, MSG_NOSIGNAL) > 0) {
        pollfd answer = {bus, POLLIN, 0};
        mute = poll(&answer, 1, kPatienceMilliseconds) == 0;
    }
    close(bus);
    return mute;
}

void LeaveMuteBus() {
    sockaddr_un address;
    const socklen_t length = FindBus(&address);
    if (length > 0 && IsMute(address, length)) setenv(kAddressVariable, "disabled:", 1);
}
