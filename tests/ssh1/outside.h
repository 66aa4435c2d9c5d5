// SPDX-License-Identifier: MIT
// Recording doubles of everything that the SSH-1 client calls: the socket, the terminal, message
// boxes, the Sign on dialog, the status line and the connection manager. Also helpers that these
// tests share.
#ifndef QUILL_TESTS_SSH1_OUTSIDE_H
#define QUILL_TESTS_SSH1_OUTSIDE_H

#include <functional>
#include <string>
#include <vector>

#include "crypto/public_key.h"
#include "session/session_state.h"

struct Outside {
    std::string wire;                // bytes that the socket accepted
    std::string display;             // bytes that the terminal got
    std::vector<std::string> boxes;  // each as "caption: text"
    int asked = 0;                   // how often the client asked for the Sign on dialog
    bool dialog_can_be_shown = true;
    int closed = 0;           // how often the socket was closed
    int status_updates = 0;   // updates of the status line
    int sends_that_fail = 0;  // the number of next sends that fail
    std::string drawn;        // random bytes that come before the generator's
    // For each key that RsaEncrypt got: its length in bytes, and the first byte of its modulus.
    std::vector<int> encrypted_with;
    std::vector<int> first_modulus_byte;
    // Keeps released keys here, so that no release overwrites the stack before it is searched.
    bool keep_keys = false;
    RsaKey kept[2] = {};
    int kept_count = 0;
    // Runs while the message box or the dialog is shown.
    std::function<void()> during_box;
    std::function<void()> during_dialog;
};
extern Outside outside;

inline constexpr SOCKET kTestSocket = 7;

// Starts a connected SSH-1 session that has exchanged identification lines: user "visitor" and
// password "warehouse7" are remembered, the cipher is triple DES, and the records are empty.
void NewSession();

// Passes bytes of the server to the client, in chunks of at most `piece` bytes.
void Receive(const std::string& bytes, int piece = kReceiveSize);

// What was recorded since the last call.
std::string Wire();
std::string Shown();
std::string Box();  // the only box; "" if there is none

void SetText(WCHAR* field, const std::string& text);  // of a settings field
std::string GetText(const WCHAR* field);

#endif
