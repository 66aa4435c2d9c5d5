// SPDX-License-Identifier: MIT
// Subnegotiations: how they end and are truncated, and the terminal type.
#include <gtest/gtest.h>

#include "protocol/telnet/telnet.h"
#include "tests/telnet/outside.h"

namespace {

const std::string kBegin = "\xFF\xFA";
const std::string kEnd = "\xFF\xF0";
const std::string kRequest = kBegin + "\x18\x01" + kEnd;

std::string Answer(const std::string& name) { return kBegin + '\x18' + '\0' + name + kEnd; }

}  // namespace

TEST(Subnegotiation, TerminalTypeRequestIsAnsweredWithVt220) {
    NewSession();
    EXPECT_EQ(Filter(kRequest), "");
    const BYTE expected[] = {255, 250, 24, 0, 118, 116, 50, 50, 48, 255, 240};
    EXPECT_EQ(Sent(), std::string(reinterpret_cast<const char*>(expected), sizeof(expected)));
    EXPECT_EQ(outside.sends, 1);
}

TEST(Subnegotiation, AnswerGoesOutWithoutEscaping) {
    NewSession();
    session.telnet.escape_iac = 1;
    SetText(session.settings.termtype, "a\xFF");
    Filter(kRequest);
    EXPECT_EQ(Sent(), Answer("a\xFF"));
}

TEST(Subnegotiation, TerminalTypeGoesThroughTheAnsiCodePage) {
    NewSession();
    SetText(session.settings.termtype, "vt?");
    session.settings.termtype[2] = u'\u20AC';
    Filter(kRequest);
    EXPECT_EQ(Sent(), Answer("vt\x80"));
}

TEST(Subnegotiation, TerminalTypeMayBeEmptyOrAsLongAsTheSetting) {
    NewSession();
    SetText(session.settings.termtype, "");
    Filter(kRequest);
    EXPECT_EQ(Sent(), Answer(""));
    const std::string longest(kSettingUnits - 1, 't');
    SetText(session.settings.termtype, longest.c_str());
    Filter(kRequest);
    EXPECT_EQ(Sent(), Answer(longest));
}

TEST(Subnegotiation, EveryOtherRequestIsIgnored) {
    for (int option = 0; option < 250; option++) {
        for (int what = 0; what < 256; what++) {
            if (option == 242 || what == 240 || (option == 24 && what == 1)) continue;
            NewSession();
            Filter(kBegin + static_cast<char>(option) + static_cast<char>(what) + kEnd);
            ASSERT_EQ(Sent(), "") << option << " " << what;
        }
    }
}

TEST(Subnegotiation, AnyAnswerToTheRequestByteCountsWhateverFollows) {
    NewSession();
    Filter(kBegin + "\x18\x01more" + kEnd);
    EXPECT_EQ(Sent(), Answer("vt220"));
}

TEST(Subnegotiation, EndsAtSeWithoutIac) {
    NewSession();
    EXPECT_EQ(Filter(kBegin + "\x18\x01\xF0" + "text"), "text");
    EXPECT_EQ(Sent(), Answer("vt220"));
}

TEST(Subnegotiation, DoubledIacIsKeptAsTwoBytes) {
    NewSession();
    Filter(kBegin + "\x05\xFF\xFF" + kEnd);
    EXPECT_EQ(session.telnet.subneg_count, 4);
    for (int i = 1; i < 4; i++) EXPECT_EQ(session.telnet.subneg_buffer[i], 255);
}

TEST(Subnegotiation, CommandsInsideAreItsBytes) {
    NewSession();
    EXPECT_EQ(Filter(kBegin + "\x05" + Iac(251, 1) + "A"), "");
    EXPECT_EQ(Sent(), "");
    EXPECT_EQ(session.telnet.subneg_count, 5);
    EXPECT_EQ(session.telnet.last_command, 250u);
}

TEST(Subnegotiation, KeepsItsFirst80Bytes) {
    NewSession();
    std::string payload;
    for (int i = 0; i < 200; i++) payload += static_cast<char>(i + 1);
    EXPECT_EQ(Filter(kBegin + "\x18" + payload + kEnd + "after"), "after");
    EXPECT_EQ(session.telnet.subneg_count, kSubnegSize);
    EXPECT_EQ(session.telnet.subneg_buffer[0], 24);
    for (int i = 1; i < kSubnegSize; i++) EXPECT_EQ(session.telnet.subneg_buffer[i], i);
    EXPECT_EQ(Sent(), Answer("vt220"));
}

TEST(Subnegotiation, ShortOneReadsTheByteOfThePreviousOne) {
    NewSession();
    Filter(kBegin + "\x05\x01" + kEnd);
    EXPECT_EQ(Sent(), "");
    Filter(kBegin + "\x18\xF0");
    EXPECT_EQ(session.telnet.subneg_count, 1);
    EXPECT_EQ(Sent(), Answer("vt220"));
}

TEST(Subnegotiation, TwoByteOneComparesTheIacItself) {
    NewSession();
    Filter(kBegin + "\x05\x01" + kEnd);
    Filter(kBegin + "\x18" + kEnd);
    EXPECT_EQ(session.telnet.subneg_count, 2);
    EXPECT_EQ(Sent(), "");
}

TEST(Subnegotiation, NextCommandlessIacByteOpensAnother) {
    NewSession();
    Filter(kBegin + "\x05" + kEnd);
    Filter("\xFF\xF1");  // NOP, with SB as the last command
    EXPECT_EQ(session.telnet.in_subneg, 1u);
    EXPECT_EQ(session.telnet.subneg_buffer[0], 241);
}
