// SPDX-License-Identifier: MIT
// The exact text of the trace lines.
#include <gtest/gtest.h>

#include "protocol/telnet/telnet.h"
#include "tests/telnet/outside.h"

namespace {

enum { kWill = 251, kWont, kDo, kDont };

void NewTracedSession() {
    NewSession();
    session.settings.nego = 1;
}

std::string LinesOf(const std::string& bytes) {
    NewTracedSession();
    Filter(bytes);
    return Shown();
}

std::string HostLine(int command, int option) {
    NewSession();
    TraceHostCommand(static_cast<BYTE>(command), static_cast<BYTE>(option));
    return Shown();
}

std::string ClientLine(int command, int option) {
    NewSession();
    TraceClientCommand(static_cast<BYTE>(command), static_cast<BYTE>(option));
    return Shown();
}

std::string Subnegotiation(const std::string& payload) {
    return LinesOf("\xFF\xFA" + payload + "\xFF\xF0");
}

struct NamedOption {
    int code;
    const char* name;
};
const NamedOption kNamed[] = {
    {0, "TN_TRANSBIT_BINARY"}, {1, "TN_ECHO"},       {3, "TN_SUPPRESS_GA"},   {5, "TN_STATUS"},
    {6, "TN_TIMING_MARK"},     {24, "TN_TERMTYPE."}, {250, "TELNET_NOPTIONS"}};

std::string NameOf(int option) {
    for (const NamedOption& named : kNamed)
        if (named.code == option) return named.name;
    return " " + std::to_string(option);
}

}  // namespace

TEST(Trace, NothingIsWrittenWithoutTheSetting) {
    for (DWORD nego : {0u, 2u}) {
        NewSession();
        session.settings.nego = nego;
        Filter(Iac(kWill, 1) + Iac(kDo, 31) + "\xFF\xFA\x18\x01\xFF\xF0" + "\xFF\xF2\x01");
        EXPECT_EQ(Shown(), "");
        EXPECT_EQ(outside.refreshes, 0);
    }
}

TEST(Trace, HostLinesNameEveryOption) {
    for (int option = 0; option < 256; option++) {
        const std::string name = NameOf(option);
        EXPECT_EQ(HostLine(kWill, option), "HOST: IAC WILL " + name + " \n\r");
        EXPECT_EQ(HostLine(kWont, option), "HOST: IAC WONT " + name + " \n\r");
        EXPECT_EQ(HostLine(kDo, option), "HOST: IAC DO " + name + " \n\r");
        EXPECT_EQ(HostLine(kDont, option), "HOST: IAC DONT " + name + "\n\r");
    }
}

TEST(Trace, ClientLinesNameEveryOption) {
    for (int option = 0; option < 256; option++) {
        const std::string name = NameOf(option);
        EXPECT_EQ(ClientLine(kWill, option), "CLIENT: IAC  WILL " + name + "\n\r");
        EXPECT_EQ(ClientLine(kWont, option), "CLIENT: IAC  WONT " + name + "\n\r");
        EXPECT_EQ(ClientLine(kDo, option), "CLIENT: IAC  DO " + name + "\n\r");
        EXPECT_EQ(ClientLine(kDont, option), "CLIENT: IAC  DONT " + name + "\n\r");
    }
}

TEST(Trace, OtherCommandsOfTheClientAreNamedBug) {
    EXPECT_EQ(ClientLine(250, 1), "CLIENT: IAC  BUG TN_ECHO\n\r");
    EXPECT_EQ(ClientLine(0, 31), "CLIENT: IAC  BUG  31\n\r");
}

TEST(Trace, DoTerminalTypeShowsTheHostThenTheClient) {
    EXPECT_EQ(LinesOf(Iac(kDo, 24)),
              "HOST: IAC DO TN_TERMTYPE. \n\rCLIENT: IAC  WILL TN_TERMTYPE.\n\r");
    EXPECT_EQ(outside.order, "TST");
}

TEST(Trace, UnknownOptionHasTwoBlanksBeforeItsNumber) {
    EXPECT_EQ(LinesOf(Iac(kWill, 31)), "HOST: IAC WILL  31 \n\rCLIENT: IAC  DONT  31\n\r");
}

TEST(Trace, RequestWithoutReplyShowsOnlyTheHost) {
    EXPECT_EQ(LinesOf(Iac(kDo, 1)), "HOST: IAC DO TN_ECHO \n\r");
    EXPECT_EQ(LinesOf(Iac(kWont, 5)), "HOST: IAC WONT TN_STATUS \n\r");
    EXPECT_EQ(LinesOf(Iac(kDont, 6)), "HOST: IAC DONT TN_TIMING_MARK\n\r");
}

TEST(Trace, OneByteCommandIsShownAsTheRepeatedCommand) {
    NewTracedSession();
    Filter(Iac(kWill, 1));
    Shown();
    Filter("\xFF\xF1");
    EXPECT_EQ(Shown(), "HOST: IAC WILL  241 \n\rCLIENT: IAC  DONT  241\n\r");
}

TEST(Trace, OneByteCommandAfterTheConnectIsNotShown) { EXPECT_EQ(LinesOf("\xFF\xF1"), ""); }

TEST(Trace, TerminalTypeRequestAndAnswer) {
    EXPECT_EQ(Subnegotiation("\x18\x01"),
              "HOST: IAC SB TN_TERMTYPE. 1 SE\n\r"
              "CLIENT: IAC SB TERMTYPE IS vt220  IAC SE\n\r");
    EXPECT_EQ(outside.order, "TST");
}

TEST(Trace, SubnegotiationBeginsWithoutALine) { EXPECT_EQ(LinesOf("\xFF\xFA\x18\x01"), ""); }

TEST(Trace, SubnegotiationPayloadIsInDecimal) {
    EXPECT_EQ(Subnegotiation(std::string("\x1F\0\x50\xFF\x18", 5)),
              "HOST: IAC SB  31 0 80 255 24 SE\n\r");
}

TEST(Trace, SubnegotiationOfFewerThanThreeBytesShowsNoPayload) {
    EXPECT_EQ(Subnegotiation("\x05"), "HOST: IAC SB TN_STATUS SE\n\r");
    EXPECT_EQ(LinesOf("\xFF\xFA\x05\xF0"), "HOST: IAC SB TN_STATUS SE\n\r");
    EXPECT_EQ(LinesOf("\xFF\xFA\x05\x07\xF0"), "HOST: IAC SB TN_STATUS SE\n\r");
}

TEST(Trace, SubnegotiationWithoutIacLosesItsLastByte) {
    EXPECT_EQ(LinesOf("\xFF\xFA\x05\x07\x08\xF0"), "HOST: IAC SB TN_STATUS 7 SE\n\r");
}

TEST(Trace, SubnegotiationOf80BytesIsOneLine) {
    std::string line = "HOST: IAC SB  31";
    for (int i = 0; i < 78; i++) line += " 255";
    EXPECT_EQ(Subnegotiation("\x1F" + std::string(300, '\xFF')), line + " SE\n\r");
}

void ReceiveAll(const std::string& bytes) {
    for (size_t i = 0; i < bytes.size(); i += kReceiveSize) Receive(bytes.substr(i, kReceiveSize));
}

// The buffer keeps the option and 79 bytes; the trace shows all of them but the last one.
std::string LineOfPayload(const std::string& payload) {
    const std::string kept = ("\x1F" + payload + "\xFF").substr(0, 80);
    std::string line = "HOST: IAC SB  31";
    for (size_t i = 1; kept.size() >= 3 && i + 1 < kept.size(); i++)
        line += " " + std::to_string(static_cast<BYTE>(kept[i]));
    return line + " SE\n\r";
}

TEST(Trace, SubnegotiationsOfEveryLengthCutAnywhere) {
    for (size_t length : {0u, 1u, 2u, 77u, 78u, 79u, 80u, 81u, 82u, 5000u}) {
        std::string payload;
        for (size_t i = 0; i < length; i++) payload += static_cast<char>(i % 200 + 1);
        const std::string bytes = "\xFF\xFA\x1F" + payload + "\xFF\xF0x";
        for (size_t cut = 0; cut <= bytes.size(); cut += length > 100 ? 97 : 1) {
            NewTracedSession();
            ReceiveAll(bytes.substr(0, cut));
            ReceiveAll(bytes.substr(cut));
            ASSERT_EQ(Shown(), LineOfPayload(payload) + "x") << length << " cut at " << cut;
            ASSERT_EQ(Sent(), "");
        }
    }
}

TEST(Trace, TerminalTypeOfFullLengthIsShownWhole) {
    NewTracedSession();
    const std::string name(kSettingUnits - 1, 'n');
    SetText(session.settings.termtype, name.c_str());
    Filter("\xFF\xFA\x18\x01\xFF\xF0");
    EXPECT_EQ(Shown(), "HOST: IAC SB TN_TERMTYPE. 1 SE\n\rCLIENT: IAC SB TERMTYPE IS " + name +
                           "  IAC SE\n\r");
}

TEST(Trace, LinesAreNeverSentToTheHost) {
    LinesOf(Iac(kDo, 31));
    EXPECT_EQ(Sent(), Iac(kWont, 31));
}

TEST(TraceWrite, ShowsAtMost255Bytes) {
    for (int length : {254, 255, 256, 1000}) {
        NewSession();
        TraceWrite(std::u16string(static_cast<size_t>(length), u'x').c_str());
        EXPECT_EQ(Shown(), std::string(static_cast<size_t>(std::min(length, 255)), 'x'));
    }
}

TEST(TraceWrite, RefreshesTheTerminalOnce) {
    NewSession();
    TraceWrite(TEXT("two\n\rlines"));
    EXPECT_EQ(outside.refreshes, 1);
    TraceWrite(TEXT(""));
    EXPECT_EQ(Shown(), "two\n\rlines");
}

TEST(TraceWrite, TerminalRepliesAreDiscarded) {
    NewSession();
    TraceWrite(
        TEXT("a\x05"
             "b\x05"));
    EXPECT_EQ(outside.replies_taken, 2);
    EXPECT_EQ(outside.sends, 0);
}

TEST(TraceWrite, TextIsConvertedToTheAnsiCodePage) {
    NewSession();
    TraceWrite(TEXT("\u00E4\u2603"));
    EXPECT_EQ(Shown(), "\xE4?");
}
