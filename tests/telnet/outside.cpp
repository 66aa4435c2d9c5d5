// SPDX-License-Identifier: MIT
// The doubles of outside.h.
#include "tests/telnet/outside.h"

#include <utility>

#include "connection/connection.h"
#include "protocol/protocols.h"
#include "protocol/ssh/ssh1.h"
#include "protocol/ssh/ssh2.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "terminal/interpreter.h"

Outside outside;

namespace {

constexpr SOCKET kSocket = 7;
constexpr BYTE kEnquiry = 5;

void Happened(char what) {
    if (what == 'T' && !outside.order.empty() && outside.order.back() == 'T') return;
    outside.order += what;
}

}  // namespace

int SliceSend(SOCKET socket, const char* bytes, int size, int) {
    outside.sends++;
    Happened('S');
    if (socket != kSocket || size < 1) return SOCKET_ERROR;
    if (outside.fail_from_send && outside.sends >= outside.fail_from_send) return outside.failure;
    if (outside.most_per_send && size > outside.most_per_send) size = outside.most_per_send;
    outside.wire.append(bytes, static_cast<size_t>(size));
    return size;
}

int TerminalFeedByte(BYTE b) {
    Happened('T');
    outside.display += static_cast<char>(b);
    return b == kEnquiry;
}

const char* TerminalTakeReply() {
    outside.replies_taken++;
    return "reply";
}

void TerminalWrite(const BYTE* bytes, int count) {
    Happened('W');
    outside.terminal_writes++;
    outside.display.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    if (!outside.socket_after_write) return;
    session.socket = outside.socket_after_write;
    ++session.sockets_made;
}

static void TakeSshChunk(const BYTE* bytes, int count) {
    outside.ssh_chunks +=
        "[" + std::string(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count)) + "]";
}

static void SendSshData(const BYTE* bytes, int length, int) {
    outside.ssh_data.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
}

static const Protocol kSshDouble = {nullptr, nullptr, TakeSshChunk, SendSshData, [] {}};
const Protocol kSsh1Protocol = kSshDouble;
const Protocol kSsh2Protocol = kSshDouble;

void ShowWritten(int) { outside.refreshes++; }

void SessionClosed() {
    outside.closed++;
    outside.pending_when_closed = session.connect_pending;
    outside.ready_when_closed = session.receive_ready;
}

void WakeReceiveThread() { outside.wakes++; }

void NewSession() {
    outside = {};
    session_ports.send = SendSessionData;
    session.settings = {};
    session.telnet = {};
    session.login = {};
    session.modes.localecho = 0;
    session.connect_pending = 0;
    session.banner_sent = 0;
    session.receive_count = 0;
    session.receive_ready = 0;
    session.connected = 1;
    session.socket = kSocket;
    SetText(session.settings.termtype, "vt220");
    TelnetReset();
}

void Receive(std::string_view bytes) {
    std::memset(session.receive_buffer, '#', kReceiveSize);
    bytes.copy(session.receive_buffer, kReceiveSize);
    session.receive_count = static_cast<int>(bytes.size());
    session.receive_ready = 0;
    OnSocketEvent(0);
}

std::string Filter(std::string_view bytes) {
    std::string data;
    for (char c : bytes)
        if (!TelnetReceiveByte(static_cast<BYTE>(c))) data += c;
    return data;
}

std::string Sent() { return std::exchange(outside.wire, {}); }

std::string Shown() { return std::exchange(outside.display, {}); }

std::string Iac(int command, int option) {
    return {'\xFF', static_cast<char>(command), static_cast<char>(option)};
}

void SetText(WCHAR* field, const char* text) {
    while (*text) *field++ = static_cast<BYTE>(*text++);
    *field = 0;
}
