// SPDX-License-Identifier: MIT
// Sequences of ESC and one or two more bytes. Each procedure that takes a byte first sets the state
// back to ground, so an unknown byte ends the sequence and is dropped. Only DeviceControlByte stays
// in its state until ESC \ ends the string.
#include "terminal/sequences.h"

#include <algorithm>
#include <array>

#include "terminal/actions.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"

constexpr int kLineDrawingSet = 128;

using EscapeHandler = void (*)();

struct EscapeRow {
    BYTE byte;
    EscapeHandler ansi;
    EscapeHandler vt52;
};

static void AwaitSpaceSequence() {
    session.parser.space_flag = 1;
    session.parser.parser_state = kStateEscape;
}

static void AwaitLineSize() { session.parser.parser_state = kStateLineSize; }
static void AwaitG0() { session.parser.parser_state = kStateDesignateG0; }
static void AwaitG1() { session.parser.parser_state = kStateDesignateG1; }

static void BeginDeviceControl() {
    session.parser.parser_state = kStateDeviceControl;
    session.parser.string_last = 0;
}

static void BeginVt52Address() {
    session.parser.parser_state = kStateVt52Address;
    session.parser.vt52_address_count = 0;
}

static void KeypadApplicationOn() { session.modes.keypad_application = 1; }
static void KeypadApplicationOff() { session.modes.keypad_application = 0; }

static void ChooseReplies(int eight_bit) {
    if (!session.parser.space_flag) return;
    session.parser.space_flag = 0;
    SelectReplies(eight_bit);
}

static void SevenBitReplies() { ChooseReplies(0); }
static void EightBitReplies() { ChooseReplies(1); }
static void FullReset() { TerminalReset(0); }

constexpr EscapeHandler kNothing = nullptr;

// clang-format off
constexpr EscapeRow kEscapeRows[] = {
    // byte, ANSI mode,               VT52 mode
    {kEsc,   BeginEscape,             BeginEscape           },  // ESC
    {' ',    AwaitSpaceSequence,      AwaitSpaceSequence    },  // S7C1T, S8C1T
    {'#',    AwaitLineSize,           AwaitLineSize         },  // line size
    {'(',    AwaitG0,                 AwaitG0               },  // SCS
    {')',    AwaitG1,                 AwaitG1               },  // SCS
    {'7',    SaveCursor,              SaveCursor            },  // DECSC
    {'8',    RestoreCursor,           RestoreCursor         },  // DECRC
    {'<',    LeaveVt52,               LeaveVt52             },  // DECANM
    {'=',    KeypadApplicationOn,     KeypadApplicationOn   },  // DECKPAM
    {'>',    KeypadApplicationOff,    KeypadApplicationOff  },  // DECKPNM
    {'A',    kNothing,                Vt52Up                },  // VT52
    {'B',    kNothing,                Vt52Down              },  // VT52
    {'C',    kNothing,                Vt52Right             },  // VT52
    {'D',    LineFeed,                Vt52Left              },  // IND
    {'E',    NextLine,                NextLine              },  // NEL
    {'F',    SevenBitReplies,         kNothing              },  // S7C1T
    {'G',    EightBitReplies,         kNothing              },  // S8C1T
    {'H',    SetTabStop,              Vt52Home              },  // HTS
    {'I',    kNothing,                ReverseIndex          },  // VT52
    {'J',    kNothing,                Vt52EraseToEndOfScreen},  // VT52
    {'K',    kNothing,                Vt52EraseToEndOfLine  },  // VT52
    {'M',    ReverseIndex,            ReverseIndex          },  // RI
    {'P',    BeginDeviceControl,      BeginDeviceControl    },  // DCS
    {'Y',    kNothing,                BeginVt52Address      },  // VT52
    {'Z',    ReplyPrimaryAttributes,  ReplyVt52Identity     },  // DECID
    {'[',    BeginControlSequence,    BeginControlSequence  },  // CSI
    {'c',    FullReset,               FullReset             },  // RIS
};

struct LineSizeRow {
    BYTE byte;
    void (*act)(int row);
};

static void FillWithAlignment(int) {
    for (int row = 1; row <= session.screen.rows; ++row) FillLine(row, 'E', 0);
}

static const LineSizeRow kLineSizeRows[] = {
    {'3', SetDoubleTop     },  // DECDHL
    {'4', SetDoubleBottom  },  // DECDHL
    {'5', SetSingleWidth   },  // DECSWL
    {'6', SetDoubleWidth   },  // DECDWL
    {'8', FillWithAlignment},  // DECALN
};
// clang-format on

constexpr std::array<EscapeRow, 256> kEscapes = [] {
    std::array<EscapeRow, 256> table{};
    for (const EscapeRow& row : kEscapeRows) table[row.byte] = row;
    return table;
}();

void EscapeByte(BYTE b) {
    session.parser.parser_state = kStateGround;
    const EscapeRow& row = kEscapes[b];
    const EscapeHandler act = session.modes.vt52_mode ? row.vt52 : row.ansi;
    if (act) act();
}

void LineSizeByte(BYTE b) {
    session.parser.parser_state = kStateGround;
    if (b == kEsc) BeginEscape();
    const int cursor_row = session.screen.cursor_row;
    for (const LineSizeRow& row : kLineSizeRows) {
        if (row.byte == b) row.act(cursor_row);
    }
    MarkRow(cursor_row);
    ClampColumn();
}

// ---------------------------------------------------------------- character sets

static void Designate(BYTE b, int* set, bool invoked) {
    session.parser.parser_state = kStateGround;
    if (b == kEsc) BeginEscape();
    if (b != '0' && b != 'A' && b != 'B') return;
    *set = b == '0' ? kLineDrawingSet : 0;
    if (invoked) session.modes.graphic_active = *set;
}

void DesignateG0Byte(BYTE b) { Designate(b, &session.modes.g0_set, session.modes.g0_invoked != 0); }
void DesignateG1Byte(BYTE b) { Designate(b, &session.modes.g1_set, session.modes.g0_invoked == 0); }

void ShiftOut() {
    session.modes.graphic_active = session.modes.g1_set;
    session.modes.g0_invoked = 0;
}

void ShiftIn() {
    session.modes.graphic_active = session.modes.g0_set;
    session.modes.g0_invoked = 1;
}

// ---------------------------------------------------------------- VT52 address, device control

void Vt52AddressByte(BYTE b) {
    ParserState& parser = session.parser;
    parser.parser_state = kStateGround;
    if (b == kEsc) {
        parser.vt52_address_count = 0;
        BeginEscape();
        return;
    }
    if (parser.vt52_address_count == 0) {
        parser.vt52_address[0] = b;
        parser.vt52_address_count = 1;
        parser.parser_state = kStateVt52Address;
        return;
    }
    parser.vt52_address[1] = b;
    parser.vt52_address_count = 2;
    MoveCursor(std::min(parser.vt52_address[0] - 31, session.screen.rows),
               parser.vt52_address[1] - 31);
}

void DeviceControlByte(BYTE b) {
    ParserState& parser = session.parser;
    if (parser.string_last == kEsc && b == '\\') parser.parser_state = kStateGround;
    parser.string_last = b;
}
