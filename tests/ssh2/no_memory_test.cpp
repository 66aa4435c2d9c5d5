// SPDX-License-Identifier: MIT
// Memory ends during a key exchange, at each of its allocations in turn: the server gets whole
// packets only, no keys are used, and the session ends.
#include "tests/ssh2/conversation.h"

// The linker leads the calls of calloc here.
void* RealCalloc(size_t count, size_t size) __asm__("__real_calloc");
void* LimitedCalloc(size_t count, size_t size) __asm__("__wrap_calloc");

static int g_left = 0;  // allocations until the one that fails; 0: each one gets its memory

void* LimitedCalloc(size_t count, size_t size) {
    return g_left > 0 && --g_left == 0 ? nullptr : RealCalloc(count, size);
}

class Ssh2Memory : public Conversation {
  protected:
    // Gives the client a packet while the memory ends at that allocation. Returns whether it did.
    bool EndsDuring(const std::string& payload, int allocation) {
        const std::string packet = Seal(server, payload);
        g_left = allocation;
        Receive(packet);
        const bool ended = g_left == 0;
        g_left = 0;
        return ended;
    }
    void Renew() {
        NewSession();
        server = {};
        tape = Tape(5);
    }
    // The packet that goes out before the exponent is drawn.
    void ExpectKexInit() {
        const std::string expected = ClientKexInit(tape, cipher);
        Expect(expected);
    }
    void ExpectOnlyKexInit(int allocation) {
        SCOPED_TRACE(allocation);
        ExpectKexInit();
        ExpectSilence();
        EXPECT_EQ(outside.closes, 1);
        EXPECT_TRUE(outside.boxes.empty());
    }
};

TEST_F(Ssh2Memory, FirstExchangeWithoutMemoryForKexDhInitClosesTheSession) {
    int allocation = 1;
    for (;; ++allocation) {
        Renew();
        Identify();
        if (!EndsDuring(ServerKexInit(), allocation)) break;
        ExpectOnlyKexInit(allocation);
    }
    EXPECT_GT(allocation, 6);
    ExpectKexInit();
    Expect(Message(30, ClientPublic(tape)));
    ExpectOpen();
}

TEST_F(Ssh2Memory, LaterExchangeWithoutMemoryForKexDhInitClosesTheSession) {
    for (const int allocation : {1, 5, 6}) {
        Renew();
        ToShell();
        tape = Tape(5);  // each exchange begins the generator anew
        EXPECT_TRUE(EndsDuring(ServerKexInit(), allocation));
        ExpectOnlyKexInit(allocation);
    }
}

// No NEWKEYS answers a reply that could not be checked, and the server's is refused. There are many
// allocations: the first ones, and others among the rest.
TEST_F(Ssh2Memory, ReplyThatCannotBeCheckedWithoutMemoryLeadsToNoKeys) {
    int allocation = 1;
    for (;; allocation += 1 + allocation / 8) {
        SCOPED_TRACE(allocation);
        Renew();
        Identify();
        Offer();
        if (!EndsDuring(KexDhReply(server, "SSH-2.0-1.0.00"), allocation)) break;
        ExpectSilence();
        Give(Message(21));
        ExpectClosed();
    }
    EXPECT_GT(allocation, 20);
    Expect(Message(21));
    ExpectOpen();
}
