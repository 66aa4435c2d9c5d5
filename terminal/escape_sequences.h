// Sequences of ESC and one or two more bytes: the states 1 and 3 to 7.
#ifndef QUILL_TERMINAL_ESCAPE_SEQUENCES_H
#define QUILL_TERMINAL_ESCAPE_SEQUENCES_H

#include "session/session_state.h"

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

void BeginEscape();       // ESC in any state that heeds it: forgets ? and >
void EscapeByte(BYTE b);  // one byte in state 1; also what an 8-bit introducer stands for
void LineSizeByte(BYTE b);
void DesignateG0Byte(BYTE b);
void DesignateG1Byte(BYTE b);
void Vt52AddressByte(BYTE b);
void DeviceControlByte(BYTE b);

void ShiftOut();  // SO: G1 into use
void ShiftIn();   // SI: G0

#endif
