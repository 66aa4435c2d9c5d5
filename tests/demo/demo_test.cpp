// SPDX-License-Identifier: MIT
// The demo host as clients see it: start and end, login, every page, invalid bytes, slow readers.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <csignal>
#include <random>
#include "tests/demo/demo_client.h"

namespace {

constexpr size_t kNowhere = std::string::npos;

class DemoHost : public testing::Test {
  protected:
    void SetUp() override {
        host = StartHost();
        ASSERT_NE(host.port, 0) << host.first_line;
    }
    void TearDown() override { StopHost(host); }

    Host host;
};

size_t Count(const std::string& text, const std::string& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != kNowhere; at = text.find(part, at + 1)) ++count;
    return count;
}

// Logs in, chooses a menu entry and waits for `text` of its page.
size_t OpenPage(Client& client, const std::string& choice, const std::string& text) {
    const size_t menu = LogIn(client);
    if (menu == kNowhere || !Send(client, choice + "\r")) return kNowhere;
    return Expect(client, text, menu);
}

bool CanConnect(const char* ip, int port) {
    const int probe = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    inet_pton(AF_INET, ip, &address.sin_addr);
    const bool open = connect(probe, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    close(probe);
    return open;
}

void ExpectServes(const Host& host) {
    Client client = Connect(host);
    EXPECT_NE(LogIn(client), kNowhere);
    Disconnect(client);
}

}  // namespace

TEST_F(DemoHost, FirstLineSaysWhereItListens) {
    EXPECT_EQ(host.first_line, "listening on 127.0.0.1:" + std::to_string(host.port));
    EXPECT_TRUE(CanConnect("127.0.0.1", host.port));
}

TEST_F(DemoHost, ListensOnNoOtherAddress) { EXPECT_FALSE(CanConnect("127.0.0.2", host.port)); }

TEST_F(DemoHost, TakesTheGivenPortAndSaysSoWhenItIsTaken) {
    Host second = StartHost({"--port", std::to_string(host.port)});
    EXPECT_EQ(second.first_line, "");
    EXPECT_EQ(WEXITSTATUS(WaitForEnd(second)), 1);
}

TEST(DemoHostOptions, BadOptionsEndWithUsage) {
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--port"}, {"--port", "70000"}, {"--port", "x"}, {"--what"}}) {
        Host host = StartHost(options);
        EXPECT_EQ(host.first_line, "");
        EXPECT_EQ(WEXITSTATUS(WaitForEnd(host)), 2) << options[0];
    }
}

TEST_F(DemoHost, OffersEchoAndSuppressGoAheadAndAsksForTheTerminalType) {
    Client client = Connect(host);
    EXPECT_NE(Expect(client, "login: "), kNowhere);
    EXPECT_EQ(client.received.substr(0, 9), "\xff\xfb\x01\xff\xfb\x03\xff\xfd\x18");
    Send(client, "\xff\xfb\x18");
    EXPECT_NE(Expect(client, "\xff\xfa\x18\x01\xff\xf0"), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, RefusesOtherOptions) {
    Client client = Connect(host);
    Send(client, "\xff\xfb\x1f");
    EXPECT_NE(Expect(client, "\xff\xfe\x1f"), kNowhere);
    Send(client, std::string("\xff\xfd\x00", 3));
    EXPECT_NE(Expect(client, std::string("\xff\xfc\x00", 3)), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, EchoesTheNameButNotThePassword) {
    Client client = Connect(host);
    ASSERT_NE(LogIn(client), kNowhere);
    EXPECT_NE(client.received.find("ada"), kNowhere);
    EXPECT_EQ(client.received.find("secret"), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, BackspaceTakesBackACharacterOfTheName) {
    Client client = Connect(host);
    Send(client, "\xff\xfd\x01");
    Expect(client, "login: ");
    Send(client, "bob\x08\x7f\x1b[Aye\r");
    EXPECT_NE(Expect(client, "Password: "), kNowhere);
    Send(client, "\r");
    EXPECT_NE(Expect(client, "Good day, bye."), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, MenuNamesTheTerminalType) {
    Client client = Connect(host);
    ASSERT_NE(LogIn(client), kNowhere);
    EXPECT_NE(client.received.find("Terminal: vt220"), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, MenuNumbersFollowABlankAndPrecedeAFullStop) {
    Client client = Connect(host);
    ASSERT_NE(LogIn(client), kNowhere);
    for (int number = 0; number <= 12; ++number) {
        EXPECT_NE(
            client.received.find(std::string(" ").append(std::to_string(number)).append(". ")),
            kNowhere)
            << number;
    }
    EXPECT_NE(client.received.find(" 1. Line drawing"), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, UnknownChoiceIsReportedAndAskedAgain) {
    Client client = Connect(host);
    const size_t said = OpenPage(client, "99", "There is no such choice.");
    ASSERT_NE(said, kNowhere);
    EXPECT_NE(Expect(client, "Choice: ", said), kNowhere);
    Disconnect(client);
}

struct PageCase {
    const char* choice;
    const char* shows;  // text at the end of the complete page
    const char* leave;  // the keys that return to the menu
};

class DemoPages : public testing::TestWithParam<PageCase> {};

TEST_P(DemoPages, ShowsItselfAndReturnsToTheMenu) {
    Host host = StartHost();
    Client client = Connect(host);
    const size_t shown = OpenPage(client, GetParam().choice, GetParam().shows);
    ASSERT_NE(shown, kNowhere);
    Send(client, GetParam().leave);
    const size_t menu = Expect(client, "Good day, ada.", shown);
    ASSERT_NE(menu, kNowhere);
    EXPECT_NE(Expect(client, "Choice: ", menu), kNowhere);
    Disconnect(client);
    StopHost(host);
}

// clang-format off
const PageCase kPages[] = {
    {"1",  "Press any key", "\r"},
    {"2",  "Press any key", " "},
    {"3",  "Press any key", "\x1b[A"},
    {"4",  "\x1bM",         "x"},
    {"5",  "lorry 114",     "\r"},
    {"6",  "Press any key", "\r"},
    {"7",  "(ends here)",   "\r"},
    {"8",  "Press any key", "\r"},
    {"9",  "Delivery note", "\x1b"},
    {"10", "Choice: ",      "\r"},
    {"11", "Press any key", "\r"},
    {"12", "Enter twice: ", "\r\r"},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Each, DemoPages, testing::ValuesIn(kPages),
                         [](const auto& row) { return "Choice" + std::string(row.param.choice); });

TEST_F(DemoHost, LineDrawingShowsEveryGlyph) {
    Client client = Connect(host);
    const size_t menu = LogIn(client);
    Send(client, "1\r");
    ASSERT_NE(Expect(client, "Press any key", menu), kNowhere);
    for (char glyph = 0x5F; glyph <= 0x7E; ++glyph) {
        EXPECT_NE(client.received.find("\x1b(0" + std::string(3, glyph), menu), kNowhere) << glyph;
    }
    Disconnect(client);
}

TEST_F(DemoHost, DoubleSizePageUsesEveryLineSize) {
    Client client = Connect(host);
    const size_t menu = LogIn(client);
    Send(client, "2\r");
    ASSERT_NE(Expect(client, "Press any key", menu), kNowhere);
    for (const char* size : {"\x1b#3", "\x1b#4", "\x1b#5", "\x1b#6"}) {
        EXPECT_NE(client.received.find(size, menu), kNowhere) << size + 1;
    }
    Disconnect(client);
}

TEST_F(DemoHost, CharactersPageLeavesOutControlsAnd255) {
    Client client = Connect(host);
    const size_t menu = LogIn(client);
    Send(client, "8\r");
    ASSERT_NE(Expect(client, "Press any key", menu), kNowhere);
    const std::string page = client.received.substr(menu);
    for (const char* never : {"\x84", "\x8D", "\x8F", "\x90", "\x9B", "\xff"}) {
        EXPECT_EQ(page.find(never), kNowhere) << static_cast<int>(never[0]);
    }
    EXPECT_NE(page.find("\xE9"), kNowhere);
    EXPECT_NE(page.find("\xFE"), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, FastStreamSendsEveryLineInOrder) {
    Client client = Connect(host);
    const size_t menu = LogIn(client);
    Send(client, "6\r");
    ASSERT_NE(Expect(client, "5,000 lines sent.", menu), kNowhere);
    size_t at = menu;
    for (int line = 1; line <= 5000; ++line) {
        char number[40];
        snprintf(number, sizeof number, "%05d  HS-%04d", line, 1000 + line);
        at = client.received.find(number, at);
        ASSERT_NE(at, kNowhere) << line;
    }
    EXPECT_EQ(Count(client.received.substr(menu), " in stock "), 5000U);
    Disconnect(client);
}

TEST_F(DemoHost, AKeyStopsTheFastStream) {
    Client client = Connect(host, 4096);
    const size_t first = OpenPage(client, "6", "00001  HS-1001");
    ASSERT_NE(first, kNowhere);
    Send(client, "x");
    EXPECT_NE(Expect(client, "Good day, ada.", first), kNowhere);
    EXPECT_EQ(client.received.find("lines sent."), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, SlowReaderDelaysNoOtherSessionAndLosesNothing) {
    Client slow = Connect(host, 4096);
    ASSERT_NE(LogIn(slow), kNowhere);
    Send(slow, "6\r");
    for (int i = 0; i < 5; ++i) ExpectServes(host);
    EXPECT_NE(Expect(slow, "05000  HS-6000"), kNowhere);
    EXPECT_EQ(Count(slow.received, " in stock "), 5000U);
    Disconnect(slow);
}

TEST_F(DemoHost, ReportsPageShowsWhatTheTerminalAnswered) {
    Client client = Connect(host);
    const size_t asked = OpenPage(client, "11", "\x1b[c");
    ASSERT_NE(asked, kNowhere);
    Send(client, "\x1b[?62;1;6c");
    const size_t shown = Expect(client, "ESC [?62;1;6c", asked);
    ASSERT_NE(shown, kNowhere);
    const size_t status = Expect(client, "\x1b[5n", shown);
    ASSERT_NE(status, kNowhere);
    EXPECT_NE(client.received.find("no answer", shown), kNowhere);
    Send(client,
         "\x9b"
         "0n");
    EXPECT_NE(Expect(client, "CSI 0n", status), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, KeysPageShowsTheBytesOfEachKey) {
    Client client = Connect(host);
    const size_t page = OpenPage(client, "12", "Enter twice: ");
    ASSERT_NE(page, kNowhere);
    Send(client, "\x1bOP");
    EXPECT_NE(Expect(client, "1B 4F 50 ", page), kNowhere);
    // IAC EOR, with which Quill ends its key strings, is not data.
    Send(client, "\x7f\xff\xef");
    const size_t rubout = Expect(client, "7F ", page);
    ASSERT_NE(rubout, kNowhere);
    Send(client, "\xff\xff");
    EXPECT_NE(Expect(client, "FF ", rubout), kNowhere);
    EXPECT_EQ(client.received.find("EF ", rubout), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, FormTakesFieldsAndRequiresANumber) {
    Client client = Connect(host);
    size_t at = OpenPage(client, "9", "Delivery note");
    ASSERT_NE(at, kNowhere);
    Send(client, "Tern\rtar\tmany\rF\rnone\r");
    at = Expect(client, "Quantity must be a whole number.", at);
    ASSERT_NE(at, kNowhere);
    Send(client, "40\rF\rnone\r");
    EXPECT_NE(Expect(client, "Noted: 40 x tar", at), kNowhere);
    EXPECT_NE(Expect(client, "from Tern to bay F.", at), kNowhere);
    Send(client, "\r");
    EXPECT_NE(Expect(client, "Good day, ada.", at), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, ShipListShowsAShipAndReportsAnUnknownOne) {
    Client client = Connect(host);
    size_t at = OpenPage(client, "10", "Choice: ");
    ASSERT_NE(at, kNowhere);
    EXPECT_NE(client.received.find(" 16. "), kNowhere);
    EXPECT_NE(client.received.find(" 17: "), kNowhere);
    Send(client, "12\r");
    at = Expect(client, "Heron lies at berth", at);
    ASSERT_NE(at, kNowhere);
    Send(client, "99999999999999999999\r");
    EXPECT_NE(Expect(client, "There is no such ship.", at), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, LogOutClosesTheSession) {
    Client client = Connect(host);
    EXPECT_NE(OpenPage(client, "0", "Thank you for calling, ada."), kNowhere);
    EXPECT_TRUE(ExpectClose(client));
    Disconnect(client);
    ExpectServes(host);
}

TEST_F(DemoHost, RandomBytesDoNotStopItsService) {
    std::mt19937 random(7);
    for (int round = 0; round < 12; ++round) {
        Client client = Connect(host);
        ASSERT_NE(LogIn(client), kNowhere);
        Send(client, std::to_string(round + 1) + "\r");
        std::string bytes;
        for (int i = 0; i < 20000; ++i) {
            const unsigned long value = random();
            bytes += static_cast<char>(value % 5 == 0 ? 240 + value / 5 % 16 : value >> 8);
        }
        Send(client, bytes);
        Disconnect(client);
    }
    ExpectServes(host);
}

TEST_F(DemoHost, EndlessSubnegotiationIsCutAndEndsAtItsEnd) {
    Client client = Connect(host);
    Send(client, "\xff\xfa\x18" + std::string(1, '\0') + std::string(100000, 'v') + "\xff\xf0");
    ASSERT_NE(LogIn(client), kNowhere);
    EXPECT_NE(client.received.find("Terminal: vt220"), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, OverlongLineIsCut) {
    Client client = Connect(host);
    Send(client, "\xff\xfd\x01");
    Expect(client, "login: ");
    Send(client, std::string(5000, 'n') + "\r");
    Expect(client, "Password: ");
    Send(client, "\r");
    EXPECT_NE(Expect(client, "Good day, " + std::string(30, 'n') + "."), kNowhere);
    Disconnect(client);
}

TEST_F(DemoHost, TwentySessionsAtOnceAreIndependent) {
    std::vector<Client> clients;
    for (int i = 0; i < 20; ++i) {
        clients.push_back(Connect(host));
        Send(clients.back(), "\xff\xfd\x01");
    }
    for (size_t i = 0; i < clients.size(); ++i)
        Send(clients[i], "user" + std::to_string(i) + "\r\r");
    for (size_t i = 0; i < clients.size(); ++i) {
        const std::string greeting = "Good day, user" + std::to_string(i) + ".";
        EXPECT_NE(Expect(clients[i], greeting), kNowhere) << i;
        EXPECT_EQ(Count(clients[i].received, "Good day, "), 1U) << i;
        Disconnect(clients[i]);
    }
}

TEST_F(DemoHost, ServesOneSessionAfterTheOther) {
    for (int i = 0; i < 10; ++i) ExpectServes(host);
}

TEST_F(DemoHost, EndsOnTermWithSessionsOpen) {
    Client client = Connect(host);
    ASSERT_NE(OpenPage(client, "4", "Press any key"), kNowhere);
    kill(host.pid, SIGTERM);
    EXPECT_EQ(WaitForEnd(host), 0);
    EXPECT_TRUE(ExpectClose(client));
    Disconnect(client);
}

TEST(DemoHostOnce, EndsAfterTheFirstSession) {
    Host host = StartHost({"--once"});
    ASSERT_NE(host.port, 0);
    Client client = Connect(host);
    EXPECT_NE(LogIn(client), kNowhere);
    Disconnect(client);
    EXPECT_EQ(WaitForEnd(host), 0);
}

TEST(DemoHostParent, EndsWhenItsParentDies) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t parent = fork();
    if (parent == 0) {
        const Host host = StartHost();
        const bool told = write(ends[1], &host.port, sizeof host.port) == sizeof host.port;
        close(ends[1]);
        if (told) pause();
        _exit(1);
    }
    close(ends[1]);
    Host host;
    ASSERT_EQ(read(ends[0], &host.port, sizeof host.port), static_cast<ssize_t>(sizeof host.port));
    close(ends[0]);
    Client client = Connect(host);
    EXPECT_NE(LogIn(client), kNowhere);
    kill(parent, SIGKILL);
    waitpid(parent, nullptr, 0);
    EXPECT_TRUE(ExpectClose(client));
    EXPECT_FALSE(CanConnect("127.0.0.1", host.port));
    Disconnect(client);
}
