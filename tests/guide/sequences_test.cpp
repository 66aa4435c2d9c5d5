// SPDX-License-Identifier: MIT
// Compares docs/sequences.md with the terminal: each row of the tables in the code has a line with
// its name on the page, and each line has a row. Sequences that the page does not list do nothing.
// The terminal sends the reports of the page.
#include <gtest/gtest.h>
#include <map>
#include <set>

#include "terminal/screen_buffer.h"
#include "tests/guide/page.h"
#include "tests/guide/table_source.h"
#include "tests/terminal/terminal_state.h"

namespace {

// The rows of a table: a key in the form of the page, and its names.
typedef std::map<std::string, std::set<std::string>> Names;

const Page& SequencesPage() {
    static const Page page = ReadPage(QUILL_DOCS "/sequences.md");
    return page;
}

std::set<std::string> SplitNames(const std::string& text) {
    std::set<std::string> names;
    for (size_t from = 0; from < text.size();) {
        const size_t to = std::min(text.find(", ", from), text.size());
        names.insert(text.substr(from, to - from));
        from = to + 2;
    }
    return names;
}

// The last word of the first cell is the key; several texts in backticks are several keys.
std::vector<std::string> KeysOf(const PageRow& row) {
    std::vector<std::string> keys;
    for (const std::string& code : CodeOf(row[0])) {
        keys.push_back(code.substr(code.find_last_of(' ') + 1));
    }
    EXPECT_FALSE(keys.empty()) << row[0];
    return keys;
}

Names PageNames(const std::string& heading) {
    Names names;
    const auto table = SequencesPage().tables.find(heading);
    if (table == SequencesPage().tables.end()) {
        ADD_FAILURE() << "the page has no table under " << heading;
        return names;
    }
    for (const PageRow& row : table->second) {
        for (const std::string& key : KeysOf(row)) {
            if (row.size() > 1) names[key].merge(SplitNames(row[1]));
        }
    }
    return names;
}

std::string KeyOfByte(int byte) {
    if (byte == ' ') return "SP";
    if (byte == 8) return "BS";
    if (byte == 27) return "ESC";
    return std::string(1, static_cast<char>(byte));
}

std::string Hexadecimal(int byte) {
    char text[8];
    snprintf(text, sizeof text, "%02X", static_cast<unsigned>(byte));
    return text;
}

typedef std::string (*KeyOf)(int byte);

Names CodeNames(const std::string& file, const std::string& table, KeyOf key = KeyOfByte) {
    Names names;
    for (const SourceRow& row : ReadTable(file, table)) {
        names[key(ByteOfField(row.fields[0]))].merge(SplitNames(row.remark));
    }
    return names;
}

Names CodeNumbers(const std::string& file, const std::string& table) {
    return CodeNames(file, table, [](int number) { return std::to_string(number); });
}

// Rows of the escape table that act in a mode; column 1 is ANSI mode, 2 is VT52 mode.
Names Escapes(bool vt52) {
    Names names;
    for (const SourceRow& row : ReadTable("escape_sequences.cpp", "kEscapeRows")) {
        const bool same = row.fields[1] == row.fields[2];
        const std::string& handler = row.fields[vt52 ? 2 : 1];
        if (handler == "kNothing" || (vt52 && same)) continue;
        std::set<std::string>& listed = names[KeyOfByte(ByteOfField(row.fields[0]))];
        listed = vt52 ? std::set<std::string>{"VT52"} : SplitNames(row.remark);
    }
    return names;
}

// ---------------------------------------------------------------- tables and page

TEST(SequencesPage, ControlCharactersAreThoseOfTheTable) {
    EXPECT_EQ(PageNames("Control characters"),
              CodeNames("interpreter.cpp", "kControlRows", Hexadecimal));
}

TEST(SequencesPage, EscapeSequencesAreThoseOfTheTable) {
    EXPECT_EQ(PageNames("Escape sequences"), Escapes(false));
}

TEST(SequencesPage, Vt52SequencesAreThoseOfTheTable) {
    EXPECT_EQ(PageNames("VT52 mode"), Escapes(true));
}

TEST(SequencesPage, OnlySevenAndEightBitRepliesAreMissingInVt52Mode) {
    std::set<std::string> missing;
    for (const SourceRow& row : ReadTable("escape_sequences.cpp", "kEscapeRows")) {
        if (row.fields[2] == "kNothing") missing.insert(row.fields[0]);
    }
    EXPECT_EQ(missing, (std::set<std::string>{"'F'", "'G'"})) << "the page names these two";
}

TEST(SequencesPage, LineSizesAreThoseOfTheTable) {
    EXPECT_EQ(PageNames("Line sizes"), CodeNames("escape_sequences.cpp", "kLineSizeRows"));
}

// The first table of that section lists the bytes inside a sequence, the second the finals.
TEST(SequencesPage, ControlSequencesAreThoseOfTheTables) {
    Names inner, finals, expected_inner;
    for (const PageRow& row : SequencesPage().tables.at("Control sequences")) {
        const bool final = CodeOf(row[0]).at(0).rfind("CSI ", 0) == 0;
        for (const std::string& key : KeysOf(row))
            (final ? finals : inner)[key].merge(SplitNames(row[1]));
    }
    EXPECT_EQ(finals, CodeNames("control_sequences.cpp", "kFinalRows"));
    std::set<std::string> keys;
    for (const SourceRow& row : ReadTable("control_sequences.cpp", "kInnerRows")) {
        keys.insert(KeyOfByte(ByteOfField(row.fields[0])));
        keys.insert(KeyOfByte(ByteOfField(row.fields[1])));
    }
    std::set<std::string> listed;
    for (const auto& [key, names] : inner) listed.insert(key);
    EXPECT_EQ(listed, keys);
}

TEST(SequencesPage, AttributesAreThoseOfTheTable) {
    std::set<std::string> expected, listed;
    for (const SourceRow& row : ReadTable("modes.cpp", "kRenditions"))
        expected.insert(row.fields[0]);
    for (const PageRow& row : SequencesPage().tables.at("Attributes"))
        listed.insert(CodeOf(row[0]).at(0));
    EXPECT_EQ(listed, expected);
}

TEST(SequencesPage, ModesAreThoseOfTheTables) {
    EXPECT_EQ(PageNames("ANSI modes"), CodeNumbers("modes.cpp", "kAnsiModes"));
    EXPECT_EQ(PageNames("Private modes"), CodeNumbers("modes.cpp", "kPrivateModes"));
}

TEST(SequencesPage, StatusReportsAreThoseOfTheTable) {
    Names expected = CodeNumbers("reports.cpp", "kStatus");
    Names listed;
    for (const PageRow& row : SequencesPage().tables.at("Reports")) {
        const std::string request = CodeOf(row[0]).at(0);
        if (request.rfind("\\e[", 0) != 0 || request.back() != 'n') continue;
        listed[request.substr(3, request.size() - 4)] = SplitNames(row[1]);
    }
    EXPECT_EQ(listed, expected);
}

// ---------------------------------------------------------------- page and terminal

// What the bytes change in a used terminal, without the fields of the interpreter.
std::string Changes(const std::string& bytes, bool vt52 = false) {
    NewTerminal();
    std::string replies;
    FeedByteByByte("\x1b[3;20r\x1b[7m\x1b[10;7Htext\x1b[5;9H", &replies);
    if (vt52) FeedByteByByte("\x1b[?2l", &replies);
    TerminalSnapshot before = TakeSnapshot();
    FeedByteByByte(bytes, &replies);
    TerminalSnapshot after = TakeSnapshot();
    after.parser = before.parser;
    return replies + FirstDifference(before, after);
}

// Expects that the bytes change nothing, unless the page lists them.
void ExpectNothing(const std::string& bytes, bool listed, bool vt52 = false) {
    if (listed) return;
    EXPECT_EQ(Changes(bytes, vt52), "") << testing::PrintToString(bytes) << (vt52 ? " VT52" : "");
}

std::set<std::string> KeySet(const Names& names) {
    std::set<std::string> keys;
    for (const auto& [key, unused] : names) keys.insert(key);
    return keys;
}

TEST(SequencesPage, EscapeSequencesThatItDoesNotListDoNothing) {
    const std::set<std::string> listed = KeySet(PageNames("Escape sequences"));
    std::set<std::string> vt52 = KeySet(PageNames("VT52 mode"));
    vt52.insert(listed.begin(), listed.end());
    for (int byte = 0; byte < 256; ++byte) {
        const std::string key = KeyOfByte(byte);
        const std::string sequence = std::string("\x1b") + static_cast<char>(byte);
        ExpectNothing(sequence, listed.contains(key));
        ExpectNothing(sequence, vt52.contains(key), true);
    }
}

TEST(SequencesPage, ControlSequencesThatItDoesNotListDoNothing) {
    const std::set<std::string> listed = KeySet(PageNames("Control sequences"));
    for (int byte = 0; byte < 256; ++byte) {
        const bool digit = byte >= '0' && byte <= '9';
        if (digit || listed.contains(KeyOfByte(byte))) continue;
        for (const char* numbers : {"", "2", "2;1", "?2", ">2"}) {
            EXPECT_EQ(Changes(std::string("\x1b[") + numbers + static_cast<char>(byte)), "")
                << numbers << " and byte " << byte;
        }
    }
}

TEST(SequencesPage, ControlCharactersThatItDoesNotListDoNothing) {
    const std::set<std::string> listed = KeySet(PageNames("Control characters"));
    for (int byte = 0; byte < 32; ++byte) {
        if (listed.contains(Hexadecimal(byte))) continue;
        EXPECT_EQ(Changes(std::string(1, static_cast<char>(byte))), "") << byte;
    }
}

TEST(SequencesPage, BytesFrom32OnAreCharactersButForTheFiveThatItLists) {
    const std::set<std::string> listed = KeySet(PageNames("Control characters"));
    for (int byte = 32; byte < 256; ++byte) {
        NewTerminal();
        std::string replies;
        FeedByteByByte(std::string(1, static_cast<char>(byte)), &replies);
        const bool printed = session.screen.cursor_col == 2;
        EXPECT_EQ(printed, !listed.contains(Hexadecimal(byte))) << byte;
    }
}

TEST(SequencesPage, CharacterSetsAreTheThreeThatItLists) {
    const std::set<std::string> listed = KeySet(PageNames("Character sets"));
    for (int byte = 0; byte < 256; ++byte) {
        NewTerminal();
        session.modes.g0_set = 7;
        std::string replies;
        FeedByteByByte(std::string("\x1b(") + static_cast<char>(byte), &replies);
        EXPECT_EQ(session.modes.g0_set != 7, listed.contains(KeyOfByte(byte))) << byte;
    }
}

TEST(SequencesPage, ModesThatItDoesNotListDoNothing) {
    const std::set<std::string> ansi = KeySet(PageNames("ANSI modes"));
    const std::set<std::string> dec = KeySet(PageNames("Private modes"));
    for (int mode = 0; mode < 2100; ++mode) {
        const std::string number = std::to_string(mode);
        for (const char* final : {"h", "l"}) {
            ExpectNothing("\x1b[" + number + final, ansi.contains(number));
            ExpectNothing("\x1b[?" + number + final, dec.contains(number));
        }
    }
}

TEST(SequencesPage, AttributesThatItDoesNotListDoNothing) {
    std::set<std::string> listed;
    for (const PageRow& row : SequencesPage().tables.at("Attributes"))
        listed.insert(CodeOf(row[0]).at(0));
    for (int value = 0; value < 256; ++value) {
        const std::string number = std::to_string(value);
        ExpectNothing("\x1b[" + number + "m", listed.contains(number));
    }
}

TEST(SequencesPage, ReportsAreSentAsItListsThem) {
    int reports = 0;
    for (const PageRow& row : SequencesPage().tables.at("Reports")) {
        const std::string request = BytesOf(CodeOf(row[0]).at(0));
        std::string seven_bit, eight_bit;
        NewTerminal();
        FeedByteByByte(request, &seven_bit);
        NewTerminal();
        FeedByteByByte("\x1b G" + request, &eight_bit);
        EXPECT_EQ(seven_bit, BytesOf(CodeOf(row[2]).at(0))) << row[0];
        EXPECT_EQ(eight_bit, BytesOf(CodeOf(row[3]).at(0))) << row[0];
        reports++;
    }
    EXPECT_EQ(reports, 13);
}

// Sequences of other terminals, and what of each this terminal shows.
TEST(SequencesPage, ExamplesOfWhatShowsAreTrue) {
    struct {
        const char* bytes;
        const char* shown;
    } examples[] = {
        {"\x1b]0;title\a", "0;title"}, {"\x1b*0", "0"},   {"\x1b%G", "G"},
        {"\x1b[38:5:1m", "5:1m"},      {"\x1b[2 q", "q"}, {"\x1b[=c", "c"},
    };
    for (const auto& example : examples) {
        NewTerminal();
        std::string replies, shown;
        FeedByteByByte(example.bytes, &replies);
        for (int col = 1; col < session.screen.cursor_col; ++col)
            shown += static_cast<char>(GetCell(1, col) & 0xff);
        EXPECT_EQ(shown, example.shown);
    }
    NewTerminal();
    std::string replies;
    FeedByteByByte("\x1b[38;5;1m", &replies);
    EXPECT_EQ(session.screen.current_attr, kCellBlink | kCellBold);
    FeedByteByByte("\x1b[0m\x1b[>4;1m", &replies);
    EXPECT_EQ(session.screen.current_attr, kCellUnderline | kCellBold);
}

}  // namespace
