// SPDX-License-Identifier: MIT
// Finds the buses by their addresses, as the toolkit does, and begins a conversation with each. The
// messages are those of D-Bus, protocol version 1.
#include "platform/qt/host/mute_bus.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

constexpr std::chrono::milliseconds kPatience(2000);           // for a bus
constexpr std::chrono::milliseconds kLauncherPatience(10000);  // for a program that starts one
constexpr const char* kSessionVariable = kBusVariables[0];
constexpr const char* kReadersVariable = kBusVariables[1];
constexpr char kNoBus[] = "disabled:";  // an address of a kind that no bus has

static std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// ---------------------------------------------------------------- addresses

static std::string Unescaped(const std::string& text) {
    constexpr size_t kDigits = 2;
    constexpr int kBase = 16;
    std::string plain;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            plain += text[i];
            continue;
        }
        const std::string digits = text.substr(i + 1, kDigits);
        plain += static_cast<char>(std::strtol(digits.c_str(), nullptr, kBase));
        i += digits.size();
    }
    return plain;
}

// Returns the value of `key` in a list such as "path=/run/bus,guid=1f"; "" if it is not there.
static std::string ValueOf(const std::string& list, const std::string& key) {
    for (size_t start = 0; start < list.size();) {
        const size_t end = std::min(list.find(',', start), list.size());
        if (list.compare(start, key.size(), key) == 0)
            return Unescaped(list.substr(start + key.size(), end - start - key.size()));
        start = end + 1;
    }
    return "";
}

// Fills in the socket's address and returns its length; 0 if the bus has none of this kind.
static socklen_t FindBus(const std::string& address, sockaddr_un* socket_address) {
    constexpr char kKind[] = "unix:";
    if (address.rfind(kKind, 0) != 0) return 0;
    const std::string list = address.substr(sizeof(kKind) - 1);
    std::string path = ValueOf(list, "path=");
    const std::string name = ValueOf(list, "abstract=");
    if (path.empty() && !name.empty()) path = '\0' + name;
    if (path.empty() || path.size() >= sizeof(socket_address->sun_path)) return 0;
    *socket_address = {};
    socket_address->sun_family = AF_UNIX;
    std::memcpy(socket_address->sun_path, path.data(), path.size());
    return static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
}

// ---------------------------------------------------------------- calls

namespace {

// Calls without arguments.
struct CallRow {
    const char* path;
    const char* interface;  // and the name that it goes to
    const char* member;
    std::chrono::milliseconds patience;  // for the answer
};

enum MessageType : char { kCall = 1, kReturn = 2, kError = 3 };
enum FieldCode : char { kPath = 1, kInterface = 2, kMember = 3, kDestination = 6 };

}  // namespace

static const CallRow kHello = {"/org/freedesktop/DBus", "org.freedesktop.DBus", "Hello", kPatience};
static const CallRow kReadersAddress = {"/org/a11y/bus", "org.a11y.Bus", "GetAddress",
                                        kLauncherPatience};

constexpr char kOwnByteOrder = std::endian::native == std::endian::little ? 'l' : 'B';
constexpr char kVersion = 1;
constexpr char kStartsNobody = 2;  // a service that does not run is not started for this call
constexpr size_t kHeadSize = 16;   // up to the fields of the header
constexpr size_t kFieldUnit = 8;   // fields and bodies begin at multiples of it
constexpr size_t kBodyLength = 4, kFieldsLength = 12;  // places in the head
constexpr size_t kLongestMessage = 65536;

static void PutNumber(uint32_t number, std::string* bytes) {
    char raw[sizeof(number)];
    std::memcpy(raw, &number, sizeof(number));
    bytes->append(raw, sizeof(raw));
}

static size_t NumberAt(const std::string& bytes, size_t place) {
    uint32_t number = 0;
    std::memcpy(&number, bytes.data() + place, sizeof(number));
    return number;
}

static size_t Padded(size_t size) { return (size + kFieldUnit - 1) / kFieldUnit * kFieldUnit; }

static void PutField(FieldCode code, char type, const char* text, std::string* fields) {
    fields->resize(Padded(fields->size()));
    fields->append({code, 1, type, 0});
    PutNumber(static_cast<uint32_t>(std::strlen(text)), fields);
    fields->append(text, std::strlen(text) + 1);
}

static std::string MessageOf(const CallRow& call, uint32_t serial) {
    std::string fields;
    PutField(kPath, 'o', call.path, &fields);
    PutField(kInterface, 's', call.interface, &fields);
    PutField(kMember, 's', call.member, &fields);
    PutField(kDestination, 's', call.interface, &fields);
    std::string message = {kOwnByteOrder, kCall, kStartsNobody, kVersion};
    PutNumber(0, &message);  // no body
    PutNumber(serial, &message);
    PutNumber(static_cast<uint32_t>(fields.size()), &message);
    message += fields;
    message.resize(Padded(message.size()));
    return message;
}

// ---------------------------------------------------------------- the conversation

namespace {

using Clock = std::chrono::steady_clock;

struct Conversation {
    int bus = -1;
    Clock::time_point end;  // of the patience with the call that is open
    bool mute = false;      // an answer did not come in time
    std::string heard;      // and not dealt with yet
};

}  // namespace

static bool Say(const Conversation& talk, const std::string& bytes) {
    return send(talk.bus, bytes.data(), bytes.size(), MSG_NOSIGNAL) ==
           static_cast<ssize_t>(bytes.size());
}

// Hears more until `whole` is true. False if the time is over, or the bus has gone.
template <typename Condition>
static bool Hear(Conversation* talk, const Condition& whole) {
    while (!whole()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(talk->end - Clock::now()).count();
        pollfd answer = {talk->bus, POLLIN, 0};
        talk->mute = poll(&answer, 1, static_cast<int>(std::max<decltype(left)>(left, 0))) == 0;
        if (talk->mute) return false;
        char bytes[1024];
        const ssize_t count = recv(talk->bus, bytes, sizeof(bytes), 0);
        if (count <= 0) return false;
        talk->heard.append(bytes, static_cast<size_t>(count));
    }
    return true;
}

// The greeting is a zero byte, and the user as digits in hexadecimal.
static bool LogIn(Conversation* talk) {
    talk->end = Clock::now() + kPatience;
    std::string user;
    for (const char digit : std::to_string(getuid())) user += {'3', digit};
    if (!Say(*talk, std::string(1, '\0') + "AUTH EXTERNAL " + user + "\r\n")) return false;
    const auto has_line = [&] { return talk->heard.find('\n') != std::string::npos; };
    if (!Hear(talk, has_line) || talk->heard.rfind("OK ", 0) != 0) return false;
    talk->heard.erase(0, talk->heard.find('\n') + 1);
    return Say(*talk, "BEGIN\r\n");
}

// Returns the size of the message that comes; 0 while its head is not whole.
static size_t SizeOfMessage(const std::string& heard) {
    if (heard.size() < kHeadSize) return 0;
    return Padded(kHeadSize + NumberAt(heard, kFieldsLength)) + NumberAt(heard, kBodyLength);
}

// Takes the next message and its body. False if it does not come, or is none.
static bool TakeMessage(Conversation* talk, char* type, std::string* body) {
    const auto is_wrong = [&] {
        return talk->heard.size() >= kHeadSize &&
               (talk->heard[0] != kOwnByteOrder ||
                NumberAt(talk->heard, kFieldsLength) > kLongestMessage ||
                NumberAt(talk->heard, kBodyLength) > kLongestMessage);
    };
    const auto is_whole = [&] {
        const size_t size = SizeOfMessage(talk->heard);
        return is_wrong() || (size > 0 && talk->heard.size() >= size);
    };
    if (!Hear(talk, is_whole) || is_wrong()) return false;
    const size_t size = SizeOfMessage(talk->heard), length = NumberAt(talk->heard, kBodyLength);
    *type = talk->heard[1];
    *body = talk->heard.substr(size - length, length);
    talk->heard.erase(0, size);
    return true;
}

// Signals may come before the answer, and do not prolong the wait. One call is open at a time, so
// the next answer is its own.
static bool Ask(Conversation* talk, const CallRow& call, uint32_t serial, std::string* body) {
    talk->end = Clock::now() + call.patience;
    if (!Say(*talk, MessageOf(call, serial))) return false;
    char type = 0;
    while (TakeMessage(talk, &type, body))
        if (type == kReturn || type == kError) return type == kReturn;
    return false;
}

// The text that a body begins with.
static std::string TextOf(const std::string& body) {
    constexpr size_t kLength = sizeof(uint32_t);
    return body.size() < kLength ? "" : body.substr(kLength, NumberAt(body, 0));
}

// A bus that cannot be reached is not mute: the toolkit finds that out at once. It would wait for a
// bus with a full queue of connections, though.
static bool Reach(const std::string& address, Conversation* talk) {
    sockaddr_un place;
    const socklen_t length = FindBus(address, &place);
    if (length == 0) return false;
    talk->bus = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (talk->bus < 0) return false;
    if (connect(talk->bus, reinterpret_cast<const sockaddr*>(&place), length) == 0) return true;
    talk->mute = errno == EAGAIN;
    close(talk->bus);
    talk->bus = -1;
    return false;
}

// An address may be a list. The first bus that takes the connection counts.
static bool Begin(const std::string& addresses, Conversation* talk) {
    for (size_t start = 0; start < addresses.size() && !talk->mute;) {
        const size_t end = std::min(addresses.find(';', start), addresses.size());
        if (Reach(addresses.substr(start, end - start), talk)) return true;
        start = end + 1;
    }
    return false;
}

namespace {

struct Outcome {
    size_t answered = 0;  // calls, from the first one
    bool mute = false;
    std::string text;  // of the last answer, if all calls were answered
};

}  // namespace

// Makes the calls in turn, while they are answered.
static Outcome Converse(const std::string& address, const std::vector<CallRow>& calls) {
    Conversation talk;
    Outcome outcome;
    std::string body;
    const auto ask_next = [&] {
        const auto serial = static_cast<uint32_t>(outcome.answered + 1);
        return Ask(&talk, calls[outcome.answered], serial, &body);
    };
    if (Begin(address, &talk) && LogIn(&talk))
        while (outcome.answered < calls.size() && ask_next()) ++outcome.answered;
    if (talk.bus >= 0) close(talk.bus);
    outcome.mute = talk.mute;
    if (outcome.answered == calls.size()) outcome.text = TextOf(body);
    return outcome;
}

static std::string SessionAddress() {
    const std::string given = Environment(kSessionVariable);
    const std::string folder = Environment("XDG_RUNTIME_DIR");
    return given.empty() && !folder.empty() ? "unix:path=" + folder + "/bus" : given;
}

constexpr char kLauncher[] = "dbus-launch";

// The toolkit looks in these folders, too.
static bool HasLauncher() {
    const std::string folders = "/usr/bin:/bin:" + Environment("PATH");
    for (size_t start = 0; start <= folders.size();) {
        const size_t end = std::min(folders.find(':', start), folders.size());
        const std::string path = folders.substr(start, end - start) + "/" + kLauncher;
        if (access(path.c_str(), X_OK) == 0) return true;
        start = end + 1;
    }
    return false;
}

// Without an address and without a socket in its usual place, the toolkit has a launcher look for a
// bus. If there is no launcher either, it copies the process for nothing, which takes a twentieth
// of the start.
static bool HasNoSessionBus() {
    const std::string folder = Environment("XDG_RUNTIME_DIR");
    if (!Environment(kSessionVariable).empty()) return false;
    if (!folder.empty() && access((folder + "/bus").c_str(), F_OK) == 0) return false;
    return !HasLauncher();
}

void LeaveMuteBuses() {
    const Outcome session = Converse(SessionAddress(), {kHello, kReadersAddress});
    const bool mute_session = session.mute && session.answered == 0;
    if (mute_session || HasNoSessionBus()) setenv(kSessionVariable, kNoBus, 1);
    const std::string given = Environment(kReadersVariable);
    const bool unknown = session.mute && given.empty();
    if (mute_session || unknown || Converse(given.empty() ? session.text : given, {kHello}).mute)
        setenv(kReadersVariable, kNoBus, 1);
}
