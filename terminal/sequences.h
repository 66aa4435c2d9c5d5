// SPDX-License-Identifier: MIT
// The interpreter's own: which bytes are text, and the states of escape and control sequences.
#ifndef QUILL_TERMINAL_SEQUENCES_H
#define QUILL_TERMINAL_SEQUENCES_H

#include <array>

#include "session/session_state.h"
#include "windows_ce.h"

// ---------------------------------------------------------------- text

// Which bytes are text in the ground state: everything from 32 on but for the five 8-bit
// introducers. A table, because every byte of text is looked up in it.

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

// ESC and one or two more bytes: the states 1 and 3 to 7.

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

// ESC in any state that heeds it: forgets ? and >.
inline void BeginEscape() {
    session.parser.parser_state = kStateEscape;
    session.parser.secondary_flag = 0;
    session.parser.private_flag = 0;
}

void EscapeByte(BYTE b);  // one byte in state 1; also what an 8-bit introducer stands for
void LineSizeByte(BYTE b);
void DesignateG0Byte(BYTE b);
void DesignateG1Byte(BYTE b);
void Vt52AddressByte(BYTE b);
void DeviceControlByte(BYTE b);

void ShiftOut();  // SO: G1 into use
void ShiftIn();   // SI: G0

// ---------------------------------------------------------------- control sequences

// What comes between ESC [ and the final character, and the finals' table.

// ESC [.
inline void BeginControlSequence() {
    ParserState& parser = session.parser;
    parser.parser_state = kStateControlSequence;
    parser.param_len = 0;
    parser.params[0] = 0;
    parser.params[1] = 0;
}

void ControlSequenceByte(BYTE b);  // one byte in state 2

// In the ground state: runs the whole control sequence that the bytes begin with, ESC [ included,
// with the effect of feeding them one by one. Takes only the common kind, at most two numbers of at
// most two digits and a final that reads them and sends no reply; of any other it takes nothing.
// Needs ten bytes to look at. Returns how many bytes it took.
int RunCommonSequence(const BYTE* bytes, int count);

// In state 2: appends the parameter characters at the front as ControlSequenceByte would one by
// one, as far as there is room, and returns how many bytes it took.
int CollectParameters(const BYTE* bytes, int count);

#endif
