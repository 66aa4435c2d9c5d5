// SPDX-License-Identifier: MIT
// UTF-8 letters whose bytes are control codes of the terminal: the table of docs/hosts.md.
#include <gtest/gtest.h>

#include "terminal/sequences.h"
#include "tests/guide/page.h"
#include "tests/terminal/terminal_state.h"

namespace {

enum Effect { kDown, kUp, kNothing, kSilence, kSequence, kText };

// In the middle of the screen.
Effect EffectOf(const std::string& letter) {
    NewTerminal();
    std::string replies;
    FeedByteByByte("\x1b[12;40H" + letter, &replies);
    if (session.parser.parser_state == kStateDeviceControl) return kSilence;
    if (session.parser.parser_state == kStateControlSequence) return kSequence;
    if (session.screen.cursor_row != 12) return session.screen.cursor_row > 12 ? kDown : kUp;
    const int shown = session.screen.cursor_col - 40;
    return shown < static_cast<int>(letter.size()) ? kNothing : kText;
}

TEST(AccentsPage, LettersOfTheTableDoWhatItSays) {
    const Page page = ReadPage(QUILL_DOCS "/hosts.md");
    const auto rows = page.tables.find("Accents and UTF-8");
    ASSERT_NE(rows, page.tables.end());
    const std::map<std::string, Effect> effects = {
        {"84", kDown}, {"8D", kUp}, {"8F", kNothing}, {"90", kSilence}, {"9B", kSequence}};
    std::map<std::string, Effect> listed;
    for (const PageRow& row : rows->second) {
        const std::string byte = CodeOf(row[0]).at(0);
        listed[byte] = effects.at(byte);
        const std::string raw = BytesOf("\\x" + byte);
        EXPECT_GE(CodeOf(row[1]).size(), 2u);
        for (const std::string& letter : CodeOf(row[1])) {
            EXPECT_NE(letter.find(raw), std::string::npos) << letter << " has no byte " << byte;
            EXPECT_EQ(EffectOf(letter), effects.at(byte)) << letter;
        }
    }
    EXPECT_EQ(listed, effects) << "the five bytes that are controls";
    EXPECT_EQ(CodeOf(rows->second.at(3)[1]).back(), "\xE2\x80\x90") << "hyphens of manual pages";
}

// All of the table's bytes, and the two signs of the code page.
TEST(AccentsPage, BytesOfTheTableAreControlsInTheCodePageToo) {
    EXPECT_EQ(EffectOf("\x84"), kDown);
    EXPECT_EQ(EffectOf("\x8D"), kUp);
    EXPECT_EQ(EffectOf("\x8F"), kNothing);
    EXPECT_EQ(EffectOf("\x90"), kSilence);
    EXPECT_EQ(EffectOf("\x9B"), kSequence);
    EXPECT_EQ(EffectOf("\x80\x93\x94\x96"), kText) << "the euro, quotes and a dash";
}

TEST(AccentsPage, OtherLettersShowAsTwoOrThree) {
    for (const char* letter : {"\xC3\xA9", "\xC3\xBC", "\xC3\x9F", "\xE2\x82\xAC"})
        EXPECT_EQ(EffectOf(letter), kText) << letter;
}

}  // namespace
