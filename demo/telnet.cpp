// SPDX-License-Identifier: MIT
// The Telnet parser of the demo host: a table with one handler for each state.
#include "demo/session.h"

constexpr unsigned char kEcho = 1, kSuppressGoAhead = 3, kTerminalType = 24;
constexpr unsigned char kSe = 240, kSb = 250, kWill = 251, kWont = 252, kDo = 253, kDont = 254,
                        kIac = 255;

namespace {

enum { kData, kCommand, kOption, kSubnegotiation, kSubnegotiationIac };

}  // namespace

static void Send(std::string& out, unsigned char command, unsigned char option) {
    out += static_cast<char>(kIac);
    out += static_cast<char>(command);
    out += static_cast<char>(option);
}

static void AskTerminalType(Telnet& telnet, std::string& out) {
    if (telnet.type_asked) return;
    telnet.type_asked = true;
    Send(out, kSb, kTerminalType);
    out += '\x01';
    out += static_cast<char>(kIac);
    out += static_cast<char>(kSe);
}

static void OnWill(Telnet& telnet, unsigned char option, std::string& out) {
    if (option == kTerminalType) return AskTerminalType(telnet, out);
    Send(out, kDont, option);
}

static void OnDo(Telnet& telnet, unsigned char option, std::string& out) {
    if (option == kEcho) telnet.echo = true;
    if (option != kEcho && option != kSuppressGoAhead) Send(out, kWont, option);
}

static void OnDont(Telnet& telnet, unsigned char option, std::string&) {
    if (option == kEcho) telnet.echo = false;
}

static void OnWont(Telnet&, unsigned char, std::string&) {}

namespace {

struct OptionRow {
    unsigned char command;
    void (*handler)(Telnet&, unsigned char, std::string&);
};

}  // namespace

// clang-format off
static const OptionRow kOptionRows[] = {
    {kWill, OnWill},
    {kWont, OnWont},
    {kDo,   OnDo},
    {kDont, OnDont},
};
// clang-format on

static bool TakeData(Telnet& telnet, unsigned char byte, std::string&, char& data) {
    if (byte == kIac) {
        telnet.state = kCommand;
        return false;
    }
    data = static_cast<char>(byte);
    return true;
}

// The byte after IAC: a command with an option, SB, a second IAC (a data byte 255), or a single
// command (NOP, GA, EOR, ...), which is ignored.
static bool TakeCommand(Telnet& telnet, unsigned char byte, std::string&, char& data) {
    telnet.state = kData;
    if (byte == kSb) {
        telnet.subnegotiation.clear();
        telnet.state = kSubnegotiation;
    } else if (byte >= kWill && byte <= kDont) {
        telnet.command = byte;
        telnet.state = kOption;
    } else if (byte == kIac) {
        data = static_cast<char>(byte);
        return true;
    }
    return false;
}

static bool TakeOption(Telnet& telnet, unsigned char byte, std::string& out, char&) {
    telnet.state = kData;
    for (const OptionRow& row : kOptionRows) {
        if (row.command == telnet.command) row.handler(telnet, byte, out);
    }
    return false;
}

static void StoreTerminalType(Telnet& telnet) {
    const std::string& text = telnet.subnegotiation;
    if (text.size() < 2 || text[0] != static_cast<char>(kTerminalType) || text[1] != 0) return;
    telnet.terminal_type.clear();
    for (size_t i = 2; i < text.size() && telnet.terminal_type.size() < 40; ++i) {
        if (text[i] > ' ' && text[i] < '\x7f') telnet.terminal_type += text[i];
    }
}

static bool TakeSubnegotiation(Telnet& telnet, unsigned char byte, std::string&, char&) {
    if (byte == kIac) {
        telnet.state = kSubnegotiationIac;
    } else if (telnet.subnegotiation.size() < kSubnegotiationMax) {
        telnet.subnegotiation += static_cast<char>(byte);
    }
    return false;
}

static bool TakeSubnegotiationIac(Telnet& telnet, unsigned char byte, std::string&, char&) {
    telnet.state = kSubnegotiation;
    if (byte == kSe) {
        telnet.state = kData;
        StoreTerminalType(telnet);
    } else if (byte == kIac && telnet.subnegotiation.size() < kSubnegotiationMax) {
        telnet.subnegotiation += static_cast<char>(byte);
    }
    return false;
}

namespace {

using StateHandler = bool (*)(Telnet&, unsigned char, std::string&, char&);

}  // namespace

static const StateHandler kStates[] = {
    TakeData, TakeCommand, TakeOption, TakeSubnegotiation, TakeSubnegotiationIac,
};

void TelnetOpen(std::string& out) {
    Send(out, kWill, kEcho);
    Send(out, kWill, kSuppressGoAhead);
    Send(out, kDo, kTerminalType);
}

bool TelnetTake(Telnet& telnet, unsigned char byte, std::string& out, char& data) {
    return kStates[telnet.state](telnet, byte, out, data);
}
