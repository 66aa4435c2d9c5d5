// SPDX-License-Identifier: MIT
// The byte interpreter: its table of states, the control characters of the ground state, and the
// fast path for a whole chunk.
#include "terminal/interpreter.h"

#include <array>

#include "session/session_state.h"
#include "terminal/actions.h"
#include "terminal/screen_buffer.h"
#include "terminal/sequences.h"

// ---------------------------------------------------------------- text

// Writing printable characters to the grid, with pending wrap, insert mode, line drawing and
// autowrap.

// The attribute bits of a character that is written now.
static inline DWORD WrittenAttr() {
    const DWORD attr = session.screen.current_attr;
    return session.modes.graphic_active ? attr | kCellGraphic : attr;
}

// Writes the printable bytes at the front, as WritePrintable would one by one, but only in the
// simple case: insert mode is off, no wrap is pending, and it stops after the last column but one
// of the cursor's row. Returns how many bytes it wrote, 0 included.
static inline int WriteCells(const BYTE* bytes, int count) {
    ScreenBuffer& screen = session.screen;
    if (session.modes.insert_mode | session.parser.pending_wrap) return 0;
    const int row = screen.cursor_row;
    const int col = screen.cursor_col;
    DWORD* words = RowWords(row);
    const int last = screen.columns >> (words[0] & kLineDoubleWidth);
    const int room = last - col < count ? last - col : count;
    const DWORD attr = WrittenAttr();
    int written = 0;
    for (; written < room && kPrintableBytes[bytes[written]]; ++written) {
        words[col + written] = bytes[written] | attr;
    }
    if (written == 0) return 0;
    MarkRow(row);
    screen.cursor_col = col + written;
    return written;
}

static void WrapLine() {
    session.screen.cursor_col = 1;
    LineFeed();
}

static void WritePrintable(BYTE code) {
    ScreenBuffer& screen = session.screen;
    ParserState& parser = session.parser;
    if (parser.pending_wrap && screen.cursor_col == screen.columns) WrapLine();
    parser.pending_wrap = 0;
    if (session.modes.insert_mode) InsertCell(screen.cursor_row, screen.cursor_col);
    SetCell(screen.cursor_row, screen.cursor_col, code | WrittenAttr());
    if (screen.cursor_col < screen.columns) {
        ++screen.cursor_col;
    } else if (session.modes.autowrap) {
        parser.pending_wrap = 1;
    }
    ClampColumn();
}

// ---------------------------------------------------------------- ground state

static void Bell() {
    if (session.settings.bell) MessageBeep(MB_ICONASTERISK);
}

// An 8-bit introducer means the same as ESC and the byte that is 64 less.
static void Introduce(BYTE second) {
    BeginEscape();
    EscapeByte(second);
}

static void IntroduceInd() { Introduce('D'); }
static void IntroduceRi() { Introduce('M'); }
static void IntroduceSs3() { Introduce('O'); }
static void IntroduceDcs() { Introduce('P'); }
static void IntroduceCsi() { Introduce('['); }

using ControlHandler = void (*)();

struct ControlRow {
    BYTE byte;
    ControlHandler act;
};

// clang-format off
constexpr ControlRow kControlRows[] = {
    {5,              ReplyAnswerback},  // ENQ
    {7,              Bell           },  // BEL
    {8,              Backspace      },  // BS
    {9,              Tab            },  // HT
    {10,             LineFeed       },  // LF
    {13,             CarriageReturn },  // CR
    {14,             ShiftOut       },  // SO
    {15,             ShiftIn        },  // SI
    {kEsc,           BeginEscape    },  // ESC
    {kIntroducerInd, IntroduceInd   },  // IND
    {kIntroducerRi,  IntroduceRi    },  // RI
    {kIntroducerSs3, IntroduceSs3   },  // SS3
    {kIntroducerDcs, IntroduceDcs   },  // DCS
    {kIntroducerCsi, IntroduceCsi   },  // CSI
};
// clang-format on

constexpr std::array<ControlHandler, 256> kControls = [] {
    std::array<ControlHandler, 256> table{};
    for (const ControlRow& row : kControlRows) table[row.byte] = row.act;
    return table;
}();

static void GroundByte(BYTE b) {
    if (kPrintableBytes[b]) {
        WritePrintable(b);
    } else if (const ControlHandler act = kControls[b]) {
        act();
    }
}

// ---------------------------------------------------------------- states

using StateHandler = void (*)(BYTE b);

constexpr int kStates = 8;

// clang-format off
constexpr StateHandler kStateHandlers[kStates] = {
    GroundByte,           // 0
    EscapeByte,           // 1
    ControlSequenceByte,  // 2
    LineSizeByte,         // 3
    DesignateG0Byte,      // 4
    DesignateG1Byte,      // 5
    Vt52AddressByte,      // 6
    DeviceControlByte,    // 7
};
// clang-format on

static void RunByte(BYTE b) { kStateHandlers[session.parser.parser_state](b); }

int TerminalFeedByte(BYTE b) {
    RunByte(b);
    return static_cast<int>(session.parser.reply_pending);
}

const char* TerminalTakeReply() {
    if (!session.parser.reply_pending) return nullptr;
    session.parser.reply_pending = 0;
    return session.parser.reply_text;
}

// ---------------------------------------------------------------- whole chunks

// One bit for each state: set if the byte may produce a reply in that state.
constexpr std::array<BYTE, 256> kMayReply = [] {
    std::array<BYTE, 256> table{};
    table[5] = 1 << kStateGround;
    table['Z'] = 1 << kStateEscape;
    for (char c : {'=', 'c', 'n', 'x'}) {
        table[static_cast<BYTE>(c)] = 1 << kStateControlSequence;
    }
    return table;
}();

static bool MayReply(BYTE b) { return kMayReply[b] >> session.parser.parser_state & 1; }

// In the ground state: runs a stretch of text, a whole control sequence, or one byte. Returns how
// many bytes it ran; 0 if the first may produce a reply.
static int RunGround(const BYTE* bytes, int count) {
    if (kPrintableBytes[bytes[0]]) {
        if (const int cells = WriteCells(bytes, count)) return cells;
        WritePrintable(bytes[0]);
        return 1;
    }
    if (bytes[0] == kEsc && count > 1 && bytes[1] == '[') {
        if (const int whole = RunCommonSequence(bytes, count)) return whole;
    }
    if (MayReply(bytes[0])) return 0;
    GroundByte(bytes[0]);
    return 1;
}

// In any other state: runs a stretch of parameter characters, or one byte. Returns the same as
// RunGround.
static int RunSequence(const BYTE* bytes, int count) {
    if (session.parser.parser_state == kStateControlSequence) {
        if (const int run = CollectParameters(bytes, count)) return run;
    }
    if (MayReply(bytes[0])) return 0;
    RunByte(bytes[0]);
    return 1;
}

int TerminalFeedText(const BYTE* bytes, int count) {
    int done = 0;
    while (done < count) {
        const BYTE* front = bytes + done;
        const int left = count - done;
        const bool ground = session.parser.parser_state == kStateGround;
        const int run = ground ? RunGround(front, left) : RunSequence(front, left);
        if (run == 0) break;
        done += run;
    }
    return done;
}
