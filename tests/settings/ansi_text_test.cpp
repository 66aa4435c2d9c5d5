// SPDX-License-Identifier: MIT
// Conversions to and from the ANSI code page, at the limits of their buffers.
#include "text/text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string Narrow(const std::u16string& text, int capacity) {
    std::string bytes(static_cast<size_t>(capacity) + 1, '#');
    const int length = AnsiFromWide(text.c_str(), bytes.data(), capacity);
    EXPECT_EQ('\0', bytes[static_cast<size_t>(length)]);
    EXPECT_EQ('#', bytes.back()) << "written beyond its room";
    return bytes.substr(0, static_cast<size_t>(length));
}

std::u16string Widened(const std::string& bytes, int capacity) {
    std::u16string text(static_cast<size_t>(capacity) + 1, u'#');
    const int length = WideFromAnsi(bytes.c_str(), text.data(), capacity);
    EXPECT_EQ(u'\0', text[static_cast<size_t>(length)]);
    EXPECT_EQ(u'#', text.back()) << "written beyond its room";
    return text.substr(0, static_cast<size_t>(length));
}

}  // namespace

TEST(AnsiText, TextBeyondTheBufferIsCut) {
    for (const size_t length : {0u, 1u, 3u, 4u, 5u, 6u, 100u}) {
        const size_t kept = std::min<size_t>(length, 4);
        EXPECT_EQ(std::string(kept, '\x80'), Narrow(std::u16string(length, u'\u20AC'), 5));
        EXPECT_EQ(std::u16string(kept, u'\u20AC'), Widened(std::string(length, '\x80'), 5));
    }
}

TEST(AnsiText, BufferOfOneUnitHoldsOnlyTheTerminator) {
    EXPECT_EQ("", Narrow(u"text", 1));
    EXPECT_EQ(u"", Widened("text", 1));
}

TEST(WideText, BoundedCopyEndsWithTheTextOrTheBuffer) {
    WCHAR room[6];
    for (WCHAR& unit : room) unit = TEXT('!');
    CopyBounded(room, TEXT("goodbye"), 5);
    EXPECT_EQ(std::basic_string<WCHAR>(TEXT("good")), room);
    EXPECT_EQ(TEXT('!'), room[5]);
    CopyBounded(room, TEXT("hi"), 5);
    EXPECT_EQ(std::basic_string<WCHAR>(TEXT("hi")), room);
    EXPECT_EQ(TEXT('d'), room[3]);
    CopyBounded(room, TEXT("x"), 1);
    EXPECT_EQ(std::basic_string<WCHAR>(TEXT("")), room);
    room[0] = TEXT('?');
    CopyBounded(room, TEXT("x"), 0);
    EXPECT_EQ(TEXT('?'), room[0]);
}
