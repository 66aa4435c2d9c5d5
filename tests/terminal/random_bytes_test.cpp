// SPDX-License-Identifier: MIT
// Random bytes, cut at random places. The terminal ends in the same state however they are cut, and
// whether they take the fast path or go one by one. No field leaves its bounds.
#include <gtest/gtest.h>

#include <random>

#include "terminal/screen_buffer.h"
#include "tests/terminal/terminal_state.h"

// Pieces of which hosts' streams are made, and some that no host sends.
static const std::string kPieces[] = {
    "\x1b",
    "\x1b[",
    "\x9b",
    ";",
    "?",
    ">",
    "!",
    "\"",
    "'",
    "=",
    "0",
    "00",
    "1",
    "2",
    "12",
    "24",
    "80",
    "99999999",
    "H",
    "J",
    "K",
    "L",
    "M",
    "P",
    "@",
    "X",
    "m",
    "r",
    "h",
    "l",
    "c",
    "n",
    "x",
    "y",
    "p",
    "q",
    "s",
    "g",
    "i",
    "A",
    "B",
    "C",
    "D",
    "\n",
    "\r",
    "\t",
    "\b",
    "\a",
    "\x0e",
    "\x0f",
    "\x05",
    "\x84",
    "\x8d",
    "\x90",
    "\\",
    "\x1bM",
    "\x1b[?2l",
    "\x1b<",
    "\x1b#6",
    "\x1b#3",
    "\x1b#8",
    "\x1b(0",
    "\x1b)0",
    "\x1bY",
    "\x1b"
    "7",
    "\x1b"
    "8",
    "\x1bH",
    "\x1b G",
    "\x1bP",
    "\x1b[5;20r",
    "\x1b[?6h",
    "\x1b[4h",
    "\x1b[4l",
    "\x1b[10p",
    "\x1b[1s",
    "\x1b[0s",
    "\x1b[1\"q",
    "\x1b[?7l",
    "\x1b[?7h",
    "\x1b[30B",
    "\x1b[1;80H",
    "\x1b[24H",
    "\x1b[?3h",
    "\x1b[5M",
    "some words ",
    "longer text that fills much of a line and then some more of it, up to wrapping ",
};

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
