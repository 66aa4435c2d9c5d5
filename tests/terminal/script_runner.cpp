// SPDX-License-Identifier: MIT
// Registers every section of the scripts in this folder as a separate test: the file's name without
// its number is the suite, the section's title the test. A section runs twice, with each PUSH as
// one chunk and byte by byte, and both runs must end in the same state.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

#include "tests/terminal/script.h"
#include "tests/terminal/terminal_state.h"

class ScriptTest : public testing::Test {
  public:
    explicit ScriptTest(const ScriptSection& section) : section_(section) {}

    void TestBody() override {
        std::string replies_whole, replies_bytes;
        for (const std::string& message : RunSection(section_, FeedWhole, &replies_whole)) {
            ADD_FAILURE() << message;
        }
        const TerminalSnapshot whole = TakeSnapshot();
        for (const std::string& message : RunSection(section_, FeedByteByByte, &replies_bytes)) {
            ADD_FAILURE() << message << "\n    (byte by byte)";
        }
        EXPECT_EQ(replies_whole, replies_bytes);
        EXPECT_EQ("", FirstDifference(whole, TakeSnapshot()));
    }

  private:
    ScriptSection section_;
};

// "Tab on column 80" becomes TabOnColumn80.
static std::string Identifier(const std::string& title) {
    std::string name;
    bool first = true;
    for (char c : title) {
        const bool kept = isalnum(static_cast<unsigned char>(c)) != 0;
        if (kept) name += first ? static_cast<char>(toupper(c)) : c;
        first = !kept;
    }
    return name;
}

static std::string Stem(const std::filesystem::path& path) {
    const std::string stem = path.stem().string();
    return stem.substr(stem.find_first_not_of("0123456789"));
}

static bool RegisterScript(const std::filesystem::path& path) {
    std::string error;
    std::set<std::string> names;
    for (const ScriptSection& section : ReadScript(path.string(), &error)) {
        const std::string name = Identifier(section.title);
        if (!names.insert(name).second) error = path.string() + ": two tests named " + name;
        testing::RegisterTest(Identifier(Stem(path)).c_str(), name.c_str(), nullptr, nullptr,
                              path.string().c_str(), section.line,
                              [section]() -> testing::Test* { return new ScriptTest(section); });
    }
    if (names.empty() && error.empty()) error = path.string() + ": no test in it";
    if (!error.empty()) fprintf(stderr, "%s\n", error.c_str());
    return error.empty();
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(QUILL_TERMINAL_SCRIPTS)) {
        if (entry.path().extension() == ".test") paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    for (const auto& path : paths) {
        if (!RegisterScript(path)) return 2;
    }
    return RUN_ALL_TESTS();
}
