// SPDX-License-Identifier: MIT
// How a byte of the host is classified: IAC, one-byte commands, the data mark, data.
#include <gtest/gtest.h>

#include "protocol/telnet/telnet.h"
#include "tests/telnet/outside.h"

namespace {

enum { kDm = 242, kSb = 250, kWill = 251, kWont, kDo, kDont };
const std::string kIac = "\xFF";

}  // namespace

TEST(TelnetStream, EveryByteButIacIsData) {
    NewSession();
    for (int b = 0; b < 255; b++) {
        const std::string byte(1, static_cast<char>(b));
        EXPECT_EQ(Filter(byte), byte);
    }
    EXPECT_EQ(Sent(), "");
}

TEST(TelnetStream, DoubledIacIsSwallowedAndTheNextByteIsAnOption) {
    NewSession();
    Filter(Iac(kWill, 3));
    Sent();
    EXPECT_EQ(Filter("a" + kIac + kIac + "Ab"), "ab");
    EXPECT_EQ(Sent(), Iac(kDont, 'A'));
}

TEST(TelnetStream, SeveralIacsCountAsOne) {
    NewSession();
    EXPECT_EQ(Filter(std::string(9, '\xFF') + "\xFD" + std::string(4, '\xFF') + "\x1F" + "x"), "x");
    EXPECT_EQ(Sent(), Iac(kWont, 31));
}

TEST(TelnetStream, OneByteCommandAfterTheConnectDoesNothing) {
    for (int b = 0; b < 250; b++) {
        if (b == kDm) continue;
        NewSession();
        EXPECT_EQ(Filter(kIac + static_cast<char>(b) + "data"), "data");
        EXPECT_EQ(Sent(), "") << b;
        EXPECT_EQ(session.telnet.in_subneg, 0u);
    }
}

TEST(TelnetStream, OneByteCommandRepeatsTheLastCommand) {
    const int replies[] = {kDont, 0, kWont, 0};
    for (int command = kWill; command <= kDont; command++) {
        NewSession();
        Filter(Iac(command, 1));
        Sent();
        EXPECT_EQ(Filter(kIac + "\xF1"), "");  // NOP
        const int reply = replies[command - kWill];
        EXPECT_EQ(Sent(), reply ? Iac(reply, 241) : "") << command;
    }
}

TEST(TelnetStream, GoAheadAfterWillEchoIsRefusedEachTime) {
    NewSession();
    Filter(Iac(kWill, 1));
    Sent();
    EXPECT_EQ(Filter("a" + kIac + "\xF9" + "b" + kIac + "\xF9" + "c"), "abc");
    EXPECT_EQ(Sent(), Iac(kDont, 249) + Iac(kDont, 249));
}

TEST(TelnetStream, CommandReplacesThePreviousOne) {
    NewSession();
    EXPECT_EQ(Filter("\xFF\xFB\xFD\x1F"
                     "d"),
              "d");
    EXPECT_EQ(Sent(), Iac(kWont, 31));
}

TEST(TelnetStream, CommandBytesWithoutIacAreData) {
    NewSession();
    EXPECT_EQ(Filter("\xFA\xFB\xFC\xFD\xFE\xF0\xF2"), "\xFA\xFB\xFC\xFD\xFE\xF0\xF2");
    EXPECT_EQ(session.telnet.last_command, 0u);
}

TEST(DataMark, WithoutTraceTheNextByteIsAnOption) {
    NewSession();
    Filter(Iac(kDo, 3));
    Sent();
    EXPECT_EQ(Filter(kIac + "\xF2" + "Xdata"), "data");
    EXPECT_EQ(Sent(), Iac(kWont, 'X'));
    EXPECT_EQ(Shown(), "");
}

TEST(DataMark, WithTraceTheNextByteIsData) {
    NewSession();
    Filter(Iac(kDo, 3));
    Sent();
    session.settings.nego = 1;
    EXPECT_EQ(Filter(kIac + "\xF2" + "Xdata"), "Xdata");
    EXPECT_EQ(Sent(), "");
    EXPECT_EQ(Shown(), "HOST: IAC DM\n\r");
}

TEST(DataMark, AfterAnIacItKeepsTheIacState) {
    NewSession();
    EXPECT_EQ(Filter("\xFF\xFE\xF2\xF2"), "");
    EXPECT_EQ(session.telnet.iac_seen, 1u);
    EXPECT_EQ(session.telnet.last_command, 254u);
}

TEST(DataRun, EndsBeforeTheFirstIacAndIsEmptyInsideACommand) {
    NewSession();
    const BYTE bytes[] = {'a', 240, 'b', 255, 'c'};
    EXPECT_EQ(TelnetDataRun(bytes, 5), 3);
    EXPECT_EQ(TelnetDataRun(bytes, 2), 2);
    EXPECT_EQ(TelnetDataRun(bytes, 0), 0);
    Filter(kIac);
    EXPECT_EQ(TelnetDataRun(bytes, 5), 0);
    Filter("\xFA\x18");
    EXPECT_EQ(TelnetDataRun(bytes, 5), 0);
    Filter("\xF0");
    EXPECT_EQ(TelnetDataRun(bytes, 5), 3);
}
