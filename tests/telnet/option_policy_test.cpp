// SPDX-License-Identifier: MIT
// The option policy: every command with every option in every state is compared with tables. The
// behaviour that a user notices has tests by name.
#include <gtest/gtest.h>

#include "protocol/telnet/telnet.h"
#include "tests/telnet/outside.h"

namespace {

enum { kWill = 251, kWont, kDo, kDont };
constexpr int kKeep = -1;

// One row: what a command does for a range of options. The reply is sent when entry `option` of the
// table is not yet `target`; without a table, always.
enum Table { kNone, kHis, kMy };
struct PolicyRow {
    int command;
    int first, last;  // options
    Table table;
    int target;
    int reply;
    int localecho;  // the new value, or kKeep
    Table cleared;  // entry 1 of this table becomes 0
};

// clang-format off
const PolicyRow kPolicy[] = {
    {kWill,   1,   1, kHis,  1, kDo,   0,     kMy},
    {kWill,   0,   0, kHis,  1, kDo,   kKeep, kNone},
    {kWill,   3,   3, kHis,  1, kDo,   kKeep, kNone},
    {kWill,  24,  24, kHis,  1, kDo,   kKeep, kNone},
    {kWill,   0, 255, kNone, 0, kDont, kKeep, kNone},
    {kWont,   1,   1, kHis,  0, kDont, 1,     kNone},
    {kWont, 251, 255, kNone, 0, kDont, kKeep, kNone},
    {kWont,   0, 250, kHis,  0, kDont, kKeep, kNone},
    {kDo,     1,   1, kMy,   1, kWill, 1,     kHis},
    {kDo,     3,   3, kMy,   1, kWill, kKeep, kNone},
    {kDo,    24,  24, kMy,   1, kWill, kKeep, kNone},
    {kDo,     0, 255, kNone, 0, kWont, kKeep, kNone},
    {kDont,   1,   1, kMy,   0, kWont, 0,     kNone},
    {kDont, 251, 255, kNone, 0, kWont, kKeep, kNone},
    {kDont,   0, 250, kMy,   0, kWont, kKeep, kNone},
};
// clang-format on

const PolicyRow& RowOf(int command, int option) {
    for (const PolicyRow& row : kPolicy)
        if (row.command == command && row.first <= option && option <= row.last) return row;
    ADD_FAILURE() << "no row";
    return kPolicy[0];
}

// Codes that the engine does not treat as the option of a command.
bool IsOption(int code) { return code < 250 && code != 242; }

struct Case {
    int command, option, his, my, localecho, nego;
};

void FillTables(const Case& c) {
    std::memset(session.telnet.his_options, c.his, kTelnetOptions);
    std::memset(session.telnet.my_options, c.my, kTelnetOptions);
    session.modes.localecho = static_cast<DWORD>(c.localecho);
    session.settings.nego = static_cast<DWORD>(c.nego);
}

struct Expected {
    std::string his, my, sent;
    DWORD localecho;
};

Expected ByPolicy(const Case& c) {
    const PolicyRow& row = RowOf(c.command, c.option);
    Expected e = {std::string(kTelnetOptions, static_cast<char>(c.his)),
                  std::string(kTelnetOptions, static_cast<char>(c.my)),
                  {},
                  static_cast<DWORD>(row.localecho == kKeep ? c.localecho : row.localecho)};
    const auto option = static_cast<size_t>(c.option);
    if (row.cleared == kHis) e.his[1] = 0;
    if (row.cleared == kMy) e.my[1] = 0;
    std::string* table = row.table == kHis ? &e.his : &e.my;
    if (row.table != kNone && (*table)[option] == row.target) return e;
    if (row.table != kNone) (*table)[option] = static_cast<char>(row.target);
    e.sent = Iac(row.reply, c.option);
    return e;
}

std::string Bytes(const BYTE* table) {
    return {reinterpret_cast<const char*>(table), static_cast<size_t>(kTelnetOptions)};
}

void CheckCase(const Case& c) {
    SCOPED_TRACE(testing::Message() << c.command << " " << c.option << " his " << c.his << " my "
                                    << c.my << " echo " << c.localecho << " nego " << c.nego);
    NewSession();
    FillTables(c);
    const Expected expected = ByPolicy(c);
    EXPECT_EQ(Filter(Iac(c.command, c.option)), "");
    EXPECT_EQ(Sent(), expected.sent);
    EXPECT_EQ(Bytes(session.telnet.his_options), expected.his);
    EXPECT_EQ(Bytes(session.telnet.my_options), expected.my);
    EXPECT_EQ(session.modes.localecho, expected.localecho);
    EXPECT_EQ(session.telnet.iac_seen, 0u);
    EXPECT_EQ(Shown().empty(), c.nego == 0);
}

}  // namespace

TEST(OptionPolicy, EveryCommandWithEveryOptionInEveryState) {
    for (int command = kWill; command <= kDont; command++)
        for (int option = 0; option < 256; option++)
            for (int state = 0; IsOption(option) && state < 16; state++)
                CheckCase({command, option, state & 1, state >> 1 & 1, state >> 2 & 1, state >> 3});
}

TEST(OptionPolicy, CommandCodesAreNotOptions) {
    for (int command = kWill; command <= kDont; command++) {
        for (int code = 250; code < 256; code++) {
            NewSession();
            EXPECT_EQ(Filter(Iac(command, code)), "");
            EXPECT_EQ(Sent(), "") << command << " " << code;
            EXPECT_EQ(session.telnet.iac_seen, 1u);
            EXPECT_EQ(session.telnet.last_command, static_cast<DWORD>(code < 255 ? code : command));
        }
    }
}

TEST(OptionPolicy, RequestsForTheCurrentStateGetNoReply) {
    for (int command = kWill; command <= kDont; command++) {
        for (int option : {1, 3, 24}) {
            NewSession();
            Filter(Iac(command, option));
            Sent();
            Filter(Iac(command, option) + Iac(command, option));
            EXPECT_EQ(Sent(), "") << command << " " << option;
        }
    }
}

TEST(OptionPolicy, WillEchoTurnsLocalEchoOffAndIsAnsweredOnce) {
    NewSession();
    session.modes.localecho = 1;
    Filter(Iac(kWill, 1));
    EXPECT_EQ(Sent(), "\xFF\xFD\x01");
    EXPECT_EQ(session.modes.localecho, 0u);
    EXPECT_EQ(session.telnet.my_options[1], 0);
    Filter(Iac(kWill, 1));
    EXPECT_EQ(Sent(), "");
}

TEST(OptionPolicy, WindowSizeIsRefusedBothWays) {
    NewSession();
    Filter(Iac(kDo, 31));
    EXPECT_EQ(Sent(), "\xFF\xFC\x1F");
    Filter(Iac(kWill, 31));
    EXPECT_EQ(Sent(), "\xFF\xFE\x1F");
}

TEST(OptionPolicy, BinaryIsTakenFromTheHostAndNotOffered) {
    NewSession();
    Filter(Iac(kDo, 0));
    EXPECT_EQ(Sent(), Iac(kWont, 0));
    Filter(Iac(kWill, 0));
    EXPECT_EQ(Sent(), Iac(kDo, 0));
}

TEST(OptionPolicy, DoEchoAfterTheConnectTurnsLocalEchoOnWithoutReply) {
    NewSession();
    Filter(Iac(kDo, 1));
    EXPECT_EQ(Sent(), "");
    EXPECT_EQ(session.modes.localecho, 1u);
}

TEST(OptionPolicy, EchoMovesBetweenTheSidesAndBack) {
    NewSession();
    Filter(Iac(kWill, 1));
    EXPECT_EQ(Sent(), Iac(kDo, 1));
    Filter(Iac(kDo, 1));
    EXPECT_EQ(Sent(), Iac(kWill, 1));
    EXPECT_EQ(session.modes.localecho, 1u);
    Filter(Iac(kWont, 1));
    EXPECT_EQ(Sent(), "");
    Filter(Iac(kDont, 1));
    EXPECT_EQ(Sent(), Iac(kWont, 1));
    EXPECT_EQ(session.modes.localecho, 0u);
}
