// SPDX-License-Identifier: MIT
// Code page 1252, wsprintfW and the string calls.
#include <gtest/gtest.h>

#include <string>

#include "windows_ce.h"

namespace {

typedef std::basic_string<WCHAR> Text;

template <typename... Values>
Text Format(LPCWSTR format, Values... values) {
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

TEST(CodePage, HasThePositionsOfWindows) {
    const char bytes[] = "\x80\x85\x8A\x9F\xA0\xE4\xFF\x81\x8D\x8F\x90\x9D";
    WCHAR text[20];
    EXPECT_EQ(13, MultiByteToWideChar(CP_ACP, 0, bytes, -1, text, 20));
    EXPECT_EQ(Text(TEXT("\u20ac\u2026\u0160\u0178\u00a0\u00e4\u00ff\x81\x8d\x8f\x90\x9d")), text);
}

TEST(CodePage, UnknownUnitBecomesAQuestionMark) {
    char bytes[10];
    BOOL used = FALSE;
    EXPECT_EQ(4, WideCharToMultiByte(CP_ACP, 0, TEXT("a\u05d0b"), -1, bytes, 10, nullptr, &used));
    EXPECT_STREQ("a?b", bytes);
    EXPECT_TRUE(used);
    EXPECT_EQ(4, WideCharToMultiByte(CP_ACP, 0, TEXT("a\u05d0b"), -1, bytes, 10, "_", &used));
    EXPECT_STREQ("a_b", bytes);
}

TEST(CodePage, SizeIsAskedForWithoutABuffer) {
    EXPECT_EQ(6, MultiByteToWideChar(CP_ACP, 0, "hello", -1, nullptr, 0));
    EXPECT_EQ(5, MultiByteToWideChar(CP_ACP, 0, "hello", 5, nullptr, 0));
    EXPECT_EQ(6, WideCharToMultiByte(CP_ACP, 0, TEXT("hello"), -1, nullptr, 0, nullptr, nullptr));
}

TEST(CodePage, TooSmallABufferFailsWithinIt) {
    WCHAR text[4] = {0, 0, 0, TEXT('!')};
    char bytes[4] = {0, 0, 0, '!'};
    EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "hello", -1, text, 3));
    EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, TEXT("hello"), -1, bytes, 3, nullptr, nullptr));
    EXPECT_EQ(TEXT('!'), text[3]);
    EXPECT_EQ('!', bytes[3]);
}

TEST(CodePage, NothingToConvertIsAnError) {
    WCHAR text[4];
    char bytes[4];
    EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "hello", 0, text, 4));
    EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, TEXT("hello"), 0, bytes, 4, nullptr, nullptr));
}

TEST(Wsprintf, FormatsNumbers) {
    EXPECT_EQ(TEXT("-7 -7 4294967289"), Format(TEXT("%d %i %u"), -7, -7, -7));
    EXPECT_EQ(TEXT("ff FF 0"), Format(TEXT("%x %X %x"), 255, 255, 0));
    EXPECT_EQ(TEXT("-2147483648"), Format(TEXT("%d"), static_cast<int>(0x80000000u)));
    EXPECT_EQ(TEXT("key65"), Format(TEXT("key%d"), 65));
}

TEST(Wsprintf, PadsNumbersWithBlanksOrZerosOnEitherSide) {
    EXPECT_EQ(TEXT("[   42]"), Format(TEXT("[%5d]"), 42));
    EXPECT_EQ(TEXT("[42   ]"), Format(TEXT("[%-5d]"), 42));
    EXPECT_EQ(TEXT("[00042]"), Format(TEXT("[%05d]"), 42));
    EXPECT_EQ(TEXT("[  042]"), Format(TEXT("[%5.3d]"), 42));
    EXPECT_EQ(TEXT("[0000beef]"), Format(TEXT("[%08x]"), 0xbeef));
}

TEST(Wsprintf, FormatsTexts) {
    EXPECT_EQ(TEXT("wide narrow"), Format(TEXT("%s %S"), TEXT("wide"), "narrow"));
    EXPECT_EQ(TEXT("narrow wide"), Format(TEXT("%hs %lS"), "narrow", TEXT("wide")));
    EXPECT_EQ(TEXT("narrow wide"), Format(TEXT("%hS %ls"), "narrow", TEXT("wide")));
    EXPECT_EQ(TEXT("[  ab][ab  ][ab]"),
              Format(TEXT("[%4s][%-4s][%.2s]"), TEXT("ab"), TEXT("ab"), TEXT("abc")));
    EXPECT_EQ(TEXT("\u20ac"), Format(TEXT("%S"), "\x80"));
    EXPECT_EQ(TEXT("x%y"), Format(TEXT("%c%%%c"), TEXT('x'), TEXT('y')));
    EXPECT_EQ(TEXT("1 2"), Format(TEXT("%ld %lu"), 1, 2));
}

TEST(Wsprintf, LongTextEndsAt1023) {
    const Text text(3000, TEXT('q'));
    WCHAR room[1025];
    room[1024] = TEXT('!');
    wsprintfW(room, TEXT("%s"), text.c_str());
    EXPECT_EQ(TEXT('!'), room[1024]);
    EXPECT_EQ(1023, lstrlenW(room));
}

TEST(Strings, AreMeasuredAndCopied) {
    WCHAR text[10];
    EXPECT_EQ(5, lstrlenW(TEXT("hello")));
    EXPECT_EQ(0, lstrlenW(TEXT("")));
    EXPECT_EQ(0, lstrlenW(nullptr));
    EXPECT_EQ(text, lstrcpyW(text, TEXT("hello")));
    EXPECT_EQ(Text(TEXT("hello")), text);
}

TEST(Strings, AreComparedWithAndWithoutCase) {
    EXPECT_EQ(0, lstrcmpW(TEXT("abc"), TEXT("abc")));
    EXPECT_LT(lstrcmpW(TEXT("abc"), TEXT("abd")), 0);
    EXPECT_GT(lstrcmpW(TEXT("abc"), TEXT("ab")), 0);
    EXPECT_NE(0, lstrcmpW(TEXT("abc"), TEXT("ABC")));
    EXPECT_EQ(0, lstrcmpiW(TEXT("abc\u00e4"), TEXT("ABC\u00c4")));
    EXPECT_LT(lstrcmpiW(TEXT("ABC"), TEXT("abd")), 0);
    EXPECT_GT(lstrcmpiW(TEXT("b"), TEXT("A")), 0);
}
