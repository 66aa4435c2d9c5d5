// SPDX-License-Identifier: MIT
// Any bytes of an SSH-2 server, in any state. The first byte selects the state of the session and
// whether it has a cipher, the second says how the bytes are cut into chunks. Then follow records:
//   0   a packet: length of its payload (2 bytes, big-endian), the payload
//   1   the same with a padding length from the input
//   2   raw bytes: their count (2 bytes), the bytes
//   3   bytes of the terminal: their count (2 bytes), the bytes
// The cipher changes nothing, and its MAC of 20 bytes always matches. Each input runs whole and
// again in pieces: both runs must show, send and ask the same.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "protocol/protocols.h"
#include "protocol/ssh/ssh2.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"

static const SOCKET kSocket = 7;
static const size_t kMacSize = 20;

static std::string told;  // everything that leaves the client, in order

static void Require(bool holds, const char* what) {
    if (holds) return;
    fprintf(stderr, "broken: %s\n", what);
    abort();
}

// ---------------------------------------------------------------- the platform and the program

bool SocketSendAll(const BYTE* bytes, int length) {
    Require(length > 0 && length <= kSsh2SendSize, "a packet's size");
    told.append("S").append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
    return true;
}

void TerminalWrite(const BYTE* bytes, int count) {
    Require(bytes >= session.ssh2.packetBuf && count >= 0 &&
                bytes + count <= session.ssh2.packetBuf + kSsh2PacketSize,
            "data inside the packet");
    told.append("T").append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    SendSessionData(bytes, count < 3 ? count : 3, 0);  // like a report of the terminal
}

static bool AskSignOn() {
    told += "A";
    return told.size() % 5 != 0;
}

int MessageBoxW(HWND, LPCWSTR, LPCWSTR, UINT) {
    told += "B";
    return IDOK;
}

static void UpdateStatus() { told += "U"; }

static void CloseSocket() {
    told += "C";
    session.socket = INVALID_SOCKET;
}

const Protocol kTelnetProtocol = {nullptr, nullptr, nullptr, nullptr, [] {}};

// ---------------------------------------------------------------- a cipher switched off

static void NoKey(const uint8_t*) {}
static void NoCipher(uint8_t*, int length) { Require(length >= 0, "a length to decrypt"); }
static void NoMac(uint8_t* packet, int length, uint32_t) { memset(packet + length, 0, kMacSize); }

static int AnyMac(const uint8_t* packet, int length, uint32_t) {
    unsigned sum = 0;
    for (size_t i = 0; i < kMacSize; i++) sum += packet[static_cast<size_t>(length) + i];
    return sum <= kMacSize * 255;
}

static const SshCipher kOff = {"off", NoKey, NoKey, NoKey, NoKey, NoCipher, NoCipher, "off", 8, 0};
static const SshMac kAny = {"any", NoKey, NoKey, NoMac, AnyMac, "any", kMacSize};

// ---------------------------------------------------------------- one exponent for all exchanges

ConstBignum RealGenerate(DhContext*, int) __asm__("__real__Z10DhGenerateP9DhContexti");
ConstBignum GenerateOnce(DhContext*, int) __asm__("__wrap__Z10DhGenerateP9DhContexti");

ConstBignum GenerateOnce(DhContext* context, int bits) {
    static DhContext first = {};
    if (!first.e) {
        DhSetup(&first);
        RealGenerate(&first, bits);
    }
    BignumFree(context->x);
    BignumFree(context->e);
    context->x = BignumCopy(first.x);
    context->e = BignumCopy(first.e);
    return context->e;
}

// ---------------------------------------------------------------- the runs

enum Flag : uint8_t {
    kBehindCipher = 1,
    kChannelOpen = 2,
    kPtyRequested = 4,
    kRemembered = 8,
    kAgreed = 16,
    kKeysPending = 32,
    kBlowfish = 64,
    kNoUser = 128
};

static void Begin(uint8_t flags) {
    static const char kLine[] = "SSH-2.0-fuzzed\r\n";
    session_ports.ask_sign_on = AskSignOn;
    session_ports.update_status = UpdateStatus;
    session_ports.close_session = CloseSocket;
    ForgetSshSession();
    told.clear();
    session.settings = {};
    session.settings.ssh = 1;
    session.settings.ssh_type2 = 1;
    session.settings.ssh_type = flags & kBlowfish ? 2 : 1;
    session.settings.ssh_def = flags & kRemembered ? 1 : 0;
    if (!(flags & kNoUser)) lstrcpyW(session.settings.ssh_u, TEXT("visitor"));
    lstrcpyW(session.settings.termtype, TEXT("vt220"));
    session.connected = 1;
    session.socket = kSocket;
    session.banner_sent = 0;
    TakeSessionChunk(reinterpret_cast<const BYTE*>(kLine), sizeof(kLine) - 1);

    Ssh2State& ssh = session.ssh2;
    ssh.inMac = ssh.outMac = &kAny;
    if (flags & kBehindCipher) ssh.cipher = &kOff;
    ssh.channelOpen = flags & kChannelOpen ? 1 : 0;
    ssh.ptyRequested = flags & kPtyRequested ? 1 : 0;
    ssh.keysPending = flags & kKeysPending ? 1 : 0;
    if (flags & kAgreed) {
        ssh.K = BignumFromUint32(0x12345678);
        ssh.kexDone = 1;
    }
}

// New keys activate the real cipher; this switches it off again.
static void SwitchOff() {
    if (session.ssh2.cipher) session.ssh2.cipher = &kOff;
}

static void Check() {
    const Ssh2State& ssh = session.ssh2;
    Require(session.ssh.recvFill >= 0 && session.ssh.recvFill <= kSshReassemblySize, "recvFill");
    Require(ssh.kexDone <= 1 && (!ssh.kexDone || ssh.K), "keys to derive");
    Require(ssh.heldLength == 0 || ssh.heldData, "what is held");
    Require(ssh.hostKey == nullptr, "a host key that stays");
}

struct Input {
    const uint8_t* at;
    size_t left;
};

static std::string Take(Input* input, size_t count) {
    if (count > input->left) count = input->left;
    const std::string bytes(reinterpret_cast<const char*>(input->at), count);
    input->at += count;
    input->left -= count;
    return bytes;
}

static size_t TakeNumber(Input* input, size_t bytes) {
    size_t number = 0;
    for (const char c : Take(input, bytes)) number = number << 8 | static_cast<uint8_t>(c);
    return number;
}

static std::string Framed(const std::string& payload, size_t padding) {
    const uint32_t length = static_cast<uint32_t>(1 + payload.size() + 4);
    std::string packet;
    for (int shift = 24; shift >= 0; shift -= 8) packet += static_cast<char>(length >> shift);
    packet += static_cast<char>(padding);
    packet += payload + "pppp";
    if (HasCipher()) packet += std::string(kMacSize, '\0');
    return packet;
}

static void Receive(const std::string& bytes, size_t cut) {
    for (size_t at = 0; at < bytes.size() && session.socket == kSocket; at += cut) {
        const std::string chunk = bytes.substr(at, cut);
        TakeSessionChunk(reinterpret_cast<const BYTE*>(chunk.data()),
                         static_cast<int>(chunk.size()));
        Check();
        SwitchOff();
    }
}

static void TakeRecord(Input* input, size_t cut) {
    const size_t kind = TakeNumber(input, 1) % 4;
    const size_t padding = kind == 1 ? TakeNumber(input, 1) : 4;
    const std::string bytes = Take(input, TakeNumber(input, 2));
    if (kind == 3)
        SendSessionData(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<int>(bytes.size()),
                        0);
    else
        Receive(kind == 2 ? bytes : Framed(bytes, padding), cut);
}

static std::string Run(const uint8_t* data, size_t size, size_t cut) {
    Begin(data[0]);
    Input input = {data + 2, size - 2};
    while (input.left > 0 && session.socket == kSocket) TakeRecord(&input, cut);
    return told;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2 || size > 8192) return 0;
    const std::string whole = Run(data, size, kReceiveSize);
    // Raw bytes may contain NEWKEYS. The real cipher then decrypts the rest of the chunk, so pieces
    // may give another result.
    if (whole.find('U', 1) == std::string::npos)
        Require(Run(data, size, data[1] % 40 + size_t{1}) == whole, "the same in pieces");
    else
        Run(data, size, data[1] % 40 + size_t{1});
    ForgetSshSession();
    return 0;
}
