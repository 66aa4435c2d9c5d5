// SPDX-License-Identifier: MIT
// What reaches the running program from outside, as an input of the fuzz target says it: an SSH
// server, the modem, a second start, a screen reader, fingers, an input method and the desktop.
// Window thread only.
#ifndef QUILL_FUZZ_WINDOW_OUTSIDE_H
#define QUILL_FUZZ_WINDOW_OUTSIDE_H

#include "fuzz/window_events.h"

// The rows of the table of events.
void SshSession(EventInput* input);  // chooses the protocol and begins a session
void SshPacket(EventInput* input);
void DialState(EventInput* input);
void NetworkState(EventInput* input);
void SecondStart(EventInput* input);
void ScreenReader(EventInput* input);
void Finger(EventInput* input);
void InputMethod(EventInput* input);
void Desktop(EventInput* input);

// What the next calls of the network and the modem return.
int NextConnectError();
unsigned NextDialError();

void BeginOutside();  // before an input
void LeaveOutside();  // before the dialogs are left
void EndOutside();    // after an input

[[noreturn]] void Break(const std::string& what);
inline void Require(bool holds, const std::string& what) {
    if (!holds) Break(what);
}

#endif
