// SPDX-License-Identifier: MIT
// Random bytes, cut at random places. The terminal ends in the same state however they are cut, and
// whether they take the fast path or go one by one. No field leaves its bounds.
#include <gtest/gtest.h>

#include <random>

#include "terminal/screen_buffer.h"
#include "tests/terminal/stream_pieces.h"
#include "tests/terminal/terminal_state.h"

// Every tenth piece ends a device control string, which would swallow the rest, and VT52 mode.
static std::string RandomStream(std::mt19937* random, int pieces) {
    std::string stream;
    for (; pieces > 0; --pieces) {
        const unsigned long choice = (*random)();
        if (pieces % 10 == 0) stream += "\x1b\\\x1b<";
        if (choice % 8 == 0) {
            stream += static_cast<char>((*random)());
        } else {
            stream += kPieces[(choice >> 4) % std::size(kPieces)];
        }
    }
    return stream;
}

static void FeedCutAtRandom(const std::string& stream, std::mt19937* random, std::string* replies) {
    for (size_t at = 0; at < stream.size();) {
        const size_t length = 1 + (*random)() % ((*random)() % 4 == 0 ? 200 : 5);
        FeedWhole(stream.substr(at, length), replies);
        at += length;
    }
}

TEST(RandomBytes, GiveTheSameScreenWholeCutAndByteByByte) {
    for (unsigned seed = 1; seed <= 1500; ++seed) {
        std::mt19937 random(seed);
        const std::string stream = RandomStream(&random, 400);
        std::string by_byte, whole, cut;
        NewTerminal();
        FeedByteByByte(stream, &by_byte);
        const TerminalSnapshot expected = TakeSnapshot();
        NewTerminal();
        FeedWhole(stream, &whole);
        ASSERT_EQ("", FirstDifference(expected, TakeSnapshot())) << "whole, seed " << seed;
        NewTerminal();
        FeedCutAtRandom(stream, &random, &cut);
        ASSERT_EQ("", FirstDifference(expected, TakeSnapshot())) << "cut, seed " << seed;
        ASSERT_EQ(by_byte, whole) << seed;
        ASSERT_EQ(by_byte, cut) << seed;
    }
}

TEST(RandomBytes, KeepEveryFieldInBounds) {
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        const std::string stream = RandomStream(&random, 400);
        std::string replies;
        NewTerminal();
        for (char c : stream) {
            FeedByteByByte(std::string(1, c), &replies);
            ASSERT_EQ("", FieldOutOfBounds()) << "seed " << seed;
        }
    }
}

TEST(RandomBytes, SlotZeroIsNeverWritten) {
    NewTerminal();
    const DWORD mark = 0xABCDEF;
    std::fill_n(session.screen.slots[0], kSlotWords, mark);
    std::mt19937 random(7);
    std::string replies;
    FeedWhole(RandomStream(&random, 20000), &replies);
    for (DWORD word : session.screen.slots[0]) ASSERT_EQ(mark, word);
}
