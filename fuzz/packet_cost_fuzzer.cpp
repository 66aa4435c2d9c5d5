// SPDX-License-Identifier: MIT
// The cost of one packet of an SSH server: up to 65,535 bytes, in the states in which a packet does
// the most work. The target fails by libFuzzer's time-out, which packet_cost.options sets.
// The first byte of an input chooses the state, the rest is the packet's payload:
//   0   SSH-2 without a cipher, a key exchange in progress
//   1   SSH-2 with a cipher that changes nothing, a shell open
//   2   the same during a key exchange: replies of the terminal are held
//   3   SSH-1 before the public-key message
//   4   SSH-1 with a shell open
#include <string>

#include "fuzz/cipher_off.h"
#include "protocol/protocols.h"
#include "protocol/ssh/ssh2.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "text/bytes.h"

static const SOCKET kSocket = 7;
static const size_t kMostPayload = kSshReassemblySize - 64;  // leaves room for the frame

// ---------------------------------------------------------------- the platform and the program

bool SocketSendAll(const BYTE*, int) { return true; }

// A terminal that replies for every four bytes, the length of the shortest request.
void TerminalWrite(const BYTE*, int count) {
    static const BYTE kAnswer[] = {'\033', '[', '2', '4', ';', '8', '0', 'R'};
    for (int asked = 0; asked < count / 4; asked++) SendSessionData(kAnswer, sizeof(kAnswer), 0);
}

int MessageBoxW(HWND, LPCWSTR, LPCWSTR, UINT) { return IDOK; }

const Protocol kTelnetProtocol = {nullptr, nullptr, nullptr, nullptr, [] {}};

// ---------------------------------------------------------------- one packet

static void Receive(const std::string& bytes) {
    for (size_t at = 0; at < bytes.size(); at += kReceiveSize) {
        const std::string chunk = bytes.substr(at, kReceiveSize);
        TakeSessionChunk(reinterpret_cast<const BYTE*>(chunk.data()),
                         static_cast<int>(chunk.size()));
    }
}

static void Begin(DWORD ssh_type2) {
    session_ports.ask_sign_on = [] { return true; };
    session_ports.update_status = [] {};
    session_ports.close_session = [] { session.socket = INVALID_SOCKET; };
    ForgetSshSession();
    session.settings = {};
    session.settings.ssh = 1;
    session.settings.ssh_type2 = ssh_type2;
    session.settings.ssh_type = 1;
    session.settings.ssh_def = 1;
    lstrcpyW(session.settings.ssh_u, TEXT("visitor"));
    session.connected = 1;
    session.socket = kSocket;
    session.banner_sent = 0;
    Receive("a line\n");
}

static std::string Number(size_t value) {
    std::string bytes(4, '\0');
    StoreBig(reinterpret_cast<uint8_t*>(bytes.data()), static_cast<uint32_t>(value));
    return bytes;
}

static void GiveSsh2(const std::string& payload) {
    std::string packet = Number(1 + payload.size() + 4) + '\4' + payload + "pppp";
    if (HasCipher()) packet.append(kMacSize, '\0');
    Receive(packet);
}

static void GiveSsh1(const std::string& payload) {
    const size_t length = payload.size() + 4;
    const std::string body = std::string(8 - length % 8, 'p') + payload;
    Receive(Number(length) + body +
            Number(Crc32(reinterpret_cast<const uint8_t*>(body.data()),
                         static_cast<int>(body.size()))));
}

// The host may start any number of key exchanges.
static void RunExchanges(const std::string& payload) {
    Begin(1);
    for (int i = 0; i < 4; i++) {
        GiveSsh2("\x14");
        GiveSsh2(payload);
    }
}

static void RunShell(bool keys_pending, const std::string& payload) {
    Begin(1);
    session.ssh2.cipher = &kOff;
    session.ssh2.inMac = session.ssh2.outMac = &kAny;
    session.ssh2.channelOpen = 1;
    session.ssh2.keysPending = keys_pending;
    GiveSsh2(payload);
}

static void RunSsh1(int state, const std::string& payload) {
    Begin(0);
    session.ssh1.ssh1State = state;
    GiveSsh1(payload);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2 || size > kMostPayload) return 0;
    const uint8_t state = data[0] % 5;
    const std::string payload(data + 1, data + size);
    if (state == 0) RunExchanges(payload);
    if (state == 1 || state == 2) RunShell(state == 2, payload);
    if (state >= 3) RunSsh1(state == 3 ? 0 : 5, payload);
    ForgetSshSession();
    return 0;
}
