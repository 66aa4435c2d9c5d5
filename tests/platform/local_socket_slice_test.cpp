// SPDX-License-Identifier: MIT
// Local sockets between programs of one user.
#include "platform/qt/services/posix_sockets.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

namespace {

std::string FreshName() {
    static int number = 0;
    return "quill-test-" + std::to_string(getpid()) + '-' + std::to_string(++number);
}

std::string Heard(int socket) {
    char bytes[100];
    AwaitLocally(socket, 5000);
    const long count = HearLocally(socket, bytes, sizeof bytes);
    return count < 0 ? "nothing" : std::string(bytes, static_cast<size_t>(count));
}

// Calls in a process of another user. Its exit code is 0 if the connection ends.
pid_t CallAsNobody(const std::string& name) {
    constexpr uid_t kNobody = 65534;
    const pid_t child = fork();
    if (child != 0) return child;
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    name.copy(address.sun_path + 1, sizeof(address.sun_path) - 1);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    const int caller = setuid(kNobody) == 0 ? socket(AF_UNIX, SOCK_STREAM, 0) : -1;
    char byte;
    const bool connected =
        caller >= 0 && connect(caller, reinterpret_cast<sockaddr*>(&address), length) == 0;
    _exit(connected && read(caller, &byte, 1) <= 0 ? 0 : 1);
}

}  // namespace

TEST(LocalSocket, CarriesWordsBothWaysAndEndsWithItsCaller) {
    const std::string name = FreshName();
    const int listener = ListenLocally(name);
    ASSERT_GE(listener, 0);
    EXPECT_LT(AcceptLocally(listener), 0) << "nobody has called";
    const int caller = CallLocally(name);
    ASSERT_GE(caller, 0);
    const int answering = AcceptLocally(listener);
    ASSERT_GE(answering, 0);
    char byte;
    EXPECT_LT(HearLocally(answering, &byte, 1), 0) << "nothing was said";
    EXPECT_TRUE(SayLocally(caller, "show\n"));
    EXPECT_EQ(Heard(answering), "show\n");
    EXPECT_TRUE(SayLocally(answering, "done\n"));
    EXPECT_EQ(Heard(caller), "done\n");
    CloseLocally(caller);
    EXPECT_EQ(Heard(answering), "") << "the caller's end";
    EXPECT_FALSE(SayLocally(answering, "done\n"));
    CloseLocally(answering);
    CloseLocally(listener);
}

TEST(LocalSocket, ANameHasOneListenerAndIsFreeAfterwards) {
    const std::string name = FreshName();
    EXPECT_LT(CallLocally(name), 0);
    const int listener = ListenLocally(name);
    ASSERT_GE(listener, 0);
    EXPECT_LT(ListenLocally(name), 0);
    CloseLocally(listener);
    EXPECT_LT(CallLocally(name), 0);
    const int again = ListenLocally(name);
    EXPECT_GE(again, 0);
    CloseLocally(again);
}

TEST(LocalSocket, LongNamesStayWithinTheKernelsLimit) {
    const int listener = ListenLocally(std::string(5000, 'x'));
    if (listener >= 0) CloseLocally(listener);
    EXPECT_LT(CallLocally(std::string(5000, 'y')), 0);
}

TEST(LocalSocket, ACallOfAnotherUserIsNotTaken) {
    if (getuid() != 0) GTEST_SKIP() << "no right to be another user";
    const std::string name = FreshName();
    const int listener = ListenLocally(name);
    ASSERT_GE(listener, 0);
    const pid_t caller = CallAsNobody(name);
    pollfd called = {listener, POLLIN, 0};
    EXPECT_EQ(1, poll(&called, 1, 60000));
    const int taken = AcceptLocally(listener);
    EXPECT_LT(taken, 0);
    if (taken >= 0) CloseLocally(taken);
    int status = -1;
    EXPECT_EQ(caller, waitpid(caller, &status, 0));
    EXPECT_EQ(0, status) << "its connection ends";
    CloseLocally(listener);
}
