// SPDX-License-Identifier: MIT
// The channel of an SSH-2 session: requesting the pseudo-terminal and the shell, and passing bytes
// in both directions.
#include "protocol/ssh/ssh2.h"

#include <algorithm>
#include <bit>

#include "session/session_state.h"
#include "terminal/interpreter.h"
#include "text/bytes.h"
#include "text/text.h"

constexpr uint32_t kLocalChannel = 27;
constexpr int kWindow = 8000;       // bytes; each adjust tops the window up to this
constexpr int kAdjustBelow = 4000;  // bytes; send an adjust when less than this is left
constexpr uint32_t kMaxPacket = 16384;
constexpr int kTermTypeSize = 40;
constexpr size_t kLeastHeldRoom = 256;  // bytes

static void RequestPty() {
    static const char kRequest[] = "pty-req";
    static const int kColumns = 80, kRows = 24;
    char type[kTermTypeSize] = {};
    AnsiFromWide(session.settings.termtype, type, kTermTypeSize);
    BeginPacket(kMsgChannelRequest, 1 + 4 + StringSize(kRequest) + 1 + StringSize(type) + 5 * 4);
    BYTE* at = PutUint32(Payload(), session.ssh2.remoteChannel);
    at = PutString(at, kRequest);
    at = PutByte(at, 1);  // a reply is wanted
    at = PutString(at, type);
    at = PutUint32(at, kColumns);
    at = PutUint32(at, kRows);
    at = PutUint32(at, 0);  // pixels
    at = PutUint32(at, 0);
    PutString(at, "");  // no terminal modes
    SendPacket();
    session.ssh2.ptyRequested = 1;
}

static void RequestShell() {
    static const char kRequest[] = "shell";
    BeginPacket(kMsgChannelRequest, 1 + 4 + StringSize(kRequest) + 1);
    BYTE* at = PutUint32(Payload(), session.ssh2.remoteChannel);
    at = PutString(at, kRequest);
    PutByte(at, 1);
    SendPacket();
}

static void AdjustWindow(int length) {
    Ssh2State& ssh = session.ssh2;
    ssh.localWindow -= length;
    if (ssh.localWindow >= kAdjustBelow) return;
    BeginPacket(kMsgChannelWindowAdjust, 1 + 4 + 4);
    BYTE* at = PutUint32(Payload(), ssh.remoteChannel);
    PutUint32(at, static_cast<uint32_t>(kWindow - ssh.localWindow));
    SendPacket();
    ssh.localWindow = kWindow;
}

// Shows the string at the reader. It is dropped if its length exceeds the packet.
static void ShowData() {
    const BYTE* data;
    int length;
    ReadString(&data, &length);
    if (!data) return;
    if (length > 0) TerminalWrite(data, length);
    AdjustWindow(length);
}

static void SendDataPacket(const BYTE* data, int length) {
    BeginPacket(kMsgChannelData, 1 + 4 + 4 + length);
    PutBlock(PutUint32(Payload(), session.ssh2.remoteChannel), data, length);
    SendPacket();
}

static void SendDataPackets(const BYTE* data, int length) {
    for (int at = 0; at < length; at += kSsh2MaxData)
        SendDataPacket(data + at, std::min(kSsh2MaxData, length - at));
}

// Returns the size of the block that holds `length` bytes. The sizes double, so that the data is
// moved only a few times.
static size_t HeldRoom(int length) {
    return length == 0 ? 0 : std::bit_ceil(std::max(static_cast<size_t>(length), kLeastHeldRoom));
}

// Returns false if there is no memory.
static bool MakeHeldRoom(int length) {
    Ssh2State& ssh = session.ssh2;
    const size_t room = HeldRoom(ssh.heldLength);
    if (HeldRoom(length) == room) return true;
    BYTE* grown = static_cast<BYTE*>(std::malloc(HeldRoom(length)));
    if (!grown) return false;
    PutBytes(grown, ssh.heldData, ssh.heldLength);
    WipeAndFree(ssh.heldData, room);
    ssh.heldData = grown;
    return true;
}

// A piece that does not fit is dropped completely, so that no reply of the terminal is sent in
// part.
static void HoldData(const BYTE* data, int length) {
    Ssh2State& ssh = session.ssh2;
    if (length > kSsh2MaxHeld - ssh.heldLength || !MakeHeldRoom(ssh.heldLength + length)) return;
    PutBytes(ssh.heldData + ssh.heldLength, data, length);
    ssh.heldLength += length;
}

void Ssh2SendChannelData(const BYTE* data, int length) {
    if (length < 1 || !session.ssh2.channelOpen || !HasCipher()) return;
    if (session.ssh2.keysPending) return HoldData(data, length);
    SendDataPackets(data, length);
}

void SendHeldData() {
    if (session.ssh2.channelOpen) SendDataPackets(session.ssh2.heldData, session.ssh2.heldLength);
    ForgetHeldData();
}

void ForgetHeldData() {
    Ssh2State& ssh = session.ssh2;
    WipeAndFree(ssh.heldData, HeldRoom(ssh.heldLength));
    ssh.heldData = nullptr;
    ssh.heldLength = 0;
}

void OnUserauthSuccess() {
    static const char kType[] = "session";
    BeginPacket(kMsgChannelOpen, 1 + StringSize(kType) + 3 * 4);
    BYTE* at = PutString(Payload(), kType);
    at = PutUint32(at, kLocalChannel);
    at = PutUint32(at, kWindow);
    PutUint32(at, kMaxPacket);
    SendPacket();
    session.ssh2.localWindow = kWindow;
}

void OnChannelOpenConfirmation() {
    Ssh2State& ssh = session.ssh2;
    uint32_t recipient, remoteChannel, remoteWindow;
    if (!ReadUint32(&recipient) || !ReadUint32(&remoteChannel) || !ReadUint32(&remoteWindow))
        return;
    ssh.channelOpen = 1;
    ssh.remoteChannel = remoteChannel;
    ssh.remoteWindow = remoteWindow;
    RequestPty();
}

void OnChannelData() {
    uint32_t recipient;
    if (ReadUint32(&recipient)) ShowData();
}

void OnChannelExtendedData() {
    uint32_t recipient, type;
    if (ReadUint32(&recipient) && ReadUint32(&type)) ShowData();
}

void OnChannelSuccess() {
    if (!session.ssh2.ptyRequested) return;
    session.ssh2.ptyRequested = 0;
    RequestShell();
}
