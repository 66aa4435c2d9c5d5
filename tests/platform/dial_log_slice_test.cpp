// SPDX-License-Identifier: MIT
// The dial-up program's log and exit codes. The lines are those of pppd 2.4.9 and its chat.
#include "platform/qt/services/remote_access.h"

#include <gtest/gtest.h>

namespace {

using States = std::vector<DWORD>;

States StatesOf(const std::string& log) { return DialLog().Take(log.data(), log.size()); }

const char kWhole[] =
    "Serial port initialized.\n"
    "timeout set to 3 seconds\n"
    "abort on (\\nBUSY\\r)\n"
    "send (ATZ^M)\n"
    "expect (OK)\n"
    "ATZ^M^M\n"
    "OK\n"
    " -- got it\n"
    "send (ATDT5551234^M)\n"
    "expect (CONNECT)\n"
    "CONNECT\n"
    " -- got it\n"
    "Serial connection established.\n"
    "using channel 1\n"
    "Using interface ppp0\n"
    "Connect: ppp0 <--> /dev/ttyS0\n"
    "sent [LCP ConfReq id=0x1 <asyncmap 0x0> <magic 0x2f4f9a20> <pcomp> <accomp>]\n"
    "rcvd [LCP ConfAck id=0x1 <asyncmap 0x0> <magic 0x2f4f9a20> <pcomp> <accomp>]\n"
    "sent [PAP AuthReq id=0x1 user=\"visitor\" password=<hidden>]\n"
    "rcvd [PAP AuthAck id=0x1 \"Login ok\"]\n"
    "Remote message: Login ok\n"
    "PAP authentication succeeded\n"
    "sent [IPCP ConfReq id=0x1 <compress VJ 0f 01> <addr 0.0.0.0>]\n"
    "local  IP address 10.0.0.2\n"
    "remote IP address 10.0.0.1\n";

TEST(DialLog, AWholeDialReachesItsStatesInOrder) {
    EXPECT_EQ(StatesOf(kWhole), (States{1, 2, 3, 4, 5, 14, 10, 0x2000}));
}

TEST(DialLog, WithoutDebugAndWithoutChatsLinesTheRestIsReached) {
    EXPECT_EQ(StatesOf("Serial connection established.\n"
                       "Using interface ppp0\n"
                       "Connect: ppp0 <--> /dev/ttyS0\n"
                       "CHAP authentication succeeded: Welcome\n"
                       "CHAP authentication succeeded\n"
                       "local  IP address 10.0.0.2\n"),
              (States{3, 4, 14, 0x2000}));
}

TEST(DialLog, GivesTheSameStatesWhereverItIsCut) {
    const std::string log = kWhole;
    for (size_t piece : {1u, 2u, 7u, 100u}) {
        DialLog reader;
        States states;
        for (size_t i = 0; i < log.size(); i += piece) {
            const std::string bytes = log.substr(i, piece);
            for (const DWORD state : reader.Take(bytes.data(), bytes.size()))
                states.push_back(state);
        }
        EXPECT_EQ(states, StatesOf(log)) << piece;
        EXPECT_TRUE(reader.connected());
    }
}

TEST(DialLog, AStateIsReachedOnceHoweverOftenItIsLogged) {
    std::string log;
    for (int i = 0; i < 1000; i++) log += kWhole;
    EXPECT_EQ(StatesOf(log), StatesOf(kWhole));
    EXPECT_EQ(StatesOf("sent [PAP AuthReq id=0x1\nrcvd [CHAP Challenge id=0x2\n"), States{5});
}

TEST(DialLog, UnknownLinesAreSkipped) {
    std::string babble;
    for (int i = 0; i < 300000; i++) babble += static_cast<char>(i * 31 % 251);
    EXPECT_EQ(StatesOf(babble), States{});
    EXPECT_EQ(StatesOf(std::string(1000000, 'x') + "\nConnect: ppp0 <--> /dev/pts/1\n"), States{4});
    EXPECT_EQ(StatesOf(std::string("\0Connect: ", 10) + "\n\n\r\n"), States{});
    EXPECT_EQ(StatesOf("Remote message: Connect: you\n not Connect: \nlocal IP address\n"),
              States{});
    EXPECT_EQ(StatesOf("local  LL address fe80::1\n"), States{}) << "no session goes over it";
    EXPECT_EQ(StatesOf("Connect: ppp0 <--> /dev/ttyS0"), States{}) << "the line has no end yet";
}

TEST(DialLog, EveryAnswerOfTheModemHasItsError) {
    const std::pair<const char*, DWORD> rows[] = {{"Failed (BUSY)\n", 676},
                                                  {"Failed (NO ANSWER)\n", 678},
                                                  {"Failed (NO CARRIER)\n", 679},
                                                  {"Failed (NO DIALTONE)\n", 680},
                                                  {"Failed (NO DIAL TONE)\n", 680},
                                                  {"Failed (ERROR)\n", 651},
                                                  {"Failed\n", 651}};
    for (const auto& [line, error] : rows) {
        DialLog log;
        log.Take(line, strlen(line));
        EXPECT_EQ(log.ErrorOf(8), error) << line;
    }
}

TEST(DialLog, EveryExitCodeIsAnError) {
    const DialLog log;
    const std::pair<int, DWORD> rows[] = {
        {-1, 628}, {0, 628},  {1, 635},  {2, 625},  {3, 5},    {4, 608},  {5, 628},  {6, 633},
        {7, 618},  {8, 651},  {9, 651},  {10, 720}, {11, 691}, {12, 635}, {13, 635}, {14, 635},
        {15, 721}, {16, 629}, {17, 635}, {18, 651}, {19, 691}, {127, 635}};
    for (const auto& [code, error] : rows) EXPECT_EQ(log.ErrorOf(code), error) << code;
}

}  // namespace
