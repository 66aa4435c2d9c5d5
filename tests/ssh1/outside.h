// SPDX-License-Identifier: MIT
// What the SSH-1 client calls outside itself, as doubles that record: the socket, the terminal,
// message boxes, the Sign on dialog, the status line and the connection manager. Beside them the
// shorthands of these tests.
#ifndef QUILL_TESTS_SSH1_OUTSIDE_H
#define QUILL_TESTS_SSH1_OUTSIDE_H

#include <functional>
#include <string>
#include <vector>

#include "crypto/public_key.h"
#include "session/session_state.h"

struct Outside {
    std::string wire;                // what the socket took
    std::string display;             // what the terminal got
    std::vector<std::string> boxes;  // as "caption: text"
    int asked = 0;                   // how often the dialog was asked for
    bool dialog_can_be_shown = true;
    int closed = 0;           // how often the socket was closed
    int status_updates = 0;   // of the status line
    int sends_that_fail = 0;  // the next so many
    std::string drawn;        // random bytes to draw before those of the generator
    // Of each key that RsaEncrypt was given: its bytes, and the first of its modulus.
    std::vector<int> encrypted_with;
    std::vector<int> first_modulus_byte;
    // Keys that are let go are kept here, for a stack that nothing has run on since.
    bool keep_keys = false;
    RsaKey kept[2] = {};
    int kept_count = 0;
    // While the box or the dialog is shown.
    std::function<void()> during_box;
    std::function<void()> during_dialog;
};
extern Outside outside;

inline constexpr SOCKET kTestSocket = 7;

// A connected SSH-1 session that has exchanged its lines: user "visitor" and password "warehouse7"
// are remembered, the cipher is triple DES, and nothing is recorded.
void NewSession();

// Bytes of the server, in chunks of at most `piece` bytes.
void Receive(const std::string& bytes, int piece = kReceiveSize);

// What was recorded since the last call.
std::string Wire();
std::string Shown();
std::string Box();  // the only box, "" when there is none

void SetText(WCHAR* field, const std::string& text);  // of a settings field
std::string GetText(const WCHAR* field);

#endif
