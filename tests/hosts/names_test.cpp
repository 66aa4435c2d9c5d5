// SPDX-License-Identifier: MIT
// docs/hosts_names.md and the table of quill-7's keys, held against the proof and the key table.
#include <gtest/gtest.h>

#include <map>

#include "settings/key_map.h"
#include "tests/guide/page.h"
#include "tests/hosts/proof.h"

// ---------------------------------------------------------------- right names

struct NameRow {
    std::string name;
    PageRow cells;  // name, wrong screens, programs, lacks, not shown, rows to change
};

static void PrintTo(const NameRow& row, std::ostream* stream) { *stream << row.name; }

static std::vector<NameRow> RowsUnder(const char* heading) {
    std::vector<NameRow> rows;
    Page page = ReadPage(QUILL_NAMES_PAGE);
    for (const PageRow& row : page.tables[heading]) {
        for (const std::string& name : CodeOf(row[0])) rows.push_back({name, row});
    }
    return rows;
}

static std::string TestName(const testing::TestParamInfo<NameRow>& info) {
    std::string name = info.param.name;
    for (char& c : name) c = c == '-' ? '_' : c;
    return name;
}

class Names : public testing::TestWithParam<NameRow> {
  protected:
    void SetUp() override {
        const std::string& name = GetParam().name;
        if (!ReadEntry(name, &entry)) GTEST_SKIP() << "there is no entry " << name << " here";
    }

    // Of one kind of loss, with blanks between them.
    std::vector<std::string> Broken(Loss loss) const {
        std::vector<std::string> names;
        for (const Finding& finding : ProveEntry(entry)) {
            if (finding.loss == loss) names.push_back(finding.capability);
        }
        return names;
    }

    TerminfoEntry entry;
};

TEST_P(Names, PromiseNothingThatGivesAWrongScreen) {
    EXPECT_EQ(std::vector<std::string>(), Broken(Loss::kScreen));
    EXPECT_EQ("0", GetParam().cells[1]);
}

// So that a walk with the first name holds for all of them.
TEST_P(Names, AreOneEntryInARow) {
    TerminfoEntry first;
    ASSERT_TRUE(ReadEntry(CodeOf(GetParam().cells[0]).at(0), &first));
    EXPECT_EQ(first.flags, entry.flags);
    EXPECT_EQ(first.numbers, entry.numbers);
    EXPECT_EQ(first.strings, entry.strings);
}

TEST_P(Names, LackWhatThePageSays) {
    TerminfoEntry quill;
    ASSERT_TRUE(ReadEntry("quill", &quill));
    std::vector<std::string> lacking;
    for (const auto& [capability, text] : quill.strings) {
        if (!Has(entry, capability)) lacking.push_back(capability);
    }
    EXPECT_EQ(CodeOf(GetParam().cells[3]), lacking);
}

TEST_P(Names, ShowNothingOfWhatThePageSays) {
    EXPECT_EQ(CodeOf(GetParam().cells[4]), Broken(Loss::kLook));
}

// Rows as the page writes them: "END `\033[4~`; f1 `\033OP`".
static std::map<std::string, std::string> RowsToChange(const std::string& cell) {
    std::map<std::string, std::string> rows;
    for (size_t from = 0; from < cell.size();) {
        const size_t to = std::min(cell.find("; ", from), cell.size());
        const std::string row = cell.substr(from, to - from);
        rows[row.substr(0, row.find(" `"))] = CodeOf(row).at(0);
        from = to + 2;
    }
    return rows;
}

TEST_P(Names, HaveTheirKeysOnceTheRowsOfThePageAreChanged) {
    const std::map<std::string, std::string> rows = RowsToChange(GetParam().cells[5]);
    for (const std::string& capability : KeyCapabilities()) {
        if (!Has(entry, capability)) continue;
        const KeyRow& key = *FindKey(capability);
        const auto changed = rows.find(KeyName(key));
        const std::string sent =
            changed == rows.end() ? SentByDefault(key) : UnescapeKeyText(changed->second.c_str());
        EXPECT_EQ(AsEscapeText(Expand(entry, capability)), AsEscapeText(sent)) << capability;
    }
}

INSTANTIATE_TEST_SUITE_P(OfThePage, Names, testing::ValuesIn(RowsUnder("Right names")), TestName);

// ---------------------------------------------------------------- usual names

class UsualNames : public Names {};

TEST_P(UsualNames, PromiseWhatThePageSays) {
    EXPECT_EQ(CodeOf(GetParam().cells[2]), Broken(Loss::kScreen));
}

INSTANTIATE_TEST_SUITE_P(OfThePage, UsualNames,
                         testing::ValuesIn(RowsUnder("Usual names that go wrong")), TestName);

// ---------------------------------------------------------------- quill-7

static std::map<std::string, std::string> RowsOfQuill7() {
    std::map<std::string, std::string> rows;
    Page page = ReadPage(QUILL_HOSTS_PAGE);
    for (const PageRow& row : page.tables["Keys with an 8-bit byte"]) {
        const std::vector<std::string> texts = CodeOf(row.at(1));
        size_t at = 0;
        for (const std::string& text : texts) {
            const size_t end = std::min(row[0].find(", ", at), row[0].size());
            rows[row[0].substr(at, end - at)] = text;
            at = end + 2;
        }
        EXPECT_GE(at, row[0].size()) << "a row has no text: " << row[0];
    }
    return rows;
}

TEST(Quill7, HasItsKeysOnceTheRowsOfTheHandbookAreChanged) {
    TerminfoEntry entry;
    ASSERT_TRUE(ReadEntry("quill-7", &entry));
    const std::map<std::string, std::string> rows = RowsOfQuill7();
    EXPECT_EQ(12u, rows.size());
    for (int row = 0; row < kKeyRows; ++row) {
        const KeyMapEntry& key = key_map[row];
        const auto changed = rows.find(key.name);
        const std::string sent =
            UnescapeKeyText(changed == rows.end() ? key.defaultText : changed->second.c_str());
        for (const char c : sent) EXPECT_EQ(0, c & 0x80) << key.name << " begins with 8 bits";
    }
    for (const int number : {1, 2, 3, 4}) {
        const std::string digit = std::to_string(number);
        EXPECT_EQ(rows.at("f" + digit), rows.at("Ctrl " + digit));
    }
    for (const std::string& capability : KeyCapabilities()) {
        const KeyRow& key = *FindKey(capability);
        if (!Has(entry, capability)) continue;
        const auto changed = rows.find(KeyName(key));
        const std::string sent =
            changed == rows.end() ? SentByDefault(key) : UnescapeKeyText(changed->second.c_str());
        EXPECT_EQ(AsEscapeText(Expand(entry, capability)), AsEscapeText(sent)) << capability;
    }
}
