// SPDX-License-Identifier: MIT
// Whole SSH-1 conversations of an arbitrary server. The first byte of the input selects the
// session's settings, the second says how its bytes are cut. Then follow records; the first byte of
// a record is its kind:
//   0   a packet: type, data length (2 bytes, little-endian), data
//   1   raw bytes: their count, the bytes
//   2   the public-key message: byte counts of the server key and the host key, ciphers
//   3   a packet of one string: type, length, the bytes
// The target switches the cipher off after each record, so that the client can read the packets;
// bit 4 of the first byte leaves it on. Each input runs whole and again in pieces: both runs must
// show, ask and send the same.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "crypto/packet_checks.h"
#include "protocol/protocols.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "text/bytes.h"

static const SOCKET kSocket = 7;

enum Flag : uint8_t {  // bits 0 and 1 of the first byte are ssh_type
    kRemembered = 4,
    kNoUser = 8,
    kCipherStaysOn = 16,
    kNoDialog = 32,
    kBoxEndsSession = 64,
};

static std::string told;  // everything that leaves the client, in order
static uint8_t flags;
static bool overflowed;

static void Require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "broken: %s\n", what);
    abort();
}

// ---------------------------------------------------------------- the platform and the program

bool SocketSendAll(const BYTE* bytes, int length) {
    told.append("S").append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
    return true;
}

void TerminalWrite(const BYTE* bytes, int count) {
    told.append("T").append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    SendSessionData(bytes, count < 3 ? count : 3, 0);  // like a report of the terminal
}

static const char* const kTexts[] = {
    "SSH out of memory",
    "Illegal SSH message. Out of memory",
    "SSH message with illegal CRC checksum. Session must close!!!",
    "SSH protocol violation. Session must close!!!",
    "SSH server rejects the encryption mode. Session must be terminated",
    "SSH server has no TTY ressources. Session must be terminated",
    "Login incorrect",
    "Cannot sign on to the host without a valid user name",
    "Disconnect request from SSH Server. Session must be terminated",
    "Server does not support selected encryption ",
};

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR, UINT) {
    std::string narrow;
    for (; *text; text++) narrow += static_cast<char>(*text);
    bool known = false;
    for (const char* start : kTexts) known = known || narrow.starts_with(start);
    Require(known, "only the program's own texts are shown");
    overflowed = overflowed || narrow == kTexts[0];
    told += "B" + narrow;
    if (flags & kBoxEndsSession) session.socket = INVALID_SOCKET;
    return IDOK;
}

static bool AskSignOn() {
    told += "A";
    return !(flags & kNoDialog);
}

static void CloseSocket() {
    told += "C";
    session.socket = INVALID_SOCKET;
}

const Protocol kTelnetProtocol = {nullptr, nullptr, nullptr, nullptr, [] {}};

// ---------------------------------------------------------------- the server

static std::string Uint32(uint32_t value) {
    uint8_t bytes[4];
    StoreBig(bytes, value);
    return std::string(reinterpret_cast<char*>(bytes), 4);
}

static std::string Packet(uint8_t type, const std::string& data) {
    const uint32_t length = static_cast<uint32_t>(data.size()) + 5;
    const std::string body = std::string(8 - length % 8, '\0') + static_cast<char>(type) + data;
    return Uint32(length) + body +
           Uint32(
               Crc32(reinterpret_cast<const uint8_t*>(body.data()), static_cast<int>(body.size())));
}

static std::string Number(size_t bytes) {
    return {static_cast<char>(bytes * 8 >> 8), static_cast<char>(bytes * 8 & 0xFF)};
}

// The exponent 1 makes encryption fast.
static std::string Key(size_t bytes) {
    return Uint32(0) + Number(1) + "\1" + Number(bytes) + std::string(bytes, '\xC5');
}

struct Input {
    const uint8_t* next;
    size_t left;
};

static uint8_t TakeByte(Input* input) {
    if (input->left == 0) return 0;
    input->left--;
    return *input->next++;
}

static std::string TakeBytes(Input* input, size_t count) {
    if (count > input->left) count = input->left;
    std::string bytes(reinterpret_cast<const char*>(input->next), count);
    input->next += count;
    input->left -= count;
    return bytes;
}

static std::string TakePacket(Input* input) {
    const uint8_t type = TakeByte(input);
    const size_t low = TakeByte(input);
    return Packet(type, TakeBytes(input, low | static_cast<size_t>(TakeByte(input)) << 8));
}

static std::string TakeRaw(Input* input) { return TakeBytes(input, TakeByte(input)); }

static std::string TakeKeys(Input* input) {
    const std::string server = Key(TakeByte(input));
    const std::string host = Key(TakeByte(input));
    return Packet(2, "biscuits" + server + host + Uint32(0) + Uint32(TakeByte(input)) + Uint32(8));
}

static std::string TakeText(Input* input) {
    const uint8_t type = TakeByte(input);
    const std::string text = TakeBytes(input, TakeByte(input));
    return Packet(type, Uint32(static_cast<uint32_t>(text.size())) + text);
}

static std::string (*const kRecords[])(Input*) = {TakePacket, TakeRaw, TakeKeys, TakeText};

// ---------------------------------------------------------------- the runs

static void Connect() {
    told.clear();
    overflowed = false;
    srand(1);
    session_ports.ask_sign_on = AskSignOn;
    session_ports.update_status = [] {};
    session_ports.close_session = CloseSocket;
    ForgetSshSession();
    session.settings = {};
    session.settings.ssh = 1;
    session.settings.ssh_type = flags & 3;
    session.settings.ssh_def = (flags & kRemembered) != 0;
    if (!(flags & kNoUser)) lstrcpyW(session.settings.ssh_u, TEXT("visitor"));
    lstrcpyW(session.settings.ssh_p, TEXT("warehouse7"));
    lstrcpyW(session.settings.termtype, TEXT("vt220"));
    session.banner_sent = 0;
    session.connected = 1;
    session.socket = kSocket;
}

static void CheckState() {
    const Ssh1State& ssh1 = session.ssh1;
    Require(ssh1.ssh1State >= 0 && ssh1.ssh1State <= 5, "state");
    Require(session.ssh.recvFill >= 0 && session.ssh.recvFill <= kSshReassemblySize, "fill");
    for (BYTE byte : ssh1.sessionKey) Require(byte == 0, "the session key is wiped");
    if (session.socket == INVALID_SOCKET && !(flags & kBoxEndsSession))
        Require(!ssh1.ssh1Cipher && ssh1.ssh1State == 0, "a closed session is reset");
}

static void Deliver(const std::string& bytes, size_t piece) {
    for (size_t at = 0; at < bytes.size() && session.socket == kSocket; at += piece) {
        const std::string chunk = bytes.substr(at, piece);
        TakeSessionChunk(reinterpret_cast<const BYTE*>(chunk.data()),
                         static_cast<int>(chunk.size()));
        CheckState();
    }
    if (!(flags & kCipherStaysOn)) session.ssh1.ssh1Cipher = nullptr;
}

static std::string Run(Input input, size_t piece) {
    Connect();
    Deliver("SSH-1.5-fuzz\n", kReceiveSize);
    while (input.left > 0 && session.socket == kSocket)
        Deliver(kRecords[TakeByte(&input) % std::size(kRecords)](&input), piece);
    return told;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    flags = data[0];
    const Input input = {data + 2, size - 2};
    const std::string whole = Run(input, kReceiveSize);
    const bool whole_overflowed = overflowed;
    const std::string cut = Run(input, data[1] % 64 + size_t{1});
    Require(whole == cut || whole_overflowed || overflowed, "the cut does not matter");
    return 0;
}
