// SPDX-License-Identifier: MIT
// The send routine, the socket writer and the responses' escapes.
#include <gtest/gtest.h>

#include "protocol/telnet/telnet.h"
#include "session/session_ports.h"
#include "tests/telnet/outside.h"

namespace {

const BYTE* BytesOf(const std::string& text) { return reinterpret_cast<const BYTE*>(text.data()); }

void Send(const std::string& bytes, int escape) {
    SessionSend(BytesOf(bytes), static_cast<int>(bytes.size()), escape);
}

bool Write(const std::string& bytes) {
    return SocketSendAll(BytesOf(bytes), static_cast<int>(bytes.size()));
}

std::string Response(const std::string& text) {
    NewSession();
    SendResponse(text.c_str());
    return Sent();
}

std::string Escaped(const std::string& bytes) {
    std::string result;
    for (char c : bytes) result += c == '\xFF' ? std::string(2, c) : std::string(1, c);
    return result + "\xFF\xEF";
}

}  // namespace

TEST(SessionSend, NothingGoesOutWhileNotConnected) {
    NewSession();
    session.connected = 0;
    Send("abc", 0);
    Send("abc", 1);
    EXPECT_EQ(outside.sends, 0);
}

TEST(SessionSend, UnescapedBytesAreSentUnchanged) {
    NewSession();
    const std::string all("\0\xFF\xF0\r\n\x80", 6);
    Send(all, 0);
    EXPECT_EQ(Sent(), all);
}

TEST(SessionSend, EscapedBytesGoInPiecesOfTheStagingBuffer) {
    NewSession();
    Send(std::string(1021, 'a'), 1);
    EXPECT_EQ(outside.sends, 1);
    EXPECT_EQ(Sent(), Escaped(std::string(1021, 'a')));
    NewSession();
    Send(std::string(1022, 'a'), 1);
    EXPECT_EQ(outside.sends, 2);
    EXPECT_EQ(Sent(), Escaped(std::string(1022, 'a')));
}

TEST(SessionSend, BytesOfAnSshSessionGoToSshUnescaped) {
    NewSession();
    session.settings.ssh = 1;
    Send("a\xFF", 0);
    Send("b\xFF", 1);
    EXPECT_EQ(outside.ssh_data,
              "a\xFF"
              "b\xFF");
    session.connected = 0;
    Send("c", 0);
    EXPECT_EQ(outside.ssh_data,
              "a\xFF"
              "b\xFF");
    EXPECT_EQ(outside.sends, 0);
}

TEST(SessionSend, AnyValueOfSshButZeroIsAnSshSession) {
    for (const DWORD value : {1u, 2u, 3u, 0x100u, 0xFFFFFFFFu}) {
        NewSession();
        session.settings.ssh = value;
        Send("a\xFF", 0);
        Send("b", 1);
        EXPECT_EQ(outside.ssh_data,
                  "a\xFF"
                  "b")
            << value;
        EXPECT_EQ(outside.sends, 0) << value;
    }
}

TEST(SessionSend, EscapedIacIsDoubledAndEorFollows) {
    NewSession();
    Send("\xFF", 1);
    const BYTE expected[] = {255, 255, 255, 239};
    EXPECT_EQ(Sent(), std::string(reinterpret_cast<const char*>(expected), 4));
    Send("", 1);
    EXPECT_EQ(Sent(), "\xFF\xEF");
    Send(
        "a\xFF"
        "b",
        1);
    EXPECT_EQ(Sent(), Escaped("a\xFF"
                              "b"));
}

TEST(SessionSend, EscapedSendsOfEveryLengthAreWhole) {
    for (size_t length = 0; length < 2200; length++) {
        NewSession();
        const std::string iacs(length, '\xFF');
        Send(iacs, 1);
        ASSERT_EQ(Sent(), Escaped(iacs)) << length;
    }
    const std::string mixed = std::string(5000, 'x') + "\xFF" + std::string(5000, 'y');
    Send(mixed, 1);
    EXPECT_EQ(Sent(), Escaped(mixed));
}

// Around the size of the staging buffer, where an odd byte in front shifts the pairs.
TEST(SessionSend, EscapedSendsOfSomeBytesAndManyIacsAreWhole) {
    for (size_t plain = 0; plain < 5; plain++) {
        for (size_t iacs = 500; iacs < 1030; iacs++) {
            NewSession();
            const std::string bytes = std::string(plain, 'x') + std::string(iacs, '\xFF');
            Send(bytes, 1);
            ASSERT_EQ(Sent(), Escaped(bytes)) << plain << " bytes and " << iacs << " IACs";
        }
    }
}

TEST(SessionSend, EscapedSendEndsWithTheFirstFailure) {
    NewSession();
    outside.fail_from_send = 2;
    Send(std::string(9000, 'x'), 1);
    EXPECT_EQ(outside.sends, 2);
}

TEST(SocketSendAll, RepeatsUntilAllIsSent) {
    NewSession();
    outside.most_per_send = 7;
    const std::string text = "a text of some length, sent in pieces";
    EXPECT_TRUE(Write(text));
    EXPECT_EQ(Sent(), text);
    EXPECT_EQ(outside.sends, 6);
}

TEST(SocketSendAll, FailsAsSoonAsTheSocketRefuses) {
    for (int failure : {0, -1}) {
        NewSession();
        outside.most_per_send = 2;
        outside.fail_from_send = 3;
        outside.failure = failure;
        EXPECT_FALSE(Write("abcdefgh"));
        EXPECT_EQ(Sent(), "abcd");
        EXPECT_EQ(outside.sends, 3);
    }
}

TEST(SocketSendAll, NothingToSendOrNoSocketCountsAsSent) {
    NewSession();
    EXPECT_TRUE(Write(""));
    EXPECT_TRUE(SocketSendAll(BytesOf("x"), -1));
    session.socket = INVALID_SOCKET;
    EXPECT_TRUE(Write("abc"));
    EXPECT_EQ(outside.sends, 0);
}

TEST(TelnetSendCommand, SendsThreeBytesUnescaped) {
    NewSession();
    session.telnet.escape_iac = 1;
    TelnetSendCommand(251, 255);
    EXPECT_EQ(Sent(), "\xFF\xFB\xFF");
    EXPECT_EQ(Shown(), "");
}

TEST(SendResponse, OtherCharactersAreCopied) {
    EXPECT_EQ(Response("name \x80\xFE~/"), "name \x80\xFE~/");
    EXPECT_EQ(Response(""), "");
}

TEST(SendResponse, HasAtMost256Bytes) {
    for (const size_t size : {255u, 256u, 257u, 1000u})
        EXPECT_EQ(Response(std::string(size, 'x')), std::string(std::min<size_t>(size, 256), 'x'));
}

TEST(SendResponse, ThreeDigitsAreOneByte) {
    EXPECT_EQ(Response("\\012\\015"), "\n\r");
    EXPECT_EQ(Response("user\\015"), "user\r");
    EXPECT_EQ(Response("\\377"), "\xFF");
}

TEST(SendResponse, AFourthDigitStandsForItself) {
    EXPECT_EQ(Response("\\0101"),
              "\x08"
              "1");
    EXPECT_EQ(Response("\\1234567"), "S4567");
}

TEST(SendResponse, FewerDigitsEndAtTheNextCharacter) {
    EXPECT_EQ(Response("\\33x"), "\x1Bx");
    EXPECT_EQ(Response("\\18"),
              "\x01"
              "8");
    EXPECT_EQ(Response("\\7"), "\x07");
    EXPECT_EQ(Response("\\9"), std::string("\0"
                                           "9",
                                           2));
    EXPECT_EQ(Response("\\n"), std::string("\0n", 2));
}

TEST(SendResponse, BackslashInAnEscapeEndsItAndOpensAnother) {
    EXPECT_EQ(Response("\\1\\2"), "\x01\x02");
    EXPECT_EQ(Response("\\\\"), std::string(2, '\0'));
    EXPECT_EQ(Response("\\\\\\101"), std::string("\0\0A", 3));
}

TEST(SendResponse, LoneBackslashAtTheEndIsAZeroByte) {
    EXPECT_EQ(Response("\\"), std::string(1, '\0'));
    EXPECT_EQ(Response("ab\\"), std::string("ab\0", 3));
}

TEST(SendResponse, ValuesAbove255KeepTheirLowBits) {
    EXPECT_EQ(Response("\\777"), "\xFF");
    EXPECT_EQ(Response("\\501"), "A");
}

TEST(SendResponse, EscapesIacAsTypedDataIfTheSessionDoes) {
    NewSession();
    session.telnet.escape_iac = 1;
    SendResponse("a\\377");
    EXPECT_EQ(Sent(), "a\xFF\xFF\xFF\xEF");
}

TEST(SendResponse, IsOneSend) {
    NewSession();
    SendResponse("name\\012\\015");
    EXPECT_EQ(outside.sends, 1);
}
