// Code page 1252, wsprintfW and the string calls.
#include <gtest/gtest.h>

#include <string>

#include "windows_ce.h"

namespace {

template <typename... Values>
std::u16string Format(LPCWSTR format, Values... values) {
    WCHAR text[1024];
    const int length = wsprintfW(text, format, values...);
    EXPECT_EQ(lstrlenW(text), length);
    return text;
}

}  // namespace

TEST(CodePage, EveryByteComesBack) {
    for (int byte = 0; byte < 256; byte++) {
        const char one = static_cast<char>(byte);
        WCHAR unit = 0xFFFF;
        char back = 0;
        BOOL used = TRUE;
        ASSERT_EQ(1, MultiByteToWideChar(CP_ACP, 0, &one, 1, &unit, 1));
        ASSERT_EQ(1, WideCharToMultiByte(CP_ACP, 0, &unit, 1, &back, 1, nullptr, &used));
        EXPECT_EQ(one, back) << byte;
        EXPECT_FALSE(used);
    }
}

TEST(CodePage, WindowsPositions) {
    const char bytes[] = "\x80\x85\x8A\x9F\xA0\xE4\xFF\x81\x8D\x8F\x90\x9D";
    WCHAR text[20];
    EXPECT_EQ(13, MultiByteToWideChar(CP_ACP, 0, bytes, -1, text, 20));
    EXPECT_EQ(std::u16string(u"\u20ac\u2026\u0160\u0178\u00a0\u00e4\u00ff\x81\x8d\x8f\x90\x9d"),
              text);
}

TEST(CodePage, UnknownUnitBecomesAQuestionMark) {
    char bytes[10];
    BOOL used = FALSE;
    EXPECT_EQ(4, WideCharToMultiByte(CP_ACP, 0, u"a\u05d0b", -1, bytes, 10, nullptr, &used));
    EXPECT_STREQ("a?b", bytes);
    EXPECT_TRUE(used);
    EXPECT_EQ(4, WideCharToMultiByte(CP_ACP, 0, u"a\u05d0b", -1, bytes, 10, "_", &used));
    EXPECT_STREQ("a_b", bytes);
}

TEST(CodePage, SizeIsAskedForWithoutABuffer) {
    EXPECT_EQ(6, MultiByteToWideChar(CP_ACP, 0, "hello", -1, nullptr, 0));
    EXPECT_EQ(5, MultiByteToWideChar(CP_ACP, 0, "hello", 5, nullptr, 0));
    EXPECT_EQ(6, WideCharToMultiByte(CP_ACP, 0, u"hello", -1, nullptr, 0, nullptr, nullptr));
}

TEST(CodePage, TooSmallABufferFailsWithinIt) {
    WCHAR text[4] = {0, 0, 0, u'!'};
    char bytes[4] = {0, 0, 0, '!'};
    EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "hello", -1, text, 3));
    EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, u"hello", -1, bytes, 3, nullptr, nullptr));
    EXPECT_EQ(u'!', text[3]);
    EXPECT_EQ('!', bytes[3]);
}

TEST(CodePage, NothingToConvertIsAnError) {
    WCHAR text[4];
    char bytes[4];
    EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "hello", 0, text, 4));
    EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, u"hello", 0, bytes, 4, nullptr, nullptr));
}

TEST(Wsprintf, Numbers) {
    EXPECT_EQ(u"-7 -7 4294967289", Format(u"%d %i %u", -7, -7, -7));
    EXPECT_EQ(u"ff FF 0", Format(u"%x %X %x", 255, 255, 0));
    EXPECT_EQ(u"-2147483648", Format(u"%d", static_cast<int>(0x80000000u)));
    EXPECT_EQ(u"key65", Format(u"key%d", 65));
}

TEST(Wsprintf, WidthZerosAndSide) {
    EXPECT_EQ(u"[   42]", Format(u"[%5d]", 42));
    EXPECT_EQ(u"[42   ]", Format(u"[%-5d]", 42));
    EXPECT_EQ(u"[00042]", Format(u"[%05d]", 42));
    EXPECT_EQ(u"[  042]", Format(u"[%5.3d]", 42));
    EXPECT_EQ(u"[0000beef]", Format(u"[%08x]", 0xbeef));
}

TEST(Wsprintf, Texts) {
    EXPECT_EQ(u"wide narrow", Format(u"%s %S", u"wide", "narrow"));
    EXPECT_EQ(u"[  ab][ab  ][ab]", Format(u"[%4s][%-4s][%.2s]", u"ab", u"ab", u"abc"));
    EXPECT_EQ(u"\u20ac", Format(u"%S", "\x80"));
    EXPECT_EQ(u"x%y", Format(u"%c%%%c", u'x', u'y'));
    EXPECT_EQ(u"1 2", Format(u"%ld %lu", 1, 2));
}

TEST(Wsprintf, LongTextEndsAt1023) {
    const std::u16string text(3000, u'q');
    WCHAR room[1025];
    room[1024] = u'!';
    wsprintfW(room, u"%s", text.c_str());
    EXPECT_EQ(u'!', room[1024]);
    EXPECT_EQ(1023, lstrlenW(room));
}

TEST(Strings, LengthAndCopies) {
    WCHAR text[10];
    EXPECT_EQ(5, lstrlenW(u"hello"));
    EXPECT_EQ(0, lstrlenW(u""));
    EXPECT_EQ(0, lstrlenW(nullptr));
    EXPECT_EQ(text, lstrcpyW(text, u"hello"));
    EXPECT_EQ(std::u16string(u"hello"), text);
    EXPECT_EQ(text, lstrcpynW(text, u"goodbye", 5));
    EXPECT_EQ(std::u16string(u"good"), text);
    lstrcpynW(text, u"x", 1);
    EXPECT_EQ(std::u16string(u""), text);
}

TEST(Strings, Comparing) {
    EXPECT_EQ(0, lstrcmpW(u"abc", u"abc"));
    EXPECT_LT(lstrcmpW(u"abc", u"abd"), 0);
    EXPECT_GT(lstrcmpW(u"abc", u"ab"), 0);
    EXPECT_NE(0, lstrcmpW(u"abc", u"ABC"));
    EXPECT_EQ(0, lstrcmpiW(u"abc\u00e4", u"ABC\u00c4"));
    EXPECT_LT(lstrcmpiW(u"ABC", u"abd"), 0);
    EXPECT_GT(lstrcmpiW(u"b", u"A"), 0);
}
