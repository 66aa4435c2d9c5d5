// SPDX-License-Identifier: MIT
// Whether the socket sends small pieces at once or gathers them.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>
#include <thread>

#include "platform/qt/services/posix_sockets.h"

namespace {

class Gathering : public testing::Test {
  protected:
    void SetUp() override {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        listener_ = ::socket(AF_INET, SOCK_STREAM, 0);
        ASSERT_EQ(0, ::bind(listener_, reinterpret_cast<sockaddr*>(&address), size));
        ASSERT_EQ(0, ::listen(listener_, 1));
        ::getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size);
        ASSERT_EQ(0, StreamSocket::Open(&socket_));
        ASSERT_EQ(0, socket_->Connect(address.sin_addr.s_addr, address.sin_port));
        peer_ = ::accept(listener_, nullptr, nullptr);
        ASSERT_EQ(0, socket_->SetBlocking(false));
    }
    void TearDown() override {
        socket_->Close();
        ::close(peer_);
        ::close(listener_);
    }
    void Send(char byte) {
        sent_ += byte;
        EXPECT_EQ(1, socket_->Send(&byte, 1, 0));
    }
    bool AtOnce() const {
        int at_once = 0;
        socklen_t size = sizeof(at_once);
        ::getsockopt(socket_->descriptor(), IPPROTO_TCP, TCP_NODELAY, &at_once, &size);
        return at_once != 0;
    }
    static void Rest() { std::this_thread::sleep_for(kSendingRest * 2); }

    std::shared_ptr<StreamSocket> socket_;
    std::string sent_;
    int peer_ = -1;

  private:
    int listener_ = -1;
};

TEST_F(Gathering, DataAfterAPauseIsSentAtOnce) {
    Send('a');
    EXPECT_TRUE(AtOnce());
    Rest();
    Send('b');
    EXPECT_TRUE(AtOnce());
}

// The run is fast enough to contain no pause, unless the machine stalls for a moment; then the test
// tries again.
TEST_F(Gathering, ALongRunIsGatheredUntilTheNextPause) {
    for (int tries = 0; tries < 100 && (tries == 0 || AtOnce()); tries++)
        for (int i = 0; i <= kSentAtOnce; i++) Send(static_cast<char>('a' + i));
    EXPECT_FALSE(AtOnce());
    Rest();
    Send('z');
    EXPECT_TRUE(AtOnce());
}

TEST_F(Gathering, NothingIsLostOrReordered) {
    for (int i = 0; i < 1000; i++) {
        Send(static_cast<char>(i));
        if (i % 250 == 0) Rest();
    }
    std::string received(sent_.size(), 0);
    ASSERT_EQ(static_cast<ssize_t>(received.size()),
              ::recv(peer_, received.data(), received.size(), MSG_WAITALL));
    EXPECT_EQ(sent_, received);
}

}  // namespace
