// SPDX-License-Identifier: MIT
// What a connect clears in the Telnet state and what it keeps.
#include <gtest/gtest.h>

#include "protocol/telnet/telnet.h"
#include "tests/telnet/outside.h"

namespace {

void ResetFromFullTables() {
    NewSession();
    std::memset(session.telnet.his_options, 1, kTelnetOptions);
    std::memset(session.telnet.my_options, 1, kTelnetOptions);
    session.telnet.escape_iac = 1;
    session.telnet.iac_seen = 1;
    session.telnet.last_command = 251;
    TelnetReset();
}

}  // namespace

TEST(TelnetReset, ClearsOptions0To249AndLeaves250) {
    ResetFromFullTables();
    for (int option = 0; option < 250; option++) {
        EXPECT_EQ(session.telnet.his_options[option], 0) << option;
        EXPECT_EQ(session.telnet.my_options[option], option == 1) << option;
    }
    EXPECT_EQ(session.telnet.his_options[250], 1);
    EXPECT_EQ(session.telnet.my_options[250], 1);
}

TEST(TelnetReset, CountsTheClientAsEchoing) {
    NewSession();
    session.telnet.my_options[1] = 0;
    TelnetReset();
    EXPECT_EQ(session.telnet.my_options[1], 1);
    EXPECT_EQ(session.telnet.his_options[1], 0);
}

TEST(TelnetReset, ForgetsTheCommandAndTheEscaping) {
    ResetFromFullTables();
    EXPECT_EQ(session.telnet.escape_iac, 0u);
    EXPECT_EQ(session.telnet.iac_seen, 0u);
    EXPECT_EQ(session.telnet.last_command, 0u);
}

TEST(TelnetReset, ForgetsAnIacThatWasTheLastByte) {
    NewSession();
    Filter("\xFF\xFB");
    TelnetReset();
    EXPECT_EQ(Filter("A"), "A");
    EXPECT_EQ(Sent(), "");
}

TEST(TelnetReset, SubnegotiationContinuesInTheNextConnection) {
    NewSession();
    Filter("\xFF\xFA\x18\x01");
    TelnetReset();
    EXPECT_EQ(session.telnet.in_subneg, 1u);
    EXPECT_EQ(session.telnet.subneg_count, 2);
    EXPECT_EQ(Filter("login: "), "");
    EXPECT_EQ(Filter("\xF0"), "");
    EXPECT_EQ(Sent().substr(0, 4), std::string("\xFF\xFA\x18\0", 4));
    EXPECT_EQ(Filter("data"), "data");
}
