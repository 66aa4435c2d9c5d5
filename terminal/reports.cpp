// SPDX-License-Identifier: MIT
// The texts of the terminal's replies to the host, and which request gets which reply.
#include "terminal/actions.h"

#include <cstdio>

struct ReplyText {
    const char* seven_bit;
    const char* eight_bit;
};

struct StatusRow {
    int value;  // of CSI n
    ReplyText reply;
};

// clang-format off
static const ReplyText kAnswerback     = {"QUILL",                      "QUILL"};
static const ReplyText kNotImplemented = {"Not implemented",            "Not implemented"};
static const ReplyText kVt52Identity   = {"\x1b/Z",                     "\x1b/Z"};
static const ReplyText kPrimary        = {"\x1b[?62;1;6c",              "\x9b?62;1;6c"};
static const ReplyText kSecondary      = {"\x1b[>1;1;0c",               "\x9b>1;1;0c"};
static const ReplyText kCursor         = {"\x1b[%d;%dR",                "\x9b%d;%dR"};

// The 8-bit reply to request 0 has no introducer. Hosts expect exactly this text.
static const ReplyText kParameters0    = {"\x1b[2;1;1;128;128;1;0x",    "2332;1;1;128;128;1;0x"};
static const ReplyText kParameters     = {"\x1b[3;1;1;128;128;1;0x",    "\x9b""3;1;1;128;128;1;0x"};

static const StatusRow kStatus[] = {
    { 5, {"\x1b[0n",           "\x9b""0n"         }},  // DSR
    { 6, kCursor                                   },  // CPR: row, then column
    {15, {"\x1b[?13n",         "\x9b?13n"         }},  // DSR
    {25, {"\x1b[?21n",         "\x9b?21n"         }},  // DSR
    {26, {"\x1b[?27;1;0;1n",   "\x9b?27;1;0;1n"   }},  // DSR
};
// clang-format on

// Every text is a format that gets the cursor's row and column, but only kCursor uses them.
static void Reply(const ReplyText& text) {
    const char* format = session.modes.c1_replies ? text.eight_bit : text.seven_bit;
    sprintf(session.parser.reply_text, format, session.screen.cursor_row,
            session.screen.cursor_col);
    session.parser.reply_pending = 1;
}

void ReplyAnswerback() { Reply(kAnswerback); }
void ReplyNotImplemented() { Reply(kNotImplemented); }
void ReplyVt52Identity() { Reply(kVt52Identity); }
void ReplyPrimaryAttributes() { Reply(kPrimary); }

void ReplyDeviceAttributes() {
    Reply(session.parser.secondary_flag ? kSecondary : kPrimary);
    session.parser.secondary_flag = 0;
}

void ReplyDeviceStatus() {
    for (const StatusRow& row : kStatus) {
        if (row.value == session.parser.params[0]) Reply(row.reply);
    }
}

void ReplyTerminalParameters() {
    Reply(session.parser.params[0] == 0 ? kParameters0 : kParameters);
}
