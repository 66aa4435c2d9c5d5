// SPDX-License-Identifier: MIT
// Escape text: each rule, and the limits of the output.
#include "text/text.h"

#include <gtest/gtest.h>

#include <string>

#include "settings/key_map.h"

namespace {

std::string Expanded(const char* text) {
    BYTE bytes[300];
    const int count = ExpandEscapeText(text, bytes, sizeof bytes);
    return std::string(reinterpret_cast<const char*>(bytes), static_cast<size_t>(count));
}

std::string Bytes(std::initializer_list<int> values) {
    std::string bytes;
    for (const int value : values) bytes.push_back(static_cast<char>(value));
    return bytes;
}

}  // namespace

TEST(EscapeText, OrdinaryCharactersStandForThemselves) {
    EXPECT_EQ("abc ~[]089", Expanded("abc ~[]089"));
    EXPECT_EQ("\xE4\xFF\x80\n", Expanded("\xE4\xFF\x80\n"));
}

TEST(EscapeText, EmptyTextIsNoBytes) { EXPECT_EQ("", Expanded("")); }

TEST(EscapeText, ThreeOctalDigitsAreOneByte) {
    EXPECT_EQ("\x1B[A", Expanded("\\033[A"));
    EXPECT_EQ(
        "\x9B"
        "1~",
        Expanded("\\2331~"));
    EXPECT_EQ("\x8FP", Expanded("\\217P"));
    EXPECT_EQ("\xFF", Expanded("\\377"));
}

TEST(EscapeText, FewerDigitsEndAtTheNextOtherCharacter) {
    EXPECT_EQ("\x03z", Expanded("\\3z"));
    EXPECT_EQ("\x1Bz", Expanded("\\33z"));
}

TEST(EscapeText, TheDigitsEightAndNineEndAnEscape) {
    EXPECT_EQ(Bytes({0, '8'}), Expanded("\\008"));
    EXPECT_EQ(Bytes({1, '9'}), Expanded("\\19"));
    EXPECT_EQ(Bytes({0, '8'}), Expanded("\\8"));
}

TEST(EscapeText, AFourthDigitStandsForItself) {
    EXPECT_EQ(
        "\x08"
        "1",
        Expanded("\\0101"));
    EXPECT_EQ(Bytes({0, '0'}), Expanded("\\0000"));
}

TEST(EscapeText, ValuesAbove255KeepTheirLow8Bits) {
    EXPECT_EQ(Bytes({0}), Expanded("\\400"));
    EXPECT_EQ(Bytes({0xFF}), Expanded("\\777"));
    EXPECT_EQ(Bytes({0x41}), Expanded("\\501"));
}

TEST(EscapeText, ABackslashBeforeANonDigitIsAZeroByteAndTheCharacter) {
    EXPECT_EQ(Bytes({0, 'x'}), Expanded("\\x"));
    EXPECT_EQ(Bytes({0, 'n'}), Expanded("\\n"));
}

TEST(EscapeText, TwoBackslashesAreTwoZeroBytes) {
    EXPECT_EQ(Bytes({0, 0}), Expanded("\\\\"));
    EXPECT_EQ(Bytes({0, 0, 0, 'a'}), Expanded("\\\\\\a"));
}

TEST(EscapeText, ABackslashEndsAnEscapeAndOpensAnother) {
    EXPECT_EQ("\x1B\x1B", Expanded("\\33\\33"));
    EXPECT_EQ("\x1B\x01", Expanded("\\033\\1"));
}

TEST(EscapeText, TheEndOfTheTextEndsAnEscape) {
    EXPECT_EQ("\x1B", Expanded("\\033"));
    EXPECT_EQ("\x03", Expanded("\\3"));
    EXPECT_EQ(Bytes({'a', 0}), Expanded("a\\"));
}

TEST(EscapeText, EveryByteCanBeWritten) {
    for (int value = 0; value < 256; value++) {
        char text[8];
        snprintf(text, sizeof text, "\\%03o", static_cast<unsigned>(value));
        EXPECT_EQ(Bytes({value}), Expanded(text)) << text;
    }
}

TEST(EscapeText, BytesThatDoNotFitAreDropped) {
    BYTE bytes[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    EXPECT_EQ(3, ExpandEscapeText("ab\\103d\\", bytes, 3));
    EXPECT_EQ('C', bytes[2]);
    EXPECT_EQ(0xEE, bytes[3]);
    EXPECT_EQ(0, ExpandEscapeText("abc", bytes, 0));
    EXPECT_EQ('a', bytes[0]);
}

TEST(UnescapeKeyText, TheResultIsTerminated) {
    EXPECT_STREQ("a longer text", UnescapeKeyText("a longer text"));
    EXPECT_STREQ("ab", UnescapeKeyText("ab"));
    EXPECT_STREQ("", UnescapeKeyText(""));
}

TEST(UnescapeKeyText, NullIsTheEmptyText) {
    UnescapeKeyText("before");
    EXPECT_STREQ("", UnescapeKeyText(nullptr));
}

TEST(UnescapeKeyText, AZeroByteEndsTheSequence) {
    EXPECT_EQ(0u, strlen(UnescapeKeyText("\\008")));
    EXPECT_STREQ("ab", UnescapeKeyText("ab\\0cd"));
}

TEST(UnescapeKeyText, TheBufferIsAlwaysTheSame) {
    const char* first = UnescapeKeyText("first");
    EXPECT_EQ(first, UnescapeKeyText("second"));
    EXPECT_STREQ("second", first);
}

TEST(UnescapeKeyText, SequencesOf254And255BytesAreWhole) {
    for (const size_t length : {254u, 255u}) {
        const std::string text(length, 'x');
        EXPECT_EQ(text, UnescapeKeyText(text.c_str()));
    }
}

TEST(UnescapeKeyText, LongerTextsStopAt255Bytes) {
    EXPECT_EQ(255u, strlen(UnescapeKeyText(std::string(256, 'x').c_str())));
    EXPECT_EQ(255u, strlen(UnescapeKeyText(std::string(100000, 'x').c_str())));
}
