// SPDX-License-Identifier: MIT
// Automatic login.
#include <gtest/gtest.h>

#include "protocol/telnet/telnet.h"
#include "tests/telnet/outside.h"

namespace {

void NewLogin(const char* search1, const char* response1, const char* search2 = "",
              const char* response2 = "") {
    NewSession();
    SetText(session.settings.sear1, search1);
    SetText(session.settings.resp1, response1);
    SetText(session.settings.sear2, search2);
    SetText(session.settings.resp2, response2);
    ArmAutoLogin();
}

}  // namespace

TEST(AutoLogin, DefaultSearchSendsTheNameOnceInTheSession) {
    NewLogin("ogin", "user\\015");
    Receive("Welcome\r\n");
    EXPECT_EQ(Sent(), "");
    Receive("host Login: ");
    EXPECT_EQ(Sent(), "user\r");
    Receive("Last login: today");
    EXPECT_EQ(Sent(), "");
}

TEST(AutoLogin, NewConnectArmsAgain) {
    NewLogin("ogin", "user");
    Receive("login:");
    Sent();
    TelnetReset();
    ArmAutoLogin();
    Receive("login:");
    EXPECT_EQ(Sent(), "user");
}

TEST(AutoLogin, ArmingNeedsBothTexts) {
    NewLogin("", "response", "search", "");
    EXPECT_EQ(session.login.login_armed1, 0u);
    EXPECT_EQ(session.login.login_armed2, 0u);
    Receive("search response");
    EXPECT_EQ(Sent(), "");
    NewLogin("a", "b", "c", "d");
    EXPECT_EQ(session.login.login_armed1, 1u);
    EXPECT_EQ(session.login.login_armed2, 1u);
}

TEST(AutoLogin, ArmingDisarmsAPairThatWasEmptied) {
    NewLogin("a", "b", "c", "d");
    SetText(session.settings.resp1, "");
    SetText(session.settings.sear2, "");
    ArmAutoLogin();
    Receive("abcd");
    EXPECT_EQ(Sent(), "");
}

TEST(AutoLogin, ArmingDisarmsAPairWhoseEitherTextWasEmptied) {
    WCHAR* const texts[] = {session.settings.sear1, session.settings.resp1, session.settings.sear2,
                            session.settings.resp2};
    for (WCHAR* text : texts) {
        NewLogin("one", "first", "two", "second");
        SetText(text, "");
        ArmAutoLogin();
        const bool second = text == session.settings.sear2 || text == session.settings.resp2;
        EXPECT_EQ(session.login.login_armed1, second ? 1u : 0u);
        EXPECT_EQ(session.login.login_armed2, second ? 0u : 1u);
        Receive("one two");
        EXPECT_EQ(Sent(), second ? "first" : "second");
    }
}

TEST(AutoLogin, ArmingLeavesNothingOfALongerTextBefore) {
    NewLogin("search", "a long secret");
    SetText(session.settings.resp1, "x");
    ArmAutoLogin();
    const char* response = session.login.response1;
    EXPECT_EQ(std::string(response, kLoginTextSize), "x" + std::string(kLoginTextSize - 1, '\0'));
}

TEST(AutoLogin, BothPairsOnOneChunkInTheirOrder) {
    NewLogin("ogin", "name\\015", "assword", "secret\\015");
    Receive("password after login");
    EXPECT_EQ(Sent(), "name\rsecret\r");
}

TEST(AutoLogin, SecondPairMayComeFirst) {
    NewLogin("ogin", "name", "assword", "secret");
    Receive("Password:");
    EXPECT_EQ(Sent(), "secret");
    Receive("login:");
    EXPECT_EQ(Sent(), "name");
    Receive("login: Password:");
    EXPECT_EQ(Sent(), "");
}

TEST(AutoLogin, SearchIsCaseSensitive) {
    NewLogin("ogin", "name");
    Receive("LOGIN: oGin");
    EXPECT_EQ(Sent(), "");
}

TEST(AutoLogin, TextSplitAcrossChunksIsNotFound) {
    NewLogin("ogin", "name");
    Receive("lo");
    Receive("gin:");
    EXPECT_EQ(Sent(), "");
    EXPECT_EQ(session.login.login_armed1, 1u);
}

TEST(AutoLogin, TextInTheRestOfAnEarlierChunkIsNotFound) {
    NewLogin("ogin", "name");
    std::memcpy(session.telnet.display_buffer, "xxlogin", 7);
    Receive("ab");
    EXPECT_EQ(Sent(), "");
}

TEST(AutoLogin, TextThatContinuesInTheRestOfAnEarlierChunkIsNotFound) {
    NewLogin("ogin", "name");
    std::memcpy(session.telnet.display_buffer, "xxgin: ", 7);
    Receive("lo");
    EXPECT_EQ(Sent(), "");
    Receive("login: ");
    EXPECT_EQ(Sent(), "name");
}

TEST(AutoLogin, CommandsInTheMiddleOfTheTextDoNotHideIt) {
    NewLogin("ogin", "name");
    Receive("lo" + Iac(252, 5) + "gin:");
    EXPECT_EQ(Sent(), "name");
}

TEST(AutoLogin, FoundAtTheEndsOfTheChunkAndAfterAZeroByte) {
    for (const char* text : {"ogin", "ogin:", "login"}) {
        NewLogin("ogin", "name");
        Receive(std::string("\0", 1) + text);
        EXPECT_EQ(Sent(), "name") << text;
    }
}

TEST(AutoLogin, FoundAtEveryPlaceOfAFullChunk) {
    for (size_t place = 0; place <= kReceiveSize - 4; place++) {
        NewLogin("ogin", "name");
        std::string chunk(kReceiveSize, '.');
        chunk.replace(place, 4, "ogin");
        Receive(chunk);
        ASSERT_EQ(Sent(), "name") << place;
    }
}

TEST(AutoLogin, CutAnywhereBetweenFullChunksIsNotFound) {
    for (size_t before = 1; before < 4; before++) {
        NewLogin("ogin", "name");
        const std::string search = "ogin";
        Receive(std::string(kReceiveSize - before, '.') + search.substr(0, before));
        Receive(search.substr(before) + std::string(kReceiveSize - 4 + before, '.'));
        EXPECT_EQ(Sent(), "") << before;
    }
}

TEST(AutoLogin, TextLongerThanTheChunkIsNotFound) {
    NewLogin("a longer text than the chunk", "name");
    Receive("a longer text than the chun");
    EXPECT_EQ(Sent(), "");
}

TEST(AutoLogin, ZerosInTheChunkHideNothingAndMatchNothing) {
    NewLogin("ogin", "name");
    Receive(std::string(kReceiveSize, '\0'));
    Receive(std::string("og\0in", 5));
    EXPECT_EQ(Sent(), "");
    Receive(std::string(kReceiveSize - 4, '\0') + "ogin");
    EXPECT_EQ(Sent(), "name");
}

TEST(AutoLogin, EscapesInTheSearchTextAreNotExpanded) {
    NewLogin("\\007", "name");
    Receive("\a");
    EXPECT_EQ(Sent(), "");
    Receive("\\007");
    EXPECT_EQ(Sent(), "name");
}

TEST(AutoLogin, ResponseOfOnlyEscapesFillsTheWholeSetting) {
    NewLogin("ogin", "\\377\\377\\377\\377\\377\\377\\377\\377\\377\\01");
    Receive("login");
    EXPECT_EQ(Sent(), std::string(9, '\xFF') + "\x01");
    NewLogin("ogin", std::string(kSettingUnits - 1, '\\').c_str());
    Receive("login");
    EXPECT_EQ(Sent(), std::string(kSettingUnits - 1, '\0'));
}

TEST(AutoLogin, ChunkOfOnlyCommandsIsNotSearched) {
    NewLogin("\xFF", "name");
    Receive(Iac(252, 5));
    EXPECT_EQ(outside.sends, 0);
    EXPECT_EQ(outside.terminal_writes, 0);
}

TEST(AutoLogin, ComesAfterTheTerminal) {
    NewLogin("ogin", "name");
    Receive("login:");
    EXPECT_EQ(outside.order, "WS");
}

TEST(AutoLogin, SshSessionsSendNothing) {
    NewLogin("ogin", "name");
    session.settings.ssh = 1;
    session.banner_sent = 1;
    Receive("login:");
    EXPECT_EQ(outside.sends, 0);
    EXPECT_EQ(session.login.login_armed1, 1u);
}

TEST(AutoLogin, TextsOfFullLengthAreWhole) {
    const std::string search(kSettingUnits - 1, 's'), response(kSettingUnits - 1, 'r');
    NewLogin(search.c_str(), response.c_str());
    Receive(search.substr(1));
    EXPECT_EQ(Sent(), "");
    Receive(search);
    EXPECT_EQ(Sent(), response);
}

TEST(AutoLogin, TextsGoThroughTheAnsiCodePage) {
    NewLogin("x", "y", "z", "w");
    session.settings.sear1[0] = session.settings.resp2[0] = u'\u20AC';
    session.settings.resp1[0] = session.settings.sear2[0] = u'\u0161';
    ArmAutoLogin();
    Receive("\xAC");
    Receive("a");
    EXPECT_EQ(Sent(), "");
    Receive("10 \x80");
    EXPECT_EQ(Sent(), "\x9A");
    Receive("\x9A");
    EXPECT_EQ(Sent(), "\x80");
}
