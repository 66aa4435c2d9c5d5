// SPDX-License-Identifier: MIT
// The doubles of outside.h.
#include "tests/ssh1/outside.h"

#include <gtest/gtest.h>
#include <algorithm>
#include <utility>

#include "crypto/public_key.h"
#include "protocol/protocols.h"
#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "terminal/interpreter.h"

Outside outside;

bool SocketSendAll(const BYTE* bytes, int length) {
    if (outside.sends_that_fail > 0) {
        outside.sends_that_fail--;
        return false;
    }
    outside.wire.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length));
    return true;
}

void TerminalWrite(const BYTE* bytes, int count) {
    outside.display.append(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT type) {
    EXPECT_EQ(type, UINT{MB_OK | MB_ICONERROR});
    outside.boxes.push_back(GetText(caption) + ": " + GetText(text));
    if (outside.during_box) outside.during_box();
    return IDOK;
}

static bool AskSignOn() {
    outside.asked++;
    if (outside.during_dialog) outside.during_dialog();
    return outside.dialog_can_be_shown;
}

static void UpdateStatus() { outside.status_updates++; }

static void CloseSocket() {
    outside.closed++;
    session.socket = INVALID_SOCKET;
}

const Protocol kTelnetProtocol = {nullptr, nullptr, nullptr, nullptr, [] {}};

// The linker redirects each call of RsaEncrypt to this function (--wrap).
bool RealRsaEncrypt(uint8_t* buffer, int length,
                    const RsaKey* key) __asm__("__real__Z10RsaEncryptPhiPK6RsaKey");
bool RecordRsaEncrypt(uint8_t* buffer, int length,
                      const RsaKey* key) __asm__("__wrap__Z10RsaEncryptPhiPK6RsaKey");
bool RecordRsaEncrypt(uint8_t* buffer, int length, const RsaKey* key) {
    outside.encrypted_with.push_back(key->bytes);
    outside.first_modulus_byte.push_back(BignumByte(key->modulus, key->bytes - 1));
    return RealRsaEncrypt(buffer, length, key);
}

void RealReleaseKey(RsaKey* key) __asm__("__real__Z13RsaReleaseKeyP6RsaKey");
void KeepKey(RsaKey* key) __asm__("__wrap__Z13RsaReleaseKeyP6RsaKey");
void KeepKey(RsaKey* key) {
    if (!outside.keep_keys) return RealReleaseKey(key);
    outside.kept[outside.kept_count++] = *key;
    *key = {};
}

// The linker redirects each draw of a random byte to this function too.
uint8_t RealRandomByte() __asm__("__real__Z10RandomBytev");
uint8_t DrawRandomByte() __asm__("__wrap__Z10RandomBytev");
uint8_t DrawRandomByte() {
    if (outside.drawn.empty()) return RealRandomByte();
    const char byte = outside.drawn.front();
    outside.drawn.erase(0, 1);
    return static_cast<uint8_t>(byte);
}

void NewSession() {
    outside = {};
    session_ports.ask_sign_on = AskSignOn;
    session_ports.update_status = UpdateStatus;
    session_ports.close_session = CloseSocket;
    ForgetSshSession();
    session.settings = {};
    session.settings.ssh = 1;
    session.settings.ssh_type = 1;
    session.settings.ssh_def = 1;
    SetText(session.settings.ssh_u, "visitor");
    SetText(session.settings.ssh_p, "warehouse7");
    SetText(session.settings.termtype, "vt220");
    session.banner_sent = 0;
    session.ssh_progress = 0;
    session.connected = 1;
    session.socket = kTestSocket;
    Receive("SSH-1.5-anything\r\n");
    EXPECT_EQ(Wire(), "SSH-1.5-1.0.00\n");
    outside.status_updates = 0;
}

void Receive(const std::string& bytes, int piece) {
    for (size_t at = 0; at < bytes.size(); at += static_cast<size_t>(piece)) {
        const std::string chunk = bytes.substr(at, static_cast<size_t>(piece));
        // A copy of exactly its length, so that the sanitizer sees a read past its end.
        const std::vector<BYTE> copy(chunk.begin(), chunk.end());
        TakeSessionChunk(copy.data(), static_cast<int>(copy.size()));
    }
}

std::string Wire() { return std::exchange(outside.wire, {}); }

std::string Shown() { return std::exchange(outside.display, {}); }

std::string Box() {
    const std::vector<std::string> boxes = std::exchange(outside.boxes, {});
    if (boxes.empty()) return "";
    EXPECT_EQ(boxes.size(), 1u) << boxes.back();
    return boxes.front();
}

void SetText(WCHAR* field, const std::string& text) {
    for (char c : text) *field++ = static_cast<BYTE>(c);
    *field = 0;
}

std::string GetText(const WCHAR* field) {
    std::string text;
    while (*field) text += static_cast<char>(*field++);
    return text;
}
