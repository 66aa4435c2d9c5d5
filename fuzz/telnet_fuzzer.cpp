// SPDX-License-Identifier: MIT
// Any bytes of a host through the Telnet engine, three times: byte by byte with a check of the
// state after each one, in chunks of the buffer's size, and cut as the first bytes of the input
// say. All runs must show and send the same. In the first byte, bit 0 turns on the trace and bit 1
// starts in a subnegotiation that the last connection left incomplete. With bit 2 there is one more
// run, with the automatic login: each response is sent at most once, and nothing else changes. A
// second implementation of the protocol says what is sent, and without the trace what is shown.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <string>

#include "connection/connection.h"
#include "protocol/protocols.h"
#include "protocol/ssh/ssh1.h"
#include "protocol/ssh/ssh2.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"

struct Outcome {
    std::string wire, display;
    TelnetState telnet;
    DWORD localecho;
};

static const size_t kHeadBytes = 5;
static const SOCKET kSocket = 7;
static std::string wire, display;
static int wakes;

// ---------------------------------------------------------------- the platform and the program

int SliceSend(SOCKET, const char* bytes, int size, int) {
    wire.append(bytes, static_cast<size_t>(size));
    return size;
}

int TerminalFeedByte(BYTE b) {
    display += static_cast<char>(b);
    return 0;
}

const char* TerminalTakeReply() { return nullptr; }

void TerminalWrite(const BYTE* bytes, int count) {
    display.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
}

void ShowWritten(int) {}
void SessionClosed() {}
void WakeReceiveThread() { wakes++; }

// No bytes go to or come from SSH here.
static const Protocol kNoProtocol = {nullptr, nullptr, [](const BYTE*, int) {},
                                     [](const BYTE*, int, int) {}, [] {}};
const Protocol kSsh1Protocol = kNoProtocol;
const Protocol kSsh2Protocol = kNoProtocol;

// ---------------------------------------------------------------- the runs

static void Require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "broken: %s\n", what);
    abort();
}

static void Connect(uint8_t flags) {
    wire.clear();
    display.clear();
    session_ports.send = SendSessionData;
    session.telnet = {};
    session.telnet.in_subneg = flags >> 1 & 1;
    session.modes.localecho = 0;
    session.settings = {};
    session.settings.nego = flags & 1;
    lstrcpyW(session.settings.termtype, TEXT("vt220"));
    session.connected = 1;
    session.socket = kSocket;
    TelnetReset();
}

static void Receive(const std::string& bytes) {
    wakes = 0;
    session.receive_count = static_cast<int>(bytes.size());
    bytes.copy(session.receive_buffer, kReceiveSize);
    session.receive_ready = 0;
    OnSocketEvent(0);
    Require(session.receive_ready == 1 && wakes == 1, "the buffer is handed back");
}

static Outcome Take() { return {wire, display, session.telnet, session.modes.localecho}; }

static void CheckBounds() {
    const TelnetState& t = session.telnet;
    Require(t.iac_seen <= 1 && t.in_subneg <= 1, "flags");
    Require(t.subneg_count >= 0 && t.subneg_count <= kSubnegSize, "subneg_count");
    Require(t.last_command == 0 || (t.last_command >= 250 && t.last_command <= 254),
            "last_command");
}

static void CheckTables() {
    const TelnetState& t = session.telnet;
    Require(t.my_options[0] == 0, "binary is never offered");
    for (int i = 0; i < kTelnetOptions; i++) {
        const int most = i == 0 || i == 1 || i == 3 || i == 24;
        Require(t.his_options[i] <= most && t.my_options[i] <= most, "only known options are on");
    }
}

static Outcome RunByteByByte(const std::string& bytes, uint8_t flags) {
    Connect(flags);
    for (char c : bytes) {
        const BYTE b = static_cast<BYTE>(c);
        if (!TelnetReceiveByte(b)) display += c;
        CheckBounds();
    }
    CheckTables();
    return Take();
}

// Compares the Telnet state without the buffer of the current chunk.
static bool SameTelnet(const TelnetState& a, const TelnetState& b) {
    return a.iac_seen == b.iac_seen && a.last_command == b.last_command &&
           a.in_subneg == b.in_subneg && a.subneg_count == b.subneg_count &&
           memcmp(a.subneg_buffer, b.subneg_buffer, kSubnegSize) == 0 &&
           memcmp(a.his_options, b.his_options, kTelnetOptions) == 0 &&
           memcmp(a.my_options, b.my_options, kTelnetOptions) == 0;
}

static void ReceiveCut(const std::string& bytes, const uint8_t* cuts, size_t count) {
    size_t turn = 0;
    for (size_t at = 0; at < bytes.size();) {
        const size_t length = count ? cuts[turn++ % count] + size_t{1} : kReceiveSize;
        Receive(bytes.substr(at, length));
        at += length;
    }
    CheckBounds();
}

static Outcome RunCut(const std::string& bytes, uint8_t flags, const uint8_t* cuts, size_t count) {
    Connect(flags);
    ReceiveCut(bytes, cuts, count);
    return Take();
}

static void RunLogin(const std::string& bytes, uint8_t flags, const uint8_t* cuts,
                     const Outcome& expected) {
    const AutoLogin& login = session.login;
    Connect(flags);
    lstrcpyW(session.settings.sear1, TEXT("in:"));
    lstrcpyW(session.settings.resp1, TEXT("visitor\\015"));  // 8 bytes
    lstrcpyW(session.settings.sear2, TEXT("d:"));
    lstrcpyW(session.settings.resp2, TEXT("house\\015"));  // 6 bytes
    ArmAutoLogin();
    ReceiveCut(bytes, cuts, kHeadBytes - 1);
    Require(login.login_armed1 <= 1 && login.login_armed2 <= 1, "the responses' marks");
    Require(wire.size() ==
                expected.wire.size() + (login.login_armed1 ? 0 : 8) + (login.login_armed2 ? 0 : 6),
            "only the responses are sent too");
    Require(
        display.size() == expected.display.size() && SameTelnet(session.telnet, expected.telnet),
        "a response changes nothing");
    session.login = {};
}

// The data of a chunk is shown after its trace lines, so the order depends on the chunks. The shown
// bytes are therefore compared only without the trace.
static void RequireSame(const Outcome& a, const Outcome& b, bool traced) {
    Require(a.wire == b.wire, "sent alike");
    Require(a.display.size() == b.display.size(), "shown as much");
    Require(traced || a.display == b.display, "shown alike");
    Require(SameTelnet(a.telnet, b.telnet), "the same state");
    Require(a.localecho == b.localecho, "the same echo");
}

// ---------------------------------------------------------------- a second implementation

namespace {

struct Model {
    bool traced, in_subnegotiation;
    bool iac = false;
    uint8_t command = 0;  // the last one; a later IAC and option repeat it
    std::map<uint8_t, bool> mine = {{1, true}}, his = {};
    uint8_t first = 0, second = 0;  // bytes of the last subnegotiation
    size_t count = 0;
    DWORD echo = 0;
    std::string wire = {}, shown = {};
};

}  // namespace

static void Answer(Model* m, uint8_t command, uint8_t option) {
    m->wire += {'\xFF', static_cast<char>(command), static_cast<char>(option)};
}

static void AnswerChange(Model* m, bool* value, bool on, uint8_t command, uint8_t option) {
    const bool known = option < kTelnetOptions;
    if (known && *value == on) return;
    if (known) *value = on;
    Answer(m, command, option);
}

static bool IsOneOf(uint8_t option, std::initializer_list<uint8_t> options) {
    return std::find(options.begin(), options.end(), option) != options.end();
}

static void TakeOption(Model* m, uint8_t option) {
    enum { kSb = 250, kWill, kWont, kDo, kDont };
    const bool echo = option == 1;
    if (echo && m->command >= kWill) m->echo = m->command == kWont || m->command == kDo;
    if (m->command == kSb) {
        m->in_subnegotiation = true;
        m->first = option;
        m->count = 1;
    } else if (m->command == kWill) {
        if (echo) m->mine[1] = false;
        if (!IsOneOf(option, {0, 1, 3, 24})) return Answer(m, kDont, option);
        AnswerChange(m, &m->his[option], true, kDo, option);
    } else if (m->command == kWont) {
        AnswerChange(m, &m->his[option], false, kDont, option);
    } else if (m->command == kDo) {
        if (echo) m->his[1] = false;
        if (!IsOneOf(option, {1, 3, 24})) return Answer(m, kWont, option);
        AnswerChange(m, &m->mine[option], true, kWill, option);
    } else if (m->command == kDont) {
        AnswerChange(m, &m->mine[option], false, kWont, option);
    }
}

static void TakeOfSubnegotiation(Model* m, uint8_t byte) {
    if (byte != 240) {
        if (m->count == 0) m->first = byte;
        if (m->count == 1) m->second = byte;
        ++m->count;
        return;
    }
    m->in_subnegotiation = false;
    if (m->first == 24 && m->second == 1) m->wire += std::string("\xFF\xFA\x18\0vt220\xFF\xF0", 11);
}

static void TakeModelByte(Model* m, uint8_t byte) {
    if (m->in_subnegotiation) return TakeOfSubnegotiation(m, byte);
    if (byte == 255) {
        m->iac = true;
    } else if (!m->iac) {
        m->shown += static_cast<char>(byte);
    } else if (byte >= 250) {
        m->command = byte;
    } else if (byte == 242) {
        m->iac = !m->traced;
    } else {
        m->iac = false;
        TakeOption(m, byte);
    }
}

static void CheckModel(const std::string& bytes, uint8_t flags, const Outcome& outcome) {
    Model model = {(flags & 1) != 0, (flags & 2) != 0};
    for (const char c : bytes) TakeModelByte(&model, static_cast<uint8_t>(c));
    Require(outcome.wire == model.wire, "the answers of the protocol");
    Require((flags & 1) || outcome.display == model.shown, "the data without the commands");
    Require(outcome.localecho == model.echo, "the echo of the last request");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < kHeadBytes) return 0;
    const std::string bytes(reinterpret_cast<const char*>(data) + kHeadBytes, size - kHeadBytes);
    const uint8_t flags = data[0];
    const Outcome expected = RunByteByByte(bytes, flags);
    CheckModel(bytes, flags, expected);
    RequireSame(expected, RunCut(bytes, flags, nullptr, 0), flags & 1);
    RequireSame(expected, RunCut(bytes, flags, data + 1, kHeadBytes - 1), flags & 1);
    if (flags & 4) RunLogin(bytes, flags, data + 1, expected);
    return 0;
}
