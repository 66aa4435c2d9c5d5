// SPDX-License-Identifier: MIT
// The trace of the Telnet negotiation: the text of its lines, and how they reach the terminal.
#include "protocol/telnet/telnet.h"

#include "terminal/interpreter.h"
#include "terminal/modes.h"

constexpr int kLineUnits = 256;
constexpr int kLineBytes = 255;

namespace {

struct NameRow {
    BYTE code;
    LPCWSTR name;
};

struct HostRow {
    BYTE command;
    LPCWSTR format;
};

}  // namespace

// clang-format off
static const HostRow kHostLines[] = {
    {251, TEXT("HOST: IAC WILL %s \n\r")},
    {252, TEXT("HOST: IAC WONT %s \n\r")},
    {253, TEXT("HOST: IAC DO %s \n\r")},
    {254, TEXT("HOST: IAC DONT %s\n\r")},
};

static const NameRow kCommandNames[] = {
    {251, TEXT(" WILL")},
    {252, TEXT(" WONT")},
    {253, TEXT(" DO")},
    {254, TEXT(" DONT")},
};

static const NameRow kOptionNames[] = {
    {0,   TEXT("TN_TRANSBIT_BINARY")},
    {1,   TEXT("TN_ECHO")},
    {3,   TEXT("TN_SUPPRESS_GA")},
    {5,   TEXT("TN_STATUS")},
    {6,   TEXT("TN_TIMING_MARK")},
    {24,  TEXT("TN_TERMTYPE.")},
    {250, TEXT("TELNET_NOPTIONS")},
};
// clang-format on

static LPCWSTR CommandName(BYTE command) {
    for (const NameRow& row : kCommandNames)
        if (row.code == command) return row.name;
    return TEXT(" BUG");
}

// The result is valid until the next call.
static LPCWSTR OptionName(BYTE option) {
    static WCHAR number[8];
    for (const NameRow& row : kOptionNames)
        if (row.code == option) return row.name;
    wsprintfW(number, TEXT(" %d"), option);
    return number;
}

void TraceWrite(LPCWSTR text) {
    char bytes[kLineBytes + 1] = {};
    const int cursor = CursorPosition();
    const int length = lstrlenW(text);
    WideCharToMultiByte(CP_ACP, 0, text, length < kLineBytes ? length : kLineBytes, bytes,
                        kLineBytes, nullptr, nullptr);
    for (const char* byte = bytes; *byte; ++byte)
        if (TerminalFeedByte(static_cast<BYTE>(*byte))) TerminalTakeReply();
    ShowWritten(cursor);
}

void TraceHostCommand(BYTE command, BYTE option) {
    WCHAR line[kLineUnits];
    for (const HostRow& row : kHostLines) {
        if (row.command != command) continue;
        wsprintfW(line, row.format, OptionName(option));
        TraceWrite(line);
    }
}

void TraceDataMark() { TraceWrite(TEXT("HOST: IAC DM\n\r")); }

// Up to 80 bytes of four characters each do not fit into the line buffer. So the line is written in
// parts; on the screen it is one line.
void TraceSubnegotiation(const BYTE* bytes, int count) {
    WCHAR part[kLineUnits];
    wsprintfW(part, TEXT("HOST: IAC SB %s"), OptionName(bytes[0]));
    TraceWrite(part);
    for (int i = 1; count >= 3 && i < count - 1; ++i) {
        wsprintfW(part, TEXT(" %d"), bytes[i]);
        TraceWrite(part);
    }
    TraceWrite(TEXT(" SE\n\r"));
}

void TraceClientCommand(BYTE command, BYTE option) {
    WCHAR line[kLineUnits];
    wsprintfW(line, TEXT("CLIENT: IAC %s %s\n\r"), CommandName(command), OptionName(option));
    TraceWrite(line);
}

void TraceTerminalType(const char* name) {
    WCHAR line[kLineUnits];
    wsprintfW(line, TEXT("CLIENT: IAC SB TERMTYPE IS %S  IAC SE\n\r"), name);
    TraceWrite(line);
}
