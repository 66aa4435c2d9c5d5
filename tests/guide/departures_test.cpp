// SPDX-License-Identifier: MIT
// The last column of docs/sequences.md, where the terminal differs: each of its texts has a test of
// that title in departures.test, which feeds the terminal and looks at what it does.
#include <gtest/gtest.h>

#include <set>

#include "tests/guide/page.h"
#include "tests/terminal/script.h"
#include "tests/terminal/terminal_state.h"

namespace {

const std::vector<ScriptSection>& Sections() {
    static const std::vector<ScriptSection> sections = [] {
        std::string error;
        std::vector<ScriptSection> all = ReadScript(QUILL_GUIDE "/departures.test", &error);
        EXPECT_EQ(error, "");
        return all;
    }();
    return sections;
}

// Runs the section on a used terminal: the ring has turned, all attributes were on, all is erased.
ScriptSection InUse(ScriptSection section) {
    const int line = section.line;
    section.lines.insert(section.lines.begin(),
                         {{line, "!used 60"}, {line, "PUSH \"\\e[m\\e[2J\\e[H\""}});
    return section;
}

class Departure : public testing::TestWithParam<size_t> {};

TEST_P(Departure, IsAsThePageSays) {
    const ScriptSection section = InUse(Sections()[GetParam()]);
    SCOPED_TRACE(section.title);
    std::string whole, bytes;
    for (const std::string& message : RunSection(section, FeedWhole, &whole))
        ADD_FAILURE() << message;
    for (const std::string& message : RunSection(section, FeedByteByByte, &bytes))
        ADD_FAILURE() << message << " (byte by byte)";
    EXPECT_EQ(whole, bytes);
}

// "Private modes `? 5`" becomes PrivateModes5, with the number of the test before it.
std::string NameOf(const testing::TestParamInfo<size_t>& info) {
    const std::string& title = Sections()[info.param].title;
    std::string name = std::to_string(info.param);
    for (const char c : title.substr(0, title.find(':')))
        if (isalnum(static_cast<unsigned char>(c))) name += c;
    return name;
}

INSTANTIATE_TEST_SUITE_P(Of, Departure, testing::Range(size_t{0}, Sections().size()), NameOf);

// Tables that say in their last column where the terminal differs, and that of the resets.
TEST(DeparturesPage, EachTextHasATestOfItsTitle) {
    const std::set<std::string> sections = {
        "The waiting wrap", "Control characters", "Escape sequences",
        "Line sizes",       "Character sets",     "Control sequences",
        "ANSI modes",       "Private modes",      "Resets"};
    std::set<std::string> on_page, tested;
    Page page = ReadPage(QUILL_DOCS "/sequences.md");
    for (const std::string& section : sections) {
        for (const PageRow& row : page.tables[section]) {
            if (!row.back().empty()) on_page.insert(section + " " + row[0] + ": " + row.back());
        }
    }
    for (const ScriptSection& section : Sections()) tested.insert(section.title);
    EXPECT_EQ(on_page, tested);
    EXPECT_EQ(tested.size(), Sections().size()) << "two tests have the same title";
}

}  // namespace
