// SPDX-License-Identifier: MIT
// Conversations of both SSH versions with a scripted server, with the real ciphers, MACs, checksums
// and key exchange, in which one packet of the server is wrong. The input:
//   byte 0     bit 0 SSH-2, bits 1 and 2 the cipher, bit 3 the password is not remembered, bit 4
//   the
//              first password is refused, bit 5 the server ends the session, bit 6 there is no user
//              name, bit 7 the server of SSH-1 has no cipher
//   byte 1     the packet of the server that is wrong
//   bytes 2-5  what is wrong with it: kind, place (2 bytes), value
//   bytes 6, 7 how the bytes are cut into chunks
//   then       pieces of the session: a byte of the kind, and 16 times the number of bytes that the
//              user types then; the length of the text; the text; what is typed. With bit 3 of the
//              kind the text is repeated 64 times.
//
// What must hold:
// - Without a fault all text is shown, all that is typed arrives, and no message is shown. Without
// a
//   user name or a cipher the session ends with its message, and no password is sent.
// - A packet that is changed on the wire once there are keys is not acted on, nor what follows it:
//   the session goes as if the server had fallen silent. On SSH-1 it ends with the stated message.
// - A fault in the first key exchange of SSH-2 changes nothing, or no password is sent.
// - The client's own packets always open at the server.
// - However the bytes are cut, the same comes of them.
// - At the session's end no secret is left.
#include <gtest/gtest.h>
#include <signal.h>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "crypto/ciphers.h"
#include "crypto/packet_checks.h"
#include "fuzz/remembered_powers.h"
#include "fuzz/ssh_conversation.h"
#include "protocol/protocols.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "text/bytes.h"
#include "text/text.h"

static const SOCKET kSocket = 7;
static const size_t kMostPieces = 12;
static const size_t kHeaderSize = 8;
static const char kChecksumBox[] = "SSH message with illegal CRC checksum. Session must close!!!";
static const char kNoNameBox[] = "Cannot sign on to the host without a valid user name";
static const char kNoCipherBox[] = "Server does not support selected encryption ";
static const char kTooLargeBox[] = "Illegal SSH message. Out of memory";

Run run;
static std::string from_client;  // bytes that the socket accepted

void Break(const char* what) {
    fprintf(stderr, "broken: %s\n", what);
    abort();
}

void Require(bool holds, const char* what) {
    if (!holds) Break(what);
}

// ---------------------------------------------------------------- the platform and the program

bool SocketSendAll(const BYTE* bytes, int length) {
    from_client.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
    return true;
}

static bool HasShell() {
    if (session.socket == INVALID_SOCKET) return false;
    return session.settings.ssh_type2 ? session.ssh2.channelOpen && session.ssh2.cipher
                                      : session.ssh1.ssh1State == 5;
}

void Type(const std::string& bytes) {
    if (bytes.empty()) return;
    if (HasShell()) run.sent += bytes;
    SendSessionData(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<int>(bytes.size()), 0);
}

// Some texts make the terminal reply.
void TerminalWrite(const BYTE* bytes, int count) {
    const std::string text(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    run.outcome.display += text;
    if (text[0] & 1) Type(text.substr(0, 3));
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR, UINT) {
    std::string narrow;
    for (; *text; text++) narrow += static_cast<char>(*text);
    run.outcome.boxes.push_back(narrow);
    return IDOK;
}

static bool AskSignOn() {
    run.outcome.sign_ons++;
    WideFromAnsi(kPassword, session.settings.ssh_p, kSettingUnits);
    return true;
}

static void CloseSocket() {
    run.outcome.closes++;
    session.socket = INVALID_SOCKET;
}

const Protocol kTelnetProtocol = {nullptr, nullptr, nullptr, nullptr, [] {}};

// ---------------------------------------------------------------- the wire

static bool Strikes(FaultKind kind) {
    if (run.fault.kind != kind || run.fault.packet != run.packets) return false;
    return run.struck = true;
}

static void ChangeBit(std::string* bytes, size_t place) {
    if (bytes->empty()) return;
    const size_t bit = place % (bytes->size() * 8);
    (*bytes)[bit / 8] = static_cast<char>((*bytes)[bit / 8] ^ 1 << bit % 8);
}

static std::string Shortened(const std::string& bytes, size_t by) {
    return bytes.substr(0, bytes.size() - std::min(bytes.size(), by + 1));
}

// 0, 1, 2, ..., or close to the largest numbers of 16, 31 and 32 bits.
static uint32_t WrongLength(uint8_t value) {
    static const uint32_t kBases[] = {0, 0x10000, 0x80000000, 0};
    const uint32_t base = kBases[value >> 6];
    return value >> 6 ? base - 16 + (value & 63) : base + value;
}

static void ChangeLength(std::string* bytes, size_t place, uint8_t value) {
    if (bytes->size() < 5) return;
    const size_t at = 1 + place % (bytes->size() - 4);
    StoreBig(reinterpret_cast<uint8_t*>(bytes->data()) + at, WrongLength(value));
}

std::string Spoiled(const std::string& payload) {
    std::string spoiled = payload;
    if (Strikes(FaultKind::kPayloadBit)) ChangeBit(&spoiled, run.fault.place);
    if (Strikes(FaultKind::kPayloadShort)) spoiled = Shortened(spoiled, run.fault.value);
    if (Strikes(FaultKind::kPayloadLength))
        ChangeLength(&spoiled, run.fault.place, run.fault.value);
    return spoiled;
}

static void Put(const std::string& bytes) {
    run.pending += bytes;
    if (run.cuts.empty()) Flush();
}

void Carry(const std::string& sealed) {
    std::string bytes = sealed;
    const std::string cut_off = std::exchange(run.cut_off, std::string());
    run.made_good = run.made_good || (!cut_off.empty() && sealed.starts_with(cut_off));
    if (Strikes(FaultKind::kWireBit)) ChangeBit(&bytes, run.fault.place %= bytes.size() * 8);
    if (Strikes(FaultKind::kWireByte))
        bytes[run.fault.place % 8] =
            static_cast<char>(bytes[run.fault.place % 8] + run.fault.value % 255 + 1);
    if (Strikes(FaultKind::kDrop)) bytes.clear();
    if (Strikes(FaultKind::kDouble)) bytes += sealed;
    if (Strikes(FaultKind::kCutShort)) {
        bytes = Shortened(sealed, run.fault.value);
        run.cut_off = sealed.substr(bytes.size());
    }
    const bool overtaken = Strikes(FaultKind::kSwap);
    if (run.packets++ >= run.silent_from) return;
    if (overtaken) {
        run.held = bytes;
        return;
    }
    Put(bytes + run.held);
    run.held.clear();
}

static void Deliver(const std::string& chunk) {
    // A block of exactly that size, so that a read past its end is seen.
    const std::vector<BYTE> bytes(chunk.begin(), chunk.end());
    TakeSessionChunk(bytes.data(), static_cast<int>(bytes.size()));
}

// The server's line comes as one chunk.
void Flush() {
    const std::string bytes = std::move(run.pending);
    run.pending.clear();
    size_t turn = 0;
    for (size_t at = 0; at < bytes.size();) {
        const bool whole = run.cuts.empty() || run.packets == 1;
        const size_t wanted = whole ? kReceiveSize : run.cuts[turn++ % run.cuts.size()];
        Deliver(bytes.substr(at, wanted));
        at += wanted;
    }
}

// The client's line goes first, whatever it took for the server's line.
std::string TakeWire() {
    const size_t line = run.line_came ? 0 : from_client.find('\n') + 1;
    run.line_came = run.line_came || line > 0;
    return std::exchange(from_client, std::string()).substr(line);
}

// ---------------------------------------------------------------- secrets

// What the keys in use make of a block in each direction and of a packet.
static std::string Fingerprint() {
    BYTE blocks[4][8] = {}, packet[8 + kSha1Size] = {};
    kTripleDesCbc.encrypt(blocks[0], 8);
    kTripleDesCbc.decrypt(blocks[1], 8);
    kBlowfishCbc.encrypt(blocks[2], 8);
    kBlowfishCbc.decrypt(blocks[3], 8);
    kHmacSha1.generate(packet, 8, 0);
    std::string bytes(reinterpret_cast<char*>(blocks), sizeof(blocks));
    bytes.append(reinterpret_cast<char*>(packet) + 8, kSha1Size);
    bytes += static_cast<char>(kHmacSha1.verify(packet, 8, 0));  // both MAC keys are none
    WipeCipherKeys();
    WipeMacKeys();
    return bytes;
}

static bool IsZero(const void* bytes, size_t size) {
    const BYTE* at = static_cast<const BYTE*>(bytes);
    return at[0] == 0 && memcmp(at, at + 1, size - 1) == 0;
}

static void EndSession() {
    static const std::string without_keys = [] {
        WipeCipherKeys();
        WipeMacKeys();
        return Fingerprint();
    }();
    ForgetSshSession();
    Require(Fingerprint() == without_keys, "the keys are forgotten");
    Require(IsZero(&session.ssh2, sizeof(session.ssh2)), "SSH-2 is forgotten");
    Require(IsZero(&session.ssh, sizeof(session.ssh)), "what came is forgotten");
    session.ssh1.ptyRows = session.ssh1.ptyColumns = 0;
    Require(IsZero(&session.ssh1, sizeof(session.ssh1)), "SSH-1 is forgotten");
    session.ssh1.ptyRows = kSsh1PtyRows;
    session.ssh1.ptyColumns = kSsh1PtyColumns;
}

// ---------------------------------------------------------------- the runs

static void BeginSession(const Script& script) {
    session_ports.ask_sign_on = AskSignOn;
    session_ports.update_status = [] {};
    session_ports.close_session = CloseSocket;
    session_ports.send = SendSessionData;
    srand(1);
    from_client.clear();
    session.settings = {};
    session.settings.ssh = 1;
    session.settings.ssh_type = script.ssh_type;
    session.settings.ssh_type2 = script.ssh2;
    session.settings.ssh_def = !script.asks;
    if (script.has_user) WideFromAnsi(kUser, session.settings.ssh_u, kSettingUnits);
    WideFromAnsi(kPassword, session.settings.ssh_p, kSettingUnits);
    WideFromAnsi("vt220", session.settings.termtype, kSettingUnits);
    BeginProtocol();
    session.connected = 1;
    session.socket = kSocket;
}

static Outcome Converse(const Script& script, const Fault& fault, size_t silent_from,
                        const std::vector<size_t>& cuts) {
    run = {};
    run.fault = fault;
    run.silent_from = silent_from;
    run.cuts = cuts;
    BeginSession(script);
    remember_powers = fault.kind == FaultKind::kNone;
    (script.ssh2 ? TalkSsh2 : TalkSsh1)(script);
    remember_powers = false;
    EndSession();
    return run.outcome;
}

// ---------------------------------------------------------------- what must hold

static bool IsData(const Script& script, const std::string& message) {
    return message[0] == (script.ssh2 ? 94 : 16);
}

// What the client says by itself.
static std::vector<std::string> Answers(const Script& script, const Outcome& outcome) {
    std::vector<std::string> answers;
    for (const std::string& message : outcome.messages)
        if (!IsData(script, message)) answers.push_back(message);
    return answers;
}

static std::string DataSent(const Script& script, const Outcome& outcome) {
    std::string bytes;
    for (const std::string& message : outcome.messages)
        if (IsData(script, message)) bytes += message.substr(script.ssh2 ? 9 : 5);
    return bytes;
}

static bool Begins(const std::vector<std::string>& all, const std::vector<std::string>& first) {
    return all.size() >= first.size() && std::equal(first.begin(), first.end(), all.begin());
}

static bool IsShown(const Script& script, int kind) {
    return script.ssh2 ? kind % 8 < 4 : kind % 8 < 5 || kind % 8 == 7;
}

static void CheckWhole(const Script& script, const Outcome& whole) {
    std::string text;
    for (const Piece& piece : script.pieces)
        if (IsShown(script, piece.kind)) text += piece.text;
    Require(whole.display == text, "all text is shown");
    Require(DataSent(script, whole) == run.sent, "all that is typed arrives");
    Require(
        whole.boxes.size() ==
            (script.ssh2 ? 0u : script.refuses_first + (script.ends && script.pieces.size() % 2)),
        "no message without a reason");
    Require(whole.sign_ons == script.refuses_first + script.asks, "the user is asked if needed");
    Require(script.ssh2 || !script.asks ||
                IsZero(session.settings.ssh_p, sizeof(session.settings.ssh_p)),
            "a password that is not remembered is wiped");
    Require(whole.closes <= (script.ends ? 1 : 0), "it ends at its end");
}

static bool SaysPassword(const Outcome& outcome) {
    return std::any_of(outcome.messages.begin(), outcome.messages.end(), [](const auto& message) {
        return message.find(kPassword) != std::string::npos;
    });
}

static bool IsRefused(const Script& script) { return !script.has_user || !script.has_cipher; }

static void CheckRefused(const Script& script, const Outcome& whole) {
    const char* const box = script.has_cipher ? kNoNameBox : kNoCipherBox;
    Require(whole.boxes.size() == 1 && whole.boxes[0].starts_with(box),
            "the message of the refusal");
    Require(whole.display.empty() && whole.closes == 1, "the session ends");
    Require(!SaysPassword(whole), "no password without a user or a cipher");
}

// Once there are keys.
static void CheckSilenced2(const Script& script, const Fault& fault, const Outcome& whole,
                           const Outcome& silent, const Outcome& faulty) {
    const std::vector<std::string> said = Answers(script, faulty);
    Require(faulty.boxes.empty(), "SSH-2 drops a wrong packet without a message");
    if (fault.kind == FaultKind::kDouble) {
        // The cuts decide whether the packets after the second one are found again.
        Require(Begins(Answers(script, whole), said), "nothing but what the server said");
        Require(whole.display.starts_with(faulty.display), "nothing but what the server sent");
        Require(faulty.display.starts_with(silent.display), "what came before it is shown");
        return;
    }
    Require(faulty.display == silent.display, "nothing of a wrong packet is shown");
    Require(said == Answers(script, silent), "a wrong packet is not acted on");
    // A length of almost 65,536, which the wrong bytes may open to, ends the session.
    Require(faulty.closes || faulty == silent, "the user's own data goes on");
}

// The three lowest bits of a length can change without a change of the packet's size, and the
// checksum does not cover them.
static bool KeepsSize(const Fault& fault) {
    if (fault.kind == FaultKind::kWireByte) return fault.place % 8 == 3;
    return fault.kind == FaultKind::kWireBit && fault.place >= 24 && fault.place < 32;
}

static bool ChangesBody(const Fault& fault) {
    if (fault.kind == FaultKind::kWireByte) return fault.place % 8 >= 4;
    return fault.kind == FaultKind::kWireBit && fault.place >= 32;
}

static void CheckSilenced1(const Script& script, const Fault& fault, const Outcome& silent,
                           const Outcome& faulty) {
    Require(faulty.display == silent.display, "nothing of a wrong packet is shown");
    Require(Answers(script, faulty) == Answers(script, silent), "a wrong packet is not acted on");
    std::vector<std::string> boxes = silent.boxes;
    if (faulty.boxes == boxes && faulty.closes == silent.closes)
        return Require(!ChangesBody(fault), "a wrong checksum is told");
    Require(Begins(faulty.boxes, boxes) && faulty.boxes.size() == boxes.size() + 1, "one message");
    Require(faulty.boxes.back() == kChecksumBox || faulty.boxes.back() == kTooLargeBox,
            "the message of a wrong packet");
    Require(faulty.closes == 1, "the session ends");
}

// What comes of it if the server falls silent before the packet with the fault, or, if that comes
// twice, after it.
static Outcome Silenced(const Script& script, const Fault& fault) {
    const size_t until = fault.packet + (fault.kind == FaultKind::kDouble ? 1 : 0);
    return Converse(script, {}, until, {});
}

// `fault`, `struck`: of the run that `faulty` came of.
static void CheckFault(const Script& script, const Fault& fault, bool struck, const Outcome& whole,
                       const Outcome& silent, const Outcome& faulty) {
    if (!struck) return Require(faulty == whole, "no fault, nothing wrong");
    if (run.made_good) return;  // the packet that was cut short is whole, and the next one is wrong
    const bool sealed = fault.packet >= (script.ssh2 ? kFirstSealed2 : kFirstSealed1);
    // A packet that comes twice makes the client count one more: it then drops the first sealed
    // packet of that server, and takes the next one.
    if (script.ssh2 && !sealed && fault.kind == FaultKind::kDouble) return;
    if (script.ssh2 && !sealed)
        return Require(faulty == whole || (faulty.display.empty() && !SaysPassword(faulty)),
                       "no password without the keys of that server");
    if (!sealed || !OnWire(fault)) return;
    if (!script.ssh2 && KeepsSize(fault)) return;
    if (script.ssh2)
        CheckSilenced2(script, fault, whole, silent, faulty);
    else
        CheckSilenced1(script, fault, silent, faulty);
}

// Which bytes come after a length that is discarded, or as the server's line, depends on the cuts.
static bool CutsMatter(const Script& script, const Fault& fault) {
    if (!OnWire(fault)) return false;
    if (fault.packet == 0) return true;
    return script.ssh2 && (fault.packet < kFirstSealed2 || fault.kind == FaultKind::kDouble);
}

// ---------------------------------------------------------------- the input

struct Input {
    const uint8_t* at;
    size_t left;
};

static uint8_t TakeByte(Input* input) {
    if (input->left == 0) return 0;
    input->left--;
    return *input->at++;
}

static std::string TakeText(Input* input, size_t count) {
    count = std::min(count, input->left);
    const std::string text(reinterpret_cast<const char*>(input->at), count);
    input->at += count;
    input->left -= count;
    return text;
}

static Piece TakePiece(Input* input) {
    const uint8_t kind = TakeByte(input);
    const std::string text = TakeText(input, TakeByte(input));
    Piece piece = {kind & 7, text, TakeText(input, kind >> 4)};
    for (int i = 1; kind & 8 && i < 64; ++i) piece.text += text;
    return piece;
}

static Script TakeScript(uint8_t flags, Input* input) {
    Script script;
    script.ssh2 = flags & 1;
    script.ssh_type = (flags >> 1 & 3) % 3;
    script.refuses_first = flags & 16;
    script.ends = flags & 32;
    script.asks = flags & 8;
    script.has_user = !(flags & 64);
    script.has_cipher = script.ssh2 || !(flags & 128);
    while (input->left > 0 && script.pieces.size() < kMostPieces)
        script.pieces.push_back(TakePiece(input));
    return script;
}

static Fault TakeFault(const uint8_t* data) {
    const auto kind = static_cast<FaultKind>(data[2] % static_cast<uint8_t>(FaultKind::kKinds));
    const size_t place = data[3] | static_cast<size_t>(data[4]) << 8;
    return {kind, data[1] % size_t{32}, place, data[5]};
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // The scripted servers tell failures by it, with a signal that the driver does not know.
    testing::GTEST_FLAG(break_on_failure) = true;
    signal(SIGTRAP, [](int) { abort(); });
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < kHeaderSize || size > 2048) return 0;
    Input input = {data + kHeaderSize, size - kHeaderSize};
    const Script script = TakeScript(data[0], &input);
    const Fault fault = TakeFault(data);
    const std::vector<size_t> cuts = {data[6] + size_t{1}, data[7] + size_t{1}};
    const Outcome whole = Converse(script, {}, SIZE_MAX, {});
    if (IsRefused(script)) return CheckRefused(script, whole), 0;
    CheckWhole(script, whole);
    if (fault.kind == FaultKind::kNone) {
        Require(Converse(script, {}, SIZE_MAX, cuts) == whole, "the cuts do not matter");
        return 0;
    }
    const Outcome silent = Silenced(script, fault);
    const Outcome faulty = Converse(script, fault, SIZE_MAX, {});
    CheckFault(script, run.fault, run.struck, whole, silent, faulty);
    const Outcome cut = Converse(script, fault, SIZE_MAX, cuts);
    CheckFault(script, run.fault, run.struck, whole, silent, cut);
    Require(CutsMatter(script, fault) || cut.closes || faulty.closes || cut == faulty,
            "the cuts do not matter to a wrong packet");
    return 0;
}
