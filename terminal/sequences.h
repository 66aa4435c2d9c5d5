// SPDX-License-Identifier: MIT
// Internal to the interpreter: which bytes are text, and the states that parse escape sequences and
// control sequences.
#ifndef QUILL_TERMINAL_SEQUENCES_H
#define QUILL_TERMINAL_SEQUENCES_H

#include <array>

#include "session/session_state.h"
#include "windows_ce.h"

// ---------------------------------------------------------------- text

// The bytes that are text in the ground state: everything from 32 on except the five 8-bit
// introducers. This is a table for speed, since every byte of text is looked up in it.

inline constexpr BYTE kIntroducerInd = 0x84;
inline constexpr BYTE kIntroducerRi = 0x8D;
inline constexpr BYTE kIntroducerSs3 = 0x8F;
inline constexpr BYTE kIntroducerDcs = 0x90;
inline constexpr BYTE kIntroducerCsi = 0x9B;

inline constexpr std::array<BYTE, 256> kPrintableBytes = [] {
    std::array<BYTE, 256> table{};
    for (size_t b = 32; b < table.size(); ++b) table[b] = 1;
    for (BYTE b : {kIntroducerInd, kIntroducerRi, kIntroducerSs3, kIntroducerDcs, kIntroducerCsi}) {
        table[b] = 0;
    }
    return table;
}();

// ---------------------------------------------------------------- escape sequences

// ESC followed by one or two more bytes: the states 1 and 3 to 7.

inline constexpr BYTE kEsc = 27;

enum ParserStateNumber {
    kStateGround = 0,
    kStateEscape = 1,
    kStateControlSequence = 2,
    kStateLineSize = 3,
    kStateDesignateG0 = 4,
    kStateDesignateG1 = 5,
    kStateVt52Address = 6,
    kStateDeviceControl = 7
};

// Starts an escape sequence. Clears the flags for ? and >.
inline void BeginEscape() {
    session.parser.parser_state = kStateEscape;
    session.parser.secondary_flag = 0;
    session.parser.private_flag = 0;
}

void EscapeByte(BYTE b);  // one byte in state 1; also runs the second byte of an 8-bit introducer
void LineSizeByte(BYTE b);
void DesignateG0Byte(BYTE b);
void DesignateG1Byte(BYTE b);
void Vt52AddressByte(BYTE b);
void DeviceControlByte(BYTE b);

void ShiftOut();  // SO: selects G1
void ShiftIn();   // SI: selects G0

// ---------------------------------------------------------------- control sequences

// Parses the bytes between ESC [ and the final byte. The final byte selects the action.

// Starts the control sequence after ESC [ has been read.
inline void BeginControlSequence() {
    ParserState& parser = session.parser;
    parser.parser_state = kStateControlSequence;
    parser.param_len = 0;
    parser.params[0] = 0;
    parser.params[1] = 0;
}

void ControlSequenceByte(BYTE b);  // one byte in state 2

// In the ground state: runs the whole control sequence at the front of the bytes, ESC [ included.
// The effect is the same as feeding the bytes one by one. It handles only the common kind: at most
// two numbers of at most two digits each, no flag characters, no text that begins with two zeros,
// and a final byte that reads the numbers and sends no reply. For any other sequence, and with
// fewer than ten bytes to look at, it does nothing and returns 0. Otherwise it returns how many
// bytes it took.
int RunCommonSequence(const BYTE* bytes, int count);

// In state 2: appends the parameter characters at the front, as ControlSequenceByte would one by
// one, while there is room. Returns how many bytes it took.
int CollectParameters(const BYTE* bytes, int count);

#endif
