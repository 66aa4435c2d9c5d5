// SPDX-License-Identifier: MIT
// What holds whenever the program rests, and what it holds of the system. A difference is a failure
// of the test. The calls are the person's.
#ifndef QUILL_TESTS_LONG_RUNS_CHECKS_H
#define QUILL_TESTS_LONG_RUNS_CHECKS_H

#include <string>

// ---------------------------------------------------------------- the terminal

void StartReplay();          // on the window thread: as the terminal is now, so begins the session
std::string BytesOfHost();   // that the terminal got from the host since then
bool TerminalWroteItself();  // something else wrote into it, such as a trace
void ExpectReplayAlike();    // the bytes one by one end in the same terminal
void ExpectPictureOfGrid();  // the glass shows the cells, and what painting everything anew shows
void ExpectPeerAlike(const std::string& shown);  // another terminal shows the same; tame streams

// ---------------------------------------------------------------- the settings

void ExpectStored(const std::string& root);  // the file has what the last save found in memory
void ExpectMemoryStored(const std::string& root);  // the program has ended: what is in memory

// ---------------------------------------------------------------- the system

struct Held {
    long threads, files, handles, objects, contexts, sockets, keys, bytes;
};
Held WhatIsHeld();
std::string Describe(const Held& held);
// Empty, or which of them has grown, the bytes by more than `room`.
std::string Growth(const Held& before, const Held& now, long room);

#endif
