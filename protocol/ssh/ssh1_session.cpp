// SPDX-License-Identifier: MIT
// An SSH-1 session: received chunks become packets, and a table of states says what each packet
// does, from the server's public key to the end of the shell.
#include "protocol/ssh/ssh1.h"

#include "protocol/ssh/ssh_session.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "text/bytes.h"
#include "text/text.h"

constexpr int kLengthFieldSize = 4;
constexpr int kTextSize = 80;          // bytes of user name or password, terminator included
constexpr int kTerminalTypeSize = 41;  // bytes of the terminal type, terminator included

namespace {

enum State {
    kAwaitPublicKey,
    kSentSessionKey,
    kSentUser,
    kSentPassword,
    kAskedForTerminal,
    kInteractive,
};

}  // namespace

static void GoTo(State state) {
    session.ssh1.ssh1State = state;
    session.ssh_progress = static_cast<DWORD>(state);
    session_ports.update_status();
}

// ---------------------------------------------------------------- login

// Returns false if the session has ended: the dialog could not be shown, or the session ended while
// the dialog was open.
static bool AskForUser() {
    const SessionMark served = CurrentSession();
    const bool shown = session_ports.ask_sign_on();
    if (!SshSessionIsCurrent(served)) return false;
    if (!shown) CloseSession();
    return shown;
}

// A cancelled dialog does not end the session: the user name in the settings is sent.
static void SendUser() {
    if ((!session.settings.ssh_def || session.ssh1.loginFailed) && !AskForUser()) return;
    char user[kTextSize];
    const int length = AnsiFromWide(session.settings.ssh_u, user, kTextSize);
    if (length == 0)
        return Ssh1EndSession(TEXT("Cannot sign on to the host without a valid user name"));
    Ssh1SendString(CMSG_USER, user, length);
    GoTo(kSentUser);
}

static void TakePublicKey(const BYTE* data, int length) {
    if (Ssh1ExchangeKeys(data, length)) GoTo(kSentSessionKey);
}

static void TakeEncryption(const BYTE*, int) { SendUser(); }

static void SendPassword(const BYTE*, int) {
    char password[kTextSize];
    const int length = AnsiFromWide(session.settings.ssh_p, password, kTextSize);
    Ssh1SendString(CMSG_AUTH_PASSWORD, password, length);
    Wipe(password, sizeof(password));
    if (!session.settings.ssh_def) Wipe(session.settings.ssh_p, sizeof(session.settings.ssh_p));
    GoTo(kSentPassword);
}

static void AskAgain(const BYTE*, int) {
    const SessionMark served = CurrentSession();
    ShowError(TEXT("Login incorrect"));
    if (!SshSessionIsCurrent(served)) return;
    session.ssh1.loginFailed = 1;
    SendUser();
}

// ---------------------------------------------------------------- terminal and shell

static void RequestTerminal(const BYTE*, int) {
    char type[kTerminalTypeSize];
    const int length = AnsiFromWide(session.settings.termtype, type, kTerminalTypeSize);
    BYTE* at = Ssh1BeginPacket(CMSG_REQUEST_PTY, 4 + length + 4 * 4 + 1);
    at = PutBlock(at, type, length);
    at = PutUint32(at, session.ssh1.ptyRows);
    at = PutUint32(at, session.ssh1.ptyColumns);
    at = PutUint32(at, 0);  // width and height in pixels: unknown
    at = PutUint32(at, 0);
    *at = 0;  // no terminal modes
    Ssh1SendPacket();
    GoTo(kAskedForTerminal);
}

// A server that refuses the terminal may still grant a shell.
static void StartShell(const BYTE*, int) {
    Ssh1BeginPacket(CMSG_EXEC_SHELL, 0);
    Ssh1SendPacket();
    GoTo(kInteractive);
}

static void ShowOutput(const BYTE* data, int length) {
    ByteReader reader = ReaderOf(data, length);
    const uint8_t* text;
    int count;
    if (TakeString(&reader, &text, &count) && reader.left == 0 && count > 0)
        TerminalWrite(text, count);
}

static void ConfirmExit(const BYTE*, int) {
    Ssh1BeginPacket(CMSG_EXIT_CONFIRMATION, 0);
    Ssh1SendPacket();
}

// ---------------------------------------------------------------- the table

constexpr int kAnyType = -1;

namespace {

// The first row that matches state and type is used. A row with an `end` text shows it and closes
// the session; any other row calls `act`. A packet without a matching row is ignored.
struct StateRow {
    State state;
    int type;
    void (*act)(const BYTE* data, int length);
    LPCWSTR end;
};

}  // namespace

// clang-format off
static const StateRow kStates[] = {
    {kAwaitPublicKey,   SMSG_PUBLIC_KEY,  TakePublicKey,   nullptr},
    {kAwaitPublicKey,   kAnyType,         nullptr,
     TEXT("SSH protocol violation. Session must close!!!")},
    {kSentSessionKey,   SMSG_SUCCESS,     TakeEncryption,  nullptr},
    {kSentSessionKey,   kAnyType,         nullptr,
     TEXT("SSH server rejects the encryption mode. Session must be terminated")},
    {kSentUser,         SMSG_FAILURE,     SendPassword,    nullptr},
    {kSentUser,         kAnyType,         RequestTerminal, nullptr},
    {kSentPassword,     SMSG_SUCCESS,     RequestTerminal, nullptr},
    {kSentPassword,     kAnyType,         AskAgain,        nullptr},
    {kAskedForTerminal, SMSG_SUCCESS,     StartShell,      nullptr},
    {kAskedForTerminal, SMSG_FAILURE,     StartShell,      nullptr},
    {kAskedForTerminal, kAnyType,         nullptr,
     TEXT("SSH server has no TTY ressources. Session must be terminated")},
    {kInteractive,      SMSG_STDOUT_DATA, ShowOutput,      nullptr},
    {kInteractive,      SMSG_STDERR_DATA, ShowOutput,      nullptr},
    {kInteractive,      SMSG_EXITSTATUS,  ConfirmExit,     nullptr},
    {kInteractive,      MSG_DISCONNECT,   nullptr,
     TEXT("Disconnect request from SSH Server. Session must be terminated")},
};
// clang-format on

// ---------------------------------------------------------------- received chunks

// Handles the complete packets at the front. Stops as soon as one of them ends the session.
static void HandleWholePackets(const SessionMark& served) {
    SshState& ssh = session.ssh;
    int at = 0;
    while (ssh.recvFill - at >= kLengthFieldSize) {
        const uint64_t needed = Ssh1PacketSize(ssh.recvBuf + at);
        if (static_cast<uint64_t>(ssh.recvFill - at) < needed) break;
        Ssh1HandlePacket(ssh.recvBuf + at, static_cast<int>(needed));
        if (!SshSessionIsCurrent(served)) return;
        at += static_cast<int>(needed);
        if (ssh.recvFill < at) return;  // a refused connect has emptied the buffer
    }
    ssh.recvFill -= at;
    std::memmove(ssh.recvBuf, ssh.recvBuf + at, static_cast<size_t>(ssh.recvFill));
}

// ---------------------------------------------------------------- the protocol's record

static void Start(const char*, const BYTE*, int) { ResetCiphers(); }

static void Forget() {
    Wipe(&session.ssh1, sizeof(session.ssh1));
    session.ssh1.ptyRows = kSsh1PtyRows;
    session.ssh1.ptyColumns = kSsh1PtyColumns;
}

void Ssh1TakeChunk(const BYTE* bytes, int count) {
    SshState& ssh = session.ssh;
    const SessionMark served = CurrentSession();
    if (count > kSshReassemblySize - ssh.recvFill) {
        ShowError(TEXT("SSH out of memory"));
        if (!SshSessionIsCurrent(served)) return;
        ssh.recvFill = 0;
    }
    std::memcpy(ssh.recvBuf + ssh.recvFill, bytes, static_cast<size_t>(count));
    ssh.recvFill += count;
    HandleWholePackets(served);
}

void Ssh1HandlePacket(const BYTE* bytes, int length) {
    Ssh1Packet packet;
    if (Ssh1OpenPacket(bytes, length, &packet))
        Ssh1RunState(packet.type, packet.data, packet.length);
}

const Protocol kSsh1Protocol = {
    .identification = "SSH-1.5-1.0.00\n",
    .start = Start,
    .take_chunk = Ssh1TakeChunk,
    .send_data = [](const BYTE* data, int length, int) { Ssh1SendData(data, length); },
    .forget = Forget,
};

// Not inlined, so that its code exists only once.
[[gnu::noinline]] void Ssh1RunState(BYTE type, const BYTE* data, int length) {
    for (const StateRow& row : kStates) {
        if (row.state != session.ssh1.ssh1State) continue;
        if (row.type != kAnyType && row.type != type) continue;
        return row.end ? Ssh1EndSession(row.end) : row.act(data, length);
    }
}

void Ssh1SendData(const BYTE* data, int length) {
    if (session.ssh1.ssh1State != kInteractive) return;
    while (length > 0) {
        const int piece = length < kSsh1MaxData ? length : kSsh1MaxData;
        Ssh1SendString(CMSG_STDIN_DATA, data, piece);
        data += piece;
        length -= piece;
    }
}
