// SPDX-License-Identifier: MIT
// An SSH-2 session from its beginning to its end: it splits received chunks into packets and passes
// each packet to the handler of its message. Last comes the user's authentication by password.
#include "protocol/ssh/ssh2.h"

#include "protocol/ssh/ssh_session.h"
#include "session/session_ports.h"
#include "session/session_state.h"
#include "text/bytes.h"
#include "text/text.h"

constexpr int kLengthSize = 4;

namespace {

struct MessageRow {
    BYTE number;
    bool secured;  // accepted only while there is a cipher: no password is sent unencrypted
    void (*handler)();
};

}  // namespace

// A message that is not in this table is ignored.
// clang-format off
static const MessageRow kMessages[] = {
    {kMsgServiceAccept,            true,  OnServiceAccept},
    {kMsgKexInit,                  false, OnKexInit},
    {kMsgNewKeys,                  false, OnNewKeys},
    {kMsgKexDhReply,               false, OnKexDhReply},
    {kMsgUserauthFailure,          true,  OnUserauthFailure},
    {kMsgUserauthSuccess,          true,  OnUserauthSuccess},
    {kMsgUserauthPasswdChangeReq,  false, CloseSession},
    {kMsgChannelOpenConfirmation,  true,  OnChannelOpenConfirmation},
    {kMsgChannelOpenFailure,       false, CloseSession},
    {kMsgChannelData,              true,  OnChannelData},
    {kMsgChannelExtendedData,      true,  OnChannelExtendedData},
    {kMsgChannelClose,             false, CloseSession},
    {kMsgChannelSuccess,           true,  OnChannelSuccess},
    {kMsgChannelFailure,           false, CloseSession},
};
// clang-format on

static int MacSize() { return HasCipher() ? session.ssh2.inMac->macLength : 0; }

static void DropWaiting() {
    session.ssh.recvFill = 0;
    session.ssh2.headDecrypted = 0;
}

static void Append(const BYTE* bytes, int count) {
    SshState& ssh = session.ssh;
    if (ssh.recvFill + count > kSshReassemblySize) DropWaiting();
    std::memcpy(ssh.recvBuf + ssh.recvFill, bytes, static_cast<size_t>(count));
    ssh.recvFill += count;
}

// Returns the size of the packet at the front of recvBuf, or 0 while it is not complete.
static int CompletePacket() {
    SshState& ssh = session.ssh;
    if (ssh.recvFill < kLengthSize) return 0;
    if (HasCipher() && !session.ssh2.headDecrypted) {
        if (ssh.recvFill < kCipherBlockSize) return 0;
        DecryptHead(ssh.recvBuf);
        session.ssh2.headDecrypted = 1;
    }
    const uint32_t packetLength = GetUint32(ssh.recvBuf);
    if (packetLength > kSshReassemblySize) {
        DropWaiting();
        return 0;
    }
    const int needed = kLengthSize + static_cast<int>(packetLength) + MacSize();
    return needed <= ssh.recvFill ? needed : 0;
}

// Handles one packet; returns false if there is no complete one, or if the handler ended the
// session. In that case the waiting bytes are dropped only if there is no socket: otherwise a new
// session may have begun, and they belong to it.
static bool TakePacket(const SessionMark& served) {
    SshState& ssh = session.ssh;
    const int size = CompletePacket();
    if (size == 0) return false;
    session.ssh2.headDecrypted = 0;
    Ssh2HandlePacket(ssh.recvBuf, size);
    if (!SshSessionIsCurrent(served)) {
        if (session.socket.load(std::memory_order_acquire) == INVALID_SOCKET) DropWaiting();
        return false;
    }
    if (ssh.recvFill < size) return false;  // a refused connect has emptied the buffer
    ssh.recvFill -= size;
    std::memmove(ssh.recvBuf, ssh.recvBuf + size, static_cast<size_t>(ssh.recvFill));
    return true;
}

// Decrypts what follows the first block and checks the MAC after the first `total` bytes.
static bool Authentic(int total, int length) {
    Ssh2State& ssh = session.ssh2;
    if (!HasCipher()) return true;
    const int behind_head = length - kCipherBlockSize - ssh.inMac->macLength;
    if (behind_head > 0) ssh.cipher->decrypt(ssh.packetBuf + kCipherBlockSize, behind_head);
    return ssh.inMac->verify(ssh.packetBuf, total, ssh.recvSeq);
}

// Sets the reader to the first byte after the message number. Returns false if the padding leaves
// no payload.
static bool OpenPayload(int total, BYTE* number) {
    Ssh2State& ssh = session.ssh2;
    BYTE padding;
    ByteReader reader = ReaderOf(ssh.packetBuf + kLengthSize, total - kLengthSize);
    if (!TakeByte(&reader, &padding) || padding > reader.left) return false;
    ssh.payload = ReaderOf(reader.next, reader.left - padding);
    ssh.reader = ssh.payload;
    return TakeByte(&ssh.reader, number);
}

static void Dispatch(BYTE number) {
    for (const MessageRow& row : kMessages) {
        if (row.number != number) continue;
        if (HasCipher() || !row.secured) row.handler();
        return;
    }
}

void Ssh2TakeChunk(const BYTE* bytes, int count) {
    if (!session.ssh2.inMac) return;  // the session began with SSH-1
    const SessionMark served = CurrentSession();
    Append(bytes, count);
    while (TakePacket(served)) {
    }
}

void Ssh2HandlePacket(const BYTE* packet, int length) {
    Ssh2State& ssh = session.ssh2;
    if (length < kLengthSize || length > kSshReassemblySize) return;
    std::memcpy(ssh.packetBuf, packet, static_cast<size_t>(length));
    const uint32_t total = GetUint32(ssh.packetBuf) + kLengthSize;
    if (total >= kSshReassemblySize) return CloseSession();
    if (static_cast<int>(total) + MacSize() != length) return;
    if (!Authentic(static_cast<int>(total), length)) return;
    ++ssh.recvSeq;
    BYTE number;
    if (OpenPayload(static_cast<int>(total), &number)) Dispatch(number);
}

// ---------------------------------------------------------------- the protocol's record

void Ssh2Start(const char* clientVersion, const BYTE* serverVersion, int serverLength) {
    Ssh2Forget();
    Ssh2State& ssh = session.ssh2;
    HashIdentifications(clientVersion, serverVersion, serverLength);
    ssh.outMac = ssh.inMac = &kHmacSha1;
    ssh.firstKex = 1;
    ResetCiphers();
}

void Ssh2Forget() {
    Ssh2State& ssh = session.ssh2;
    ForgetHeldData();
    BignumFree(ssh.K);
    DhForget(&ssh.dh);
    DssFreeKey(ssh.hostKey);
    Wipe(&ssh, sizeof(ssh));
}

const Protocol kSsh2Protocol = {
    .identification = "SSH-2.0-1.0.00\n",
    .start = Ssh2Start,
    .take_chunk = Ssh2TakeChunk,
    .send_data = [](const BYTE* data, int length, int) { Ssh2SendChannelData(data, length); },
    .forget = Ssh2Forget,
};

// ---------------------------------------------------------------- authentication

constexpr int kCredentialSize = 80;

// Returns false if nothing more may be sent, since the connection can end while the dialog is open.
static bool SignOn() {
    const SessionMark served = CurrentSession();
    const bool shown = session_ports.ask_sign_on();
    if (!SshSessionIsCurrent(served) || !HasCipher()) return false;
    if (!shown) CloseSession();
    return shown;
}

static void RefuseEmptyName() {
    const SessionMark served = CurrentSession();
    ShowError(TEXT("Cannot sign on to the host without a valid user name"));
    if (SshSessionIsCurrent(served)) CloseSession();
}

static void SendPasswordRequest(const char* name, const char* password) {
    static const char kService[] = "ssh-connection";
    static const char kMethod[] = "password";
    BeginPacket(kMsgUserauthRequest, 1 + StringSize(name) + StringSize(kService) +
                                         StringSize(kMethod) + 1 + StringSize(password));
    BYTE* at = PutString(Payload(), name);
    at = PutString(at, kService);
    at = PutString(at, kMethod);
    at = PutByte(at, 0);  // the password is not being changed
    PutString(at, password);
    SendPacket();
}

void Ssh2Authenticate(bool retry) {
    if ((retry || !session.settings.ssh_def) && !SignOn()) return;
    char name[kCredentialSize] = {};
    char password[kCredentialSize] = {};
    AnsiFromWide(session.settings.ssh_u, name, kCredentialSize);
    if (!name[0]) return RefuseEmptyName();
    AnsiFromWide(session.settings.ssh_p, password, kCredentialSize);
    SendPasswordRequest(name, password);
    Wipe(name, sizeof(name));
    Wipe(password, sizeof(password));
}

void OnServiceAccept() { Ssh2Authenticate(false); }

void OnUserauthFailure() { Ssh2Authenticate(true); }
