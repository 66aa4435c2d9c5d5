// SPDX-License-Identifier: MIT
// Control sequences (ESC [ parameters final-byte). The parameters are collected as text. They are
// converted to numbers when the final byte's row asks for that.
#include "terminal/sequences.h"

#include <array>
#include <bit>
#include <cstring>

#include "terminal/actions.h"
#include "terminal/modes.h"

// Reads the numbers between the semicolons. It skips characters that are not digits. A number that
// is too large wraps around.
static void ParseParameters() {
    ParserState& parser = session.parser;
    DWORD value = 0;
    int count = 0;
    for (int i = 0; i < parser.param_len; ++i) {
        const char c = parser.param_text[i];
        if (c == ';') {
            parser.params[count++] = static_cast<int>(value);
            value = 0;
        } else if (c >= '0' && c <= '9') {
            value = value * 10 + static_cast<DWORD>(c - '0');
        }
    }
    parser.params[count++] = static_cast<int>(value);
    parser.param_count = count;
}

// ---------------------------------------------------------------- finals with several meanings

static void ConformanceResetOrSplit() {
    ParserState& parser = session.parser;
    if (parser.quote_flag) {
        SetConformanceLevel();
    } else if (parser.bang_flag) {
        parser.bang_flag = 0;
        TerminalReset(0);
    } else {
        DefineSplit();
    }
}

static void ConfidenceTest() {
    const ParserState& parser = session.parser;
    if (parser.params[0] != 2) return;
    if (parser.params[1] == 1) {
        TerminalReset(0);
        return;
    }
    BlankScreen(0);
    MoveCursor(1, 1);
}

static void Ignore() {}

// ---------------------------------------------------------------- the final bytes

using FinalHandler = void (*)();

struct FinalRow {
    BYTE byte;
    FinalHandler act;
    bool parses;   // reads its parameters first
    bool replies;  // may place a reply
};

// clang-format off
constexpr FinalRow kFinalRows[] = {
    // final, action,                  parses, replies
    {'@',     InsertCharacters,        true,   false},  // ICH
    {'A',     CursorUp,                true,   false},  // CUU
    {'B',     CursorDown,              true,   false},  // CUD
    {'C',     CursorRight,             true,   false},  // CUF
    {'D',     CursorLeft,              true,   false},  // CUB
    {'H',     CursorPositionTo,        true,   false},  // CUP
    {'J',     EraseInDisplay,          true,   false},  // ED, DECSED
    {'K',     EraseInLine,             true,   false},  // EL, DECSEL
    {'L',     InsertOneLine,           false,  false},  // IL
    {'M',     DeleteSomeLines,         true,   false},  // DL
    {'P',     DeleteCharacters,        true,   false},  // DCH
    {'X',     EraseCharacters,         true,   false},  // ECH
    {'c',     ReplyDeviceAttributes,   false,  true },  // DA1, DA2
    {'f',     CursorPositionTo,        true,   false},  // HVP
    {'g',     ClearTabStops,           true,   false},  // TBC
    {'h',     SetModes,                true,   false},  // SM, DECSET
    {'i',     Ignore,                  true,   false},  // MC
    {'l',     ResetModes,              true,   false},  // RM, DECRST
    {'m',     SelectRendition,         true,   false},  // SGR
    {'n',     ReplyDeviceStatus,       true,   true },  // DSR
    {'p',     ConformanceResetOrSplit, true,   false},  // DECSCL, DECSTR, split
    {'q',     SelectProtection,        true,   false},  // DECSCA
    {'r',     SetScrollingRegion,      true,   false},  // DECSTBM
    {'s',     SwitchRegion,            true,   false},  // split
    {'x',     ReplyTerminalParameters, true,   true },  // DECREQTPARM
    {'y',     ConfidenceTest,          true,   false},  // DECTST
};
// clang-format on

constexpr std::array<FinalRow, 256> kFinals = [] {
    std::array<FinalRow, 256> table{};
    for (const FinalRow& row : kFinalRows) table[row.byte] = row;
    return table;
}();

// ---------------------------------------------------------------- bytes before the final byte

// Leading zeros are stored as a single zero, so that they cannot fill the buffer.
static void CollectParameter(BYTE b) {
    ParserState& parser = session.parser;
    parser.bang_flag = 0;
    parser.quote_flag = 0;
    const bool more_zeros = b == '0' && parser.param_len == 1 && parser.param_text[0] == '0';
    if (more_zeros) return;
    parser.param_text[parser.param_len++] = static_cast<char>(b);
    if (parser.param_len < kParamTextSize) return;
    parser.param_len = 0;
    parser.parser_state = kStateGround;
}

static void NotePrivate(BYTE) { session.parser.private_flag = 1; }
static void NoteSecondary(BYTE) { session.parser.secondary_flag = 1; }
static void NoteBang(BYTE) { session.parser.bang_flag = 1; }
static void NoteQuote(BYTE) { session.parser.quote_flag = 1; }

static void AnswerEquals(BYTE) {
    session.parser.parser_state = kStateGround;
    ReplyNotImplemented();
}

static void RemoveParameter(BYTE) {
    if (session.parser.param_len > 0) {
        --session.parser.param_len;
    } else {
        session.parser.parser_state = kStateGround;
    }
}

static void EscapeAgain(BYTE) {
    session.parser.param_len = 0;
    BeginEscape();
}

using InnerHandler = void (*)(BYTE b);

struct InnerRow {
    BYTE first;
    BYTE last;
    InnerHandler act;
};

// clang-format off
constexpr InnerRow kInnerRows[] = {
    {'0',  '9',  CollectParameter},
    {';',  ';',  CollectParameter},
    {'\'', '\'', CollectParameter},
    {'?',  '?',  NotePrivate     },
    {'>',  '>',  NoteSecondary   },
    {'!',  '!',  NoteBang        },
    {'"',  '"',  NoteQuote       },
    {'=',  '=',  AnswerEquals    },
    {8,    8,    RemoveParameter },
    {27,   27,   EscapeAgain     },
};
// clang-format on

constexpr std::array<InnerHandler, 256> kInner = [] {
    std::array<InnerHandler, 256> table{};
    for (const InnerRow& row : kInnerRows) {
        for (size_t b = row.first; b <= row.last; ++b) table[b] = row.act;
    }
    return table;
}();

constexpr std::array<BYTE, 256> kParameterBytes = [] {
    std::array<BYTE, 256> table{};
    for (size_t b = 0; b < table.size(); ++b) table[b] = kInner[b] == CollectParameter;
    return table;
}();

void ControlSequenceByte(BYTE b) {
    if (const InnerHandler act = kInner[b]) {
        act(b);
        return;
    }
    session.parser.parser_state = kStateGround;
    const FinalRow& final = kFinals[b];
    if (!final.act) return;
    if (final.parses) ParseParameters();
    final.act();
}

int CollectParameters(const BYTE* bytes, int count) {
    ParserState& parser = session.parser;
    int len = parser.param_len;
    int taken = 0;
    for (; taken < count && len < kParamTextSize - 1; ++taken) {
        const BYTE b = bytes[taken];
        if (!kParameterBytes[b]) break;
        const bool more_zeros = b == '0' && len == 1 && parser.param_text[0] == '0';
        if (!more_zeros) parser.param_text[len++] = static_cast<char>(b);
    }
    parser.param_len = len;
    if (taken > 0) parser.bang_flag = parser.quote_flag = 0;
    return taken;
}

// ---------------------------------------------------------------- whole sequences
//
// A host that moves the cursor a lot sends mostly short sequences with one or two numbers. Parsing
// each of them digit by digit costs several mispredicted branches. So this code looks at the eight
// bytes after ESC [ together, as one 64-bit word with the first byte lowest.

constexpr uint64_t kEveryByte = 0x0101010101010101;
constexpr int kLongestNumber = 2;  // digits

static uint64_t FirstByteLowest(uint64_t word) {
    return std::endian::native == std::endian::little ? word : __builtin_bswap64(word);
}

static uint64_t LoadEight(const void* bytes) {
    uint64_t word;
    memcpy(&word, bytes, sizeof(word));
    return FirstByteLowest(word);
}

// Returns the number whose digits are the lowest `count` bytes, each 0..9. `count` is at most 2;
// below 1 the result is 0.
static int NumberOf(uint64_t digits, int count) {
    const uint64_t two = digits << (8 * (kLongestNumber - count));
    return static_cast<int>((two & 0x0F) * 10 + (two >> 8 & 0x0F));
}

int RunCommonSequence(const BYTE* bytes, int count) {
    if (count < 10) return 0;
    const uint64_t word = LoadEight(bytes + 2);
    const uint64_t ends = (word & 0xF0 * kEveryByte) ^ 0x30 * kEveryByte;  // not 0 to ?
    if (ends == 0) return 0;
    const int length = std::countr_zero(ends) / 8;  // bytes of parameters
    const uint64_t inside = (1ULL << (8 * length)) - 1;
    const uint64_t digits = word & 0x0F * kEveryByte;
    const uint64_t marks = (digits + 0x06 * kEveryByte) & inside & (0x10 * kEveryByte);  // : to ?
    const int first = marks ? std::countr_zero(marks) / 8 : length;
    const int second = length - first - 1;  // digits after the semicolon; -1: no semicolon
    if (first > kLongestNumber || second > kLongestNumber) return 0;
    if (marks && ((marks & (marks - 1)) || bytes[2 + first] != ';')) return 0;
    const bool leading_zeros = (word & inside & 0xFFFF) == 0x3030;
    const BYTE final_byte = static_cast<BYTE>(word >> (8 * length));
    const FinalRow& final = kFinals[final_byte];
    if (!final.parses || final.replies || leading_zeros) return 0;

    ParserState& parser = session.parser;
    const uint64_t text =
        FirstByteLowest((LoadEight(parser.param_text) & ~inside) | (word & inside));
    memcpy(parser.param_text, &text, sizeof(text));
    parser.param_len = length;
    parser.private_flag = 0;
    parser.secondary_flag = 0;
    if (length > 0) parser.bang_flag = parser.quote_flag = 0;
    parser.params[0] = NumberOf(digits, first);
    parser.params[1] = NumberOf(digits >> (8 * first) >> 8, second);
    parser.param_count = marks ? 2 : 1;
    if (final_byte >= 'A' && final_byte <= 'D') {
        StepCursor(final_byte - 'A');
    } else {
        final.act();
    }
    return 2 + length + 1;
}
