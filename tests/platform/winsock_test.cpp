// SPDX-License-Identifier: MIT
// Sockets with the behaviour of WinSock 1.1.
#include <gtest/gtest.h>

#include <string>

#include "tests/platform/known_gap.h"
#include "tests/platform/loopback_peer.h"
#include "windows_ce.h"

namespace {

class Winsock : public testing::Test {
  protected:
    void SetUp() override {
        WSADATA data;
        ASSERT_EQ(0, WSAStartup(MAKEWORD(1, 1), &data));
        number = socket(AF_INET, SOCK_STREAM, 0);
        ASSERT_NE(INVALID_SOCKET, number);
    }
    void TearDown() override { WSACleanup(); }

    void DoNotBlock() {
        u_long on = 1;
        ASSERT_EQ(0, ioctlsocket(number, FIONBIO, &on));
    }
    int Connect(uint16_t port) {
        SOCKADDR_IN address = {};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = inet_addr("127.0.0.1");
        return connect(number, reinterpret_cast<SOCKADDR*>(&address), sizeof(address));
    }
    // Connects as the program does, without blocking; then the peer accepts.
    void ConnectTo(LoopbackPeer* peer) {
        DoNotBlock();
        const int result = Connect(peer->port());
        ASSERT_TRUE(result == 0 || WSAGetLastError() == WSAEWOULDBLOCK) << WSAGetLastError();
        ASSERT_TRUE(peer->Accept());
    }
    // Calls select with the socket in the named sets ("rwx"); returns the sets that keep it.
    std::string Select(const std::string& wanted, LONG milliseconds) {
        fd_set sets[3];
        for (size_t i = 0; i < 3; i++) {
            FD_ZERO(&sets[i]);
            if (wanted.find("rwx"[i]) != std::string::npos) FD_SET(number, &sets[i]);
        }
        TIMEVAL timeout = {milliseconds / 1000, milliseconds % 1000 * 1000};
        const int count = select(0, &sets[0], &sets[1], &sets[2], &timeout);
        if (count < 0) return "error " + std::to_string(WSAGetLastError());
        std::string left;
        for (size_t i = 0; i < 3; i++)
            if (FD_ISSET(number, &sets[i])) left += "rwx"[i];
        EXPECT_EQ(static_cast<size_t>(count), left.size());
        return left;
    }
    std::string Receive(int size) {
        std::string bytes(static_cast<size_t>(size), '\0');
        const int count = recv(number, bytes.data(), size, 0);
        if (count < 0) return "error " + std::to_string(WSAGetLastError());
        bytes.resize(static_cast<size_t>(count));
        return bytes;
    }

    SOCKET number = INVALID_SOCKET;
};

DWORD WINAPI CloseSoon(LPVOID socket_number) {
    Sleep(50);
    closesocket(*static_cast<SOCKET*>(socket_number));
    return 0;
}

uint32_t Dotted(int a, int b, int c, int d) {
    const BYTE bytes[4] = {static_cast<BYTE>(a), static_cast<BYTE>(b), static_cast<BYTE>(c),
                           static_cast<BYTE>(d)};
    uint32_t address;
    memcpy(&address, bytes, sizeof(address));
    return address;
}

constexpr DWORD kRefusal = 30;  // ms; a refusal on loopback has arrived by then
constexpr LONG kLong = 600000;  // ms; longer than a test may take

}  // namespace

TEST_F(Winsock, VersionOneOneIsAnswered) {
    WSADATA data = {};
    ASSERT_EQ(0, WSAStartup(MAKEWORD(1, 1), &data));
    EXPECT_EQ(MAKEWORD(1, 1), data.wVersion);
    WSACleanup();
}

TEST_F(Winsock, BytesGoBothWays) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    peer.Send("login: ");
    EXPECT_EQ("r", Select("rx", kLong));
    EXPECT_EQ("login: ", Receive(100));
    EXPECT_EQ(5, send(number, "guest", 5, 0));
    EXPECT_EQ("guest", peer.Receive(5));
}

TEST_F(Winsock, SilentHostIsNotReadable) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    EXPECT_EQ("", Select("rx", 30));
    EXPECT_EQ("w", Select("rwx", kLong));
}

TEST_F(Winsock, ReceivingNothingWouldBlock) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    EXPECT_EQ("w", Select("w", kLong));
    EXPECT_EQ("error 10035", Receive(10));
}

TEST_F(Winsock, RefusedRequestShowsInTheExceptionSetOnly) {
    DoNotBlock();
    ASSERT_EQ(SOCKET_ERROR, Connect(UnusedPort()));
    EXPECT_EQ(WSAEWOULDBLOCK, WSAGetLastError());
    Sleep(kRefusal);
    EXPECT_EQ("x", Select("rx", kLong));
    EXPECT_EQ("x", Select("rwx", kLong));
}

TEST_F(Winsock, RefusedRequestIsNeverReadable) {
    DoNotBlock();
    ASSERT_EQ(SOCKET_ERROR, Connect(UnusedPort()));
    Sleep(kRefusal);
    EXPECT_EQ("", Select("r", 50));
    EXPECT_EQ("", Select("rw", 50));
}

TEST_F(Winsock, RefusedBlockingRequestIsRefusedAtOnce) {
    ASSERT_EQ(SOCKET_ERROR, Connect(UnusedPort()));
    EXPECT_EQ(10061, WSAGetLastError());
}

TEST_F(Winsock, HostThatClosesIsReadableAndGivesNothing) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    peer.Send("bye");
    peer.CloseConnection();
    EXPECT_EQ("r", Select("rx", kLong));
    EXPECT_EQ("bye", Receive(100));
    EXPECT_EQ("r", Select("rx", kLong));
    EXPECT_EQ("", Receive(100));
}

TEST_F(Winsock, HostThatResetsIsReadableAndGives10054) {
    KNOWN_GAP_ON_WINE("a reset shows as an orderly end");
    LoopbackPeer peer;
    ConnectTo(&peer);
    ASSERT_EQ("w", Select("w", kLong));
    peer.ResetConnection();
    EXPECT_EQ("r", Select("rx", kLong));
    EXPECT_EQ("error 10054", Receive(100));
}

TEST_F(Winsock, HostThatResetsBeforeAnyoneLooksIsReadableAndGives10054) {
    KNOWN_GAP_ON_WINE("a reset shows as an orderly end");
    LoopbackPeer peer;
    ConnectTo(&peer);
    peer.ResetConnection();
    EXPECT_EQ("r", Select("rx", kLong));
    EXPECT_EQ("error 10054", Receive(100));
}

TEST_F(Winsock, EndOfAConnectionIsNoException) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    ASSERT_EQ("w", Select("w", kLong));
    peer.ResetConnection();
    ASSERT_EQ("r", Select("r", kLong));
    EXPECT_EQ("", Select("x", 50));
}

TEST_F(Winsock, UrgentDataShowsInTheExceptionSet) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    ASSERT_EQ("w", Select("w", kLong));
    peer.SendUrgent('!');
    EXPECT_EQ("x", Select("x", kLong));
}

TEST_F(Winsock, FreshSocketIsNeverReady) { EXPECT_EQ("", Select("rwx", 50)); }

TEST_F(Winsock, CloseByAnotherThreadWakesSelect) {
    KNOWN_GAP_ON_WINE("the socket shows as readable");
    LoopbackPeer peer;
    ConnectTo(&peer);
    HANDLE thread = CreateThread(nullptr, 0, CloseSoon, &number, 0, nullptr);
    EXPECT_EQ("error 10038", Select("rx", kLong));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread, INFINITE));
    CloseHandle(thread);
}

TEST_F(Winsock, CloseByAnotherThreadWakesAWaitForTheRequest) {
    KNOWN_GAP_ON_WINE("the socket shows as readable");
    HANDLE thread = CreateThread(nullptr, 0, CloseSoon, &number, 0, nullptr);
    EXPECT_EQ("error 10038", Select("rx", kLong));
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

TEST_F(Winsock, CloseByAnotherThreadWakesAWaitAfterARefusal) {
    KNOWN_GAP_ON_WINE("the socket shows as readable");
    DoNotBlock();
    ASSERT_EQ(SOCKET_ERROR, Connect(UnusedPort()));
    ASSERT_EQ("x", Select("x", kLong));
    HANDLE thread = CreateThread(nullptr, 0, CloseSoon, &number, 0, nullptr);
    EXPECT_EQ("error 10038", Select("rw", kLong));
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

TEST_F(Winsock, ClosedSocketIsNoSocket) {
    char byte = 0;
    u_long on = 1;
    EXPECT_EQ(0, closesocket(number));
    EXPECT_EQ(SOCKET_ERROR, closesocket(number));
    EXPECT_EQ(WSAENOTSOCK, WSAGetLastError());
    EXPECT_EQ("error 10038", Select("rx", 0));
    EXPECT_EQ("error 10038", Receive(1));
    EXPECT_EQ(SOCKET_ERROR, send(number, &byte, 1, 0));
    EXPECT_EQ(WSAENOTSOCK, WSAGetLastError());
    EXPECT_EQ(SOCKET_ERROR, ioctlsocket(number, FIONBIO, &on));
    EXPECT_EQ(WSAENOTSOCK, WSAGetLastError());
    EXPECT_EQ(SOCKET_ERROR, shutdown(number, SD_BOTH));
    EXPECT_EQ(WSAENOTSOCK, WSAGetLastError());
    EXPECT_EQ(SOCKET_ERROR, Connect(1));
    EXPECT_EQ(WSAENOTSOCK, WSAGetLastError());
}

TEST_F(Winsock, InvalidSocketIsNoSocket) {
    closesocket(number);
    for (SOCKET bad : {INVALID_SOCKET, SOCKET{0}, SOCKET{3}}) {
        number = bad;
        EXPECT_EQ("error 10038", Select("r", 0));
        EXPECT_EQ("error 10038", Receive(1));
    }
}

TEST_F(Winsock, SelectWithoutASocketIsRefused) { EXPECT_EQ("error 10022", Select("", 0)); }

TEST_F(Winsock, SendingBeforeAConnectionIsRefused) {
    KNOWN_GAP_ON_WINE("sending gives 10054");
    EXPECT_EQ(SOCKET_ERROR, send(number, "x", 1, 0));
    EXPECT_EQ(10057, WSAGetLastError());
    EXPECT_EQ("error 10057", Receive(1));
}

TEST_F(Winsock, SendingAfterTheHostHasClosedIsAnError) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    ASSERT_EQ("w", Select("w", kLong));
    peer.ResetConnection();
    ASSERT_EQ("r", Select("r", kLong));
    int result = 0;
    for (int i = 0; i < 3 && result >= 0; i++) result = send(number, "x", 1, 0);
    EXPECT_EQ(SOCKET_ERROR, result);
}

TEST_F(Winsock, LargeSendIsTakenWhole) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    ASSERT_EQ("w", Select("w", kLong));
    const std::string text(100000, 'q');
    EXPECT_EQ(100000, send(number, text.data(), 100000, 0));
    EXPECT_EQ(text, peer.Receive(text.size()));
}

TEST_F(Winsock, FullBufferWouldBlock) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    ASSERT_EQ("w", Select("w", kLong));
    const std::string text(100000, 'q');
    int result = 0;
    for (int i = 0; i < 2000 && result >= 0; i++) result = send(number, text.data(), 100000, 0);
    EXPECT_EQ(SOCKET_ERROR, result);
    EXPECT_EQ(WSAEWOULDBLOCK, WSAGetLastError());
    EXPECT_EQ("", Select("rwx", 20));
}

TEST_F(Winsock, ShutdownThenCloseEndsThePeer) {
    LoopbackPeer peer;
    ConnectTo(&peer);
    ASSERT_EQ("w", Select("w", kLong));
    EXPECT_EQ(3, send(number, "end", 3, 0));
    EXPECT_EQ(0, shutdown(number, SD_BOTH));
    EXPECT_EQ(0, closesocket(number));
    EXPECT_EQ("end", peer.Receive(10));
}

TEST_F(Winsock, NameResolves) {
    const HOSTENT* host = gethostbyname("localhost");
    ASSERT_NE(nullptr, host);
    EXPECT_EQ(AF_INET, host->h_addrtype);
    EXPECT_EQ(4, host->h_length);
    ASSERT_NE(nullptr, host->h_addr_list[0]);
    uint32_t address;
    memcpy(&address, host->h_addr_list[0], 4);
    EXPECT_EQ(Dotted(127, 0, 0, 1), address);
}

TEST_F(Winsock, UnknownNameDoesNotResolve) {
    EXPECT_EQ(nullptr, gethostbyname("no such name.invalid"));
    EXPECT_EQ(nullptr, gethostbyname(std::string(5000, 'a').c_str()));
}

TEST(DottedAddress, HasItsFourPartsAsBytes) {
    EXPECT_EQ(Dotted(192, 168, 0, 1), inet_addr("192.168.0.1"));
    EXPECT_EQ(0u, inet_addr("0.0.0.0"));
    EXPECT_EQ(Dotted(255, 255, 255, 254), inet_addr("255.255.255.254"));
}

TEST(DottedAddress, FewerPartsFillTheRest) {
    EXPECT_EQ(Dotted(10, 0, 0, 7), inet_addr("10.7"));
    EXPECT_EQ(Dotted(10, 1, 1, 0), inet_addr("10.1.256"));
    EXPECT_EQ(Dotted(127, 0, 0, 1), inet_addr("2130706433"));
}

TEST(DottedAddress, PartsMayBeHexadecimalOrOctal) {
    EXPECT_EQ(Dotted(127, 0, 0, 1), inet_addr("0x7f.0.0.01"));
    EXPECT_EQ(Dotted(8, 255, 0, 9), inet_addr("010.0xFF.0x0.9"));
}

TEST(DottedAddress, OtherTextsAreRefused) {
    for (const char* text :
         {"", "host", "1.2.3.4.5", "256.1.1.1", "1.2.3.256", "1.2.3.", ".1.2.3", "1..2.3", "08",
          "4294967296", "99999999999999999999", "1.2.3.4x", "-1.2.3.4", "1.2.65536", "1.16777216"})
        EXPECT_EQ(INADDR_NONE, inet_addr(text)) << text;
}

TEST(NetworkOrder, HighByteGoesFirst) {
    const uint16_t port = htons(0x1234);
    BYTE bytes[2];
    memcpy(bytes, &port, 2);
    EXPECT_EQ(0x12, bytes[0]);
    EXPECT_EQ(0x34, bytes[1]);
}

TEST(WinsockStart, CallsBeforeItFail) {
    EXPECT_EQ(INVALID_SOCKET, socket(AF_INET, SOCK_STREAM, 0));
    EXPECT_EQ(10093, WSAGetLastError());
    EXPECT_EQ(nullptr, gethostbyname("localhost"));
    EXPECT_EQ(10093, WSAGetLastError());
    EXPECT_EQ(SOCKET_ERROR, closesocket(4));
    EXPECT_EQ(10093, WSAGetLastError());
    EXPECT_EQ(SOCKET_ERROR, WSACleanup());
}
