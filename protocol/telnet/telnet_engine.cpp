// SPDX-License-Identifier: MIT
// The Telnet engine: it separates commands from data, negotiates options and answers the
// terminal-type request.
#include "protocol/telnet/telnet.h"

#include "session/session_ports.h"
#include "session/session_state.h"
#include "terminal/modes.h"
#include "text/text.h"

constexpr BYTE kSe = 240;
constexpr BYTE kDm = 242;
constexpr BYTE kSb = 250;
constexpr BYTE kWill = 251;
constexpr BYTE kWont = 252;
constexpr BYTE kDo = 253;
constexpr BYTE kDont = 254;
constexpr BYTE kIac = 255;

constexpr BYTE kBinary = 0;
constexpr BYTE kEcho = 1;
constexpr BYTE kSuppressGoAhead = 3;
constexpr BYTE kTerminalType = 24;
constexpr BYTE kTypeIs = 0;
constexpr BYTE kTypeSend = 1;

// These turn an option on or off and send the announcement. They send nothing if the option already
// has that value. An option above the table is always answered.
static void SwitchOn(BYTE* options, BYTE option, BYTE announcement) {
    if (options[option] == 1) return;
    options[option] = 1;
    TelnetSendCommand(announcement, option);
}

static void SwitchOff(BYTE* options, BYTE option, BYTE announcement) {
    if (option >= kTelnetOptions) return TelnetSendCommand(announcement, option);
    if (options[option] != 1) return;
    options[option] = 0;
    TelnetSendCommand(announcement, option);
}

static void OnWill(BYTE option) {
    TelnetState& telnet = session.telnet;
    if (option == kEcho) {
        SetLocalEcho(0);
        telnet.my_options[kEcho] = 0;
    }
    if (option == kEcho || option == kBinary || option == kSuppressGoAhead ||
        option == kTerminalType) {
        SwitchOn(telnet.his_options, option, kDo);
    } else {
        TelnetSendCommand(kDont, option);
    }
}

static void OnWont(BYTE option) {
    if (option == kEcho) SetLocalEcho(1);
    SwitchOff(session.telnet.his_options, option, kDont);
}

static void OnDo(BYTE option) {
    TelnetState& telnet = session.telnet;
    if (option == kEcho) {
        SetLocalEcho(1);
        telnet.his_options[kEcho] = 0;
    }
    if (option == kEcho || option == kSuppressGoAhead || option == kTerminalType) {
        SwitchOn(telnet.my_options, option, kWill);
    } else {
        TelnetSendCommand(kWont, option);
    }
}

static void OnDont(BYTE option) {
    if (option == kEcho) SetLocalEcho(0);
    SwitchOff(session.telnet.my_options, option, kWont);
}

static void BeginSubnegotiation(BYTE option) {
    session.telnet.subneg_count = 1;
    session.telnet.subneg_buffer[0] = option;
    session.telnet.in_subneg = 1;
}

namespace {

struct CommandRow {
    BYTE command;
    void (*handler)(BYTE option);
};

}  // namespace

// clang-format off
static const CommandRow kCommands[] = {
    {kSb,   BeginSubnegotiation},
    {kWill, OnWill},
    {kWont, OnWont},
    {kDo,   OnDo},
    {kDont, OnDont},
};
// clang-format on

static void TraceCommand(BYTE option) {
    if (session.settings.nego == 1)
        TraceHostCommand(static_cast<BYTE>(session.telnet.last_command), option);
}

static void RunCommand(BYTE option) {
    for (const CommandRow& row : kCommands) {
        if (row.command != session.telnet.last_command) continue;
        if (row.command != kSb) TraceCommand(option);
        return row.handler(option);
    }
}

static void AnswerTerminalType() {
    BYTE answer[kSettingUnits + 6] = {kIac, kSb, kTerminalType, kTypeIs};
    char name[kSettingUnits];
    const int length = AnsiFromWide(session.settings.termtype, name, kSettingUnits);
    std::memcpy(answer + 4, name, static_cast<size_t>(length));
    answer[4 + length] = kIac;
    answer[5 + length] = kSe;
    SessionSend(answer, length + 6, 0);
    if (session.settings.nego == 1) TraceTerminalType(name);
}

// The count is not checked, so byte 1 may still be from the previous subnegotiation.
static void EndSubnegotiation() {
    TelnetState& telnet = session.telnet;
    telnet.in_subneg = 0;
    if (session.settings.nego == 1) TraceSubnegotiation(telnet.subneg_buffer, telnet.subneg_count);
    if (telnet.subneg_buffer[1] == kTypeSend && telnet.subneg_buffer[0] == kTerminalType)
        AnswerTerminalType();
}

static void TakeSubnegotiationByte(BYTE b) {
    TelnetState& telnet = session.telnet;
    if (b == kSe) return EndSubnegotiation();
    if (telnet.subneg_count < kSubnegSize) telnet.subneg_buffer[telnet.subneg_count++] = b;
}

static void TakeDataMark() {
    if (session.settings.nego != 1) return;
    TraceDataMark();
    session.telnet.iac_seen = 0;
}

void TelnetReset() {
    TelnetState& telnet = session.telnet;
    telnet.escape_iac = 0;
    telnet.last_command = 0;
    telnet.iac_seen = 0;
    std::memset(telnet.his_options, 0, kTelnetOptions - 1);
    std::memset(telnet.my_options, 0, kTelnetOptions - 1);
    telnet.my_options[kEcho] = 1;
}

bool TelnetReceiveByte(BYTE b) {
    TelnetState& telnet = session.telnet;
    if (telnet.in_subneg == 1) return TakeSubnegotiationByte(b), true;
    if (b != kIac && telnet.iac_seen != 1) return false;
    if (b >= kSb && b <= kDont) {
        telnet.last_command = b;
    } else if (b == kIac) {
        telnet.iac_seen = 1;
    } else if (b == kDm) {
        TakeDataMark();
    } else {
        telnet.iac_seen = 0;
        RunCommand(b);
    }
    return true;
}

int TelnetDataRun(const BYTE* bytes, int count) {
    if (session.telnet.in_subneg || session.telnet.iac_seen) return 0;
    const void* iac = std::memchr(bytes, kIac, static_cast<size_t>(count));
    return iac ? static_cast<int>(static_cast<const BYTE*>(iac) - bytes) : count;
}

void TelnetSendCommand(BYTE command, BYTE option) {
    const BYTE bytes[] = {kIac, command, option};
    SessionSend(bytes, sizeof(bytes), 0);
    if (session.settings.nego == 1) TraceClientCommand(command, option);
}
