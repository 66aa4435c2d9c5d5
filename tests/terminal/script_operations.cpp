// SPDX-License-Identifier: MIT
// The operations that a script can call directly, without the interpreter.
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"
#include "tests/terminal/script.h"
#include "tests/terminal/terminal_state.h"

struct OperationRow {
    const char* name;
    size_t numbers;
    void (*run)(const int* n);
};

#define CALL0(name)                          \
    {                                        \
#name, 0, [](const int*) { name(); } \
    }
#define CALL1(name)                                \
    {                                              \
#name, 1, [](const int* n) { name(n[0]); } \
    }
#define CALL2(name)                                      \
    {                                                    \
#name, 2, [](const int* n) { name(n[0], n[1]); } \
    }
#define CALL3(name)                                            \
    {                                                          \
#name, 3, [](const int* n) { name(n[0], n[1], n[2]); } \
    }
#define CALL4(name)                                                  \
    {                                                                \
#name, 4, [](const int* n) { name(n[0], n[1], n[2], n[3]); } \
    }

static BYTE Code(int n) { return static_cast<BYTE>(n); }
static DWORD Word(int n) { return static_cast<DWORD>(n); }

// clang-format off
static const OperationRow kOperations[] = {
    CALL0(ClearAll),         CALL0(ClearAllLines),    CALL0(ResetAttr),
    CALL0(MarkBlinkingRows), CALL0(TerminalStart),    CALL1(TerminalReset),
    CALL1(SetDoubleTop),     CALL1(SetDoubleBottom),  CALL1(SetSingleWidth),
    CALL1(SetDoubleWidth),   CALL1(SetBold),          CALL1(SetUnderline),
    CALL1(SetBlink),         CALL1(SetReverse),       CALL1(SetGraphic),
    CALL1(SetProtected),     CALL1(TurnRing),         CALL2(InsertCell),
    CALL2(DeleteCell),       CALL2(CopyLine),         CALL3(InsertLines),
    CALL3(DeleteLines),      CALL4(SetSelection),
    {"SetAttr",             1, [](const int* n) { SetAttr(static_cast<WORD>(n[0])); }},
    {"PutChar",             3, [](const int* n) { PutChar(Code(n[0]), n[1], n[2]); }},
    {"PutCharUnprotected",  3, [](const int* n) { PutCharUnprotected(Code(n[0]), n[1], n[2]); }},
    {"SetCell",             3, [](const int* n) { SetCell(n[0], n[1], Word(n[2])); }},
    {"FillLine",            3, [](const int* n) { FillLine(n[0], Word(n[1]), n[2]); }},
    {"FillLineUnprotected", 3, [](const int* n) { FillLineUnprotected(n[0], Word(n[1]), n[2]); }},
    {"SetNewlineMode",      1, [](const int* n) { SetNewlineMode(Word(n[0])); }},
    {"SetAutowrap",         1, [](const int* n) { SetAutowrap(Word(n[0])); }},
    {"used",                1, [](const int* n) { UseRing(n[0]); }},
    {"columns",             1, [](const int* n) { session.screen.columns = n[0]; }},
    {"bell",                1, [](const int* n) { session.settings.bell = Word(n[0]); }},
};
// clang-format on

bool RunOperation(const std::string& operation, const ScriptWords& words) {
    for (const OperationRow& row : kOperations) {
        if (operation != row.name || words.numbers.size() < row.numbers) continue;
        row.run(words.numbers.data());
        return true;
    }
    return false;
}
