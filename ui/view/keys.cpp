// SPDX-License-Identifier: MIT
// Turns key presses and typed characters into bytes for the host.
#include "ui/view/input.h"

#include "session/session_ports.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "terminal/interpreter.h"
#include "terminal/screen_buffer.h"
#include "ui/view/view.h"

constexpr size_t kLongestSequence = 255;  // sequences of this length or longer are not sent

static void SendBytes(const BYTE* bytes, int length) {
    SessionSend(bytes, length, static_cast<int>(session.telnet.escape_iac));
}

static bool SendSequence(int virtual_key) {
    const char* sequence = TranslateVirtualKey(virtual_key);
    if (!sequence) return false;
    const size_t length = std::strlen(sequence);
    if (length == 0 || length >= kLongestSequence) return false;
    SendBytes(reinterpret_cast<const BYTE*>(sequence), static_cast<int>(length));
    return true;
}

// In newline mode the Enter key sends CR LF.
static void FinishLine(int virtual_key) {
    const BYTE line_feed = 10;
    if (virtual_key == VK_RETURN && session.modes.newline_mode) SendBytes(&line_feed, 1);
}

static bool Swallowed(WCHAR character) {
    if (character == TEXT('\t') || character == TEXT('\r')) return true;
    return character < 32 && session.telnet.escape_iac == 1;
}

// Each character is sent as one byte. A character that the code page encodes as several bytes, or
// does not have, becomes a question mark.
static BYTE ByteOf(WCHAR character) {
    char bytes[8];
    const int length =
        WideCharToMultiByte(CP_ACP, 0, &character, 1, bytes, sizeof(bytes), nullptr, nullptr);
    return length == 1 ? static_cast<BYTE>(bytes[0]) : BYTE{'?'};
}

void OnKeyDown(int virtual_key) {
    session.key_taken = 0;
    if (!Connected()) return;
    if (SendSequence(virtual_key)) FinishLine(virtual_key);
    session.key_taken = TableTakesKey(virtual_key) ? 1 : 0;
    UpdateStatus();
}

void SendVirtualKey(int virtual_key) {
    OnKeyDown(virtual_key);
    session.key_taken = 0;
}

void OnTypedCharacter(WCHAR character) {
    const bool taken = session.key_taken != 0;
    session.key_taken = 0;
    if (!Connected() || taken || Swallowed(character)) return;
    const BYTE byte = ByteOf(character);
    DropSelection();
    SendBytes(&byte, 1);
    if (session.modes.localecho == 1) TerminalWrite(&byte, 1);
}
