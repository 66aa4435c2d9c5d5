// SPDX-License-Identifier: MIT
// The doubles of outside.h.
#include "tests/ssh2/outside.h"

#include "connection/connection.h"
#include "protocol/protocols.h"
#include "session/session_ports.h"
#include "terminal/interpreter.h"
#include "tests/support/services_test_hooks.h"
#include "text/text.h"

Outside outside;

static const SOCKET kSocket = 7;

int SliceSend(SOCKET socket, const char* bytes, int size, int) {
    if (socket == INVALID_SOCKET || size < 1) return SOCKET_ERROR;
    if (outside.sends_that_fail > 0) {
        outside.sends_that_fail--;
        return SOCKET_ERROR;
    }
    outside.wire.append(bytes, static_cast<size_t>(size));
    return size;
}

void TerminalWrite(const BYTE* bytes, int count) {
    outside.terminal_writes++;
    outside.display.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
    if (outside.on_display) outside.on_display();
}

int TerminalFeedByte(BYTE) { return 0; }
const char* TerminalTakeReply() { return nullptr; }
void ShowWritten(int) {}
void WakeReceiveThread() {}
static void UpdateStatus() { outside.statuses++; }
void SessionClosed() { ForgetSshSession(); }

static void CloseSocket() {
    outside.closes++;
    session.socket = INVALID_SOCKET;
}

static bool AskSignOn() {
    outside.sign_ons++;
    return outside.sign_on ? outside.sign_on() : true;
}

static std::string Narrow(LPCWSTR text) {
    std::string narrow;
    for (; *text; text++) narrow += static_cast<char>(*text);
    return narrow;
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT) {
    outside.boxes.push_back(Narrow(caption) + ": " + Narrow(text));
    if (outside.during_box) outside.during_box();
    return IDOK;
}

// The linker redirects each draw of a random byte to this function (--wrap).
void* RealMalloc(size_t size) __asm__("__real_malloc");
void* FailingMalloc(size_t size) __asm__("__wrap_malloc");
void* FailingMalloc(size_t size) {
    if (outside.mallocs_that_fail == 0) return RealMalloc(size);
    --outside.mallocs_that_fail;
    return nullptr;
}

uint8_t RealRandomByte() __asm__("__real__Z10RandomBytev");
uint8_t DrawRandomByte() __asm__("__wrap__Z10RandomBytev");
uint8_t DrawRandomByte() {
    if (outside.drawn.empty()) return RealRandomByte();
    const char byte = outside.drawn.front();
    outside.drawn.erase(0, 1);
    return static_cast<uint8_t>(byte);
}

void NewSession(int milliseconds) {
    session_ports.ask_sign_on = AskSignOn;
    session_ports.update_status = UpdateStatus;
    session_ports.close_session = CloseSocket;
    session_ports.send = SendSessionData;
    ForgetSshSession();
    outside = {};
    services_test_hooks.system_time = milliseconds;
    session.settings = {};
    session.settings.ssh = 1;
    session.settings.ssh_type = 1;
    session.settings.ssh_type2 = 1;
    session.settings.ssh_def = 1;
    SetText(session.settings.ssh_u, "visitor");
    SetText(session.settings.ssh_p, "warehouse7");
    SetText(session.settings.termtype, "vt220");
    session.banner_sent = 0;
    session.ssh_progress = 0;
    session.receive_ready = 0;
    session.connected = 1;
    session.socket = kSocket;
}

void Receive(const std::string& bytes, size_t chunk) {
    for (size_t at = 0; at < bytes.size(); at += chunk) {
        const std::string piece = bytes.substr(at, chunk);
        std::memset(session.receive_buffer, '#', kReceiveSize);
        piece.copy(session.receive_buffer, kReceiveSize);
        session.receive_count = static_cast<int>(piece.size());
        session.receive_ready = 0;
        OnSocketEvent(0);
    }
}

void Type(const std::string& bytes) {
    SessionSend(reinterpret_cast<const BYTE*>(bytes.data()), static_cast<int>(bytes.size()), 0);
}

void SetText(WCHAR* field, const char* text) { WideFromAnsi(text, field, kSettingUnits); }
