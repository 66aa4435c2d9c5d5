// SPDX-License-Identifier: MIT
// Text on the desktop: UTF-8, case conversion, and formats that no program should pass.
#include <gtest/gtest.h>

#include "platform/qt/services/services.h"
#include "windows_ce.h"

TEST(WideText, BecomesUtf8AndComesBack) {
    const std::u16string text = u"a\u00e9\u20ac\U0001F600";
    EXPECT_EQ("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", Utf8FromWide(text));
    EXPECT_EQ(text, WideFromUtf8(Utf8FromWide(text)));
    EXPECT_EQ(u"\uFFFD", WideFromUtf8("\xFF"));
}

TEST(WideText, Utf8HasTheLengthOfItsRange) {
    const struct {
        std::u16string text;
        const char* bytes;
    } kRows[] = {
        {u"\u007F", "\x7F"},
        {u"\u0080", "\xC2\x80"},
        {u"\u07FF", "\xDF\xBF"},
        {u"\u0800", "\xE0\xA0\x80"},
        {u"\uFFFE", "\xEF\xBF\xBE"},
        {u"\uFFFF", "\xEF\xBF\xBF"},
        {u"\U00010000", "\xF0\x90\x80\x80"},
        {u"\U0010FFFF", "\xF4\x8F\xBF\xBF"},
    };
    for (const auto& row : kRows) EXPECT_EQ(row.bytes, Utf8FromWide(row.text));
}

TEST(WideText, SurrogateHalvesAreNotJoined) {
    const std::u16string high(1, 0xD800), other(1, 0xD801), low(1, 0xDC00);
    EXPECT_NE(Utf8FromWide(high), Utf8FromWide(other));
    EXPECT_NE(Utf8FromWide(high), Utf8FromWide(low));
    EXPECT_EQ(6u, Utf8FromWide(low + high).size());
    static const char16_t kNoLow[] = {0xD7FF, 0xDBFF, 0xE000}, kNoHigh[] = {0xD7FF, 0xDC00, 0xE000};
    for (const char16_t neighbour : kNoLow)
        EXPECT_EQ(6u, Utf8FromWide(high + neighbour).size()) << static_cast<int>(neighbour);
    for (const char16_t neighbour : kNoHigh)
        EXPECT_EQ(6u, Utf8FromWide(neighbour + low).size()) << static_cast<int>(neighbour);
}

TEST(WideText, CaseConversionNeverMapsIntoAscii) {
    EXPECT_EQ(u'A', UpperUnit(u'a'));
    EXPECT_EQ(0x0178, UpperUnit(0x00FF));
    EXPECT_EQ(0x0131, UpperUnit(0x0131));  // its capital would be I
    EXPECT_EQ(0x212A, LowerUnit(0x212A));  // the small letter of the kelvin sign would be k
}

TEST(WsprintfLimits, PrecisionTurnsLeadingZerosOff) {
    WCHAR text[16];
    EXPECT_EQ(5, wsprintfW(text, u"%05.0d", 7));
    EXPECT_EQ(u"    7", std::u16string(text));
    EXPECT_EQ(5, wsprintfW(text, u"%05.2d", 7));
    EXPECT_EQ(u"   07", std::u16string(text));
}

TEST(WsprintfLimits, SharpPutsAPrefixBeforeHexadecimalDigits) {
    WCHAR text[32];
    wsprintfW(text, u"%#x %#X %#06x %#d", 0x1F, 0x1F, 0x1F, 7);
    EXPECT_EQ(u"0x1f 0X1F 0x001f 7", std::u16string(text));
}

TEST(WsprintfLimits, HugeWidthsAreCut) {
    WCHAR text[1024];
    EXPECT_EQ(1023, wsprintfW(text, u"%99999999999999999999d", 1));
    EXPECT_EQ(1023, wsprintfW(text, u"%.99999999999999999999d", 1));
    EXPECT_EQ(1, wsprintfW(text, u"%.99999999999999999999s", u"x"));
    EXPECT_EQ(1023, wsprintfW(text, u"%-2000S|", "x"));
}

TEST(WsprintfLimits, LongNarrowTextIsCut) {
    WCHAR text[1024];
    EXPECT_EQ(1023, wsprintfW(text, u"%S", std::string(5000, 'x').c_str()));
}

TEST(WsprintfLimits, PrecisionNeedsNoTerminator) {
    const char narrow[3] = {'a', 'b', 'c'};
    const WCHAR wide[3] = {u'a', u'b', u'c'};
    WCHAR text[1024];
    EXPECT_EQ(6, wsprintfW(text, u"%.3S%.3s", narrow, wide));
    EXPECT_EQ(std::u16string(u"abcabc"), text);
}

TEST(WsprintfLimits, BrokenFormatsAreTolerated) {
    WCHAR text[1024];
    EXPECT_EQ(0, wsprintfW(text, u"%"));
    EXPECT_EQ(0, wsprintfW(text, u"%-05.3"));
    EXPECT_EQ(1, wsprintfW(text, u"%q"));
    wsprintfW(text, u"%s|%S", static_cast<LPCWSTR>(nullptr), static_cast<LPCSTR>(nullptr));
    EXPECT_EQ(std::u16string(u"(null)|(null)"), text);
}

TEST(CodePageArguments, InvalidOnesConvertNothing) {
    WCHAR unit;
    char byte;
    EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, nullptr, 1, &unit, 1));
    EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "a", -5, &unit, 1));
    EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "a", 1, &unit, -1));
    EXPECT_EQ(0, MultiByteToWideChar(CP_ACP, 0, "a", 1, nullptr, 1));
    EXPECT_EQ(0, MultiByteToWideChar(65001, 0, "a", 1, &unit, 1));
    EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, nullptr, 1, &byte, 1, nullptr, nullptr));
    EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, u"a", -5, &byte, 1, nullptr, nullptr));
    EXPECT_EQ(0, WideCharToMultiByte(CP_ACP, 0, u"a", 1, nullptr, 1, nullptr, nullptr));
}
