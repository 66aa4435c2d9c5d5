// SPDX-License-Identifier: MIT
// The source of the entries, read by tic, and the forms in which older systems take them.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/guide/page.h"
#include "tests/hosts/proof.h"

static const char* const kEntries[] = {"quill", "quill-7"};

static std::string OutputOf(const std::string& command) {
    std::string output;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return "cannot run " + command;
    char line[400];
    while (fgets(line, sizeof line, pipe)) output += line;
    const int status = pclose(pipe);
    return status == 0 ? output : output + "exit status " + std::to_string(status);
}

static std::string ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// Also with all that tic can check, and with the names of later versions allowed.
TEST(Tic, ReadsTheSourceWithoutAWarning) {
    EXPECT_EQ("", OutputOf("tic -c " QUILL_TERMINFO_SOURCE));
    EXPECT_EQ("", OutputOf("tic -c -x " QUILL_TERMINFO_SOURCE));
}

// The short forms of older systems keep all that paints: what they drop are names that they lack.
TEST(Tic, ReadsOlderFormsWithoutAWarning) {
    for (const char* form : {"SVr1", "Ultrix", "HP", "BSD"}) {
        for (const char* entry : kEntries) {
            const std::string older = std::string("infocmp -R ") + form + " " + entry;
            EXPECT_EQ("", OutputOf(older + " | tic -c -")) << form;
        }
    }
}

// ---------------------------------------------------------------- the text

// The source without its remarks.
static std::string SourceText() {
    std::ifstream file(QUILL_TERMINFO_SOURCE);
    std::string text;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line[0] != '#') text += line + "\n";
    }
    return text;
}

// Of a line "name|description," and of fields such as "am", "cols#80" and "bel=^G".
static std::set<std::string> NamesInTheSource() {
    std::set<std::string> names;
    std::string field;
    bool escaped = false;
    for (const char c : SourceText()) {
        if (c != ',' || escaped) {
            field += c;
            escaped = c == '\\' && !escaped;
            continue;
        }
        field.erase(0, field.find_first_not_of(" \t\n"));
        if (field.find('|') == std::string::npos)
            names.insert(field.substr(0, field.find_first_of("=#")));
        field.clear();
    }
    return names;
}

// An old tic refuses what it has no name for.
TEST(Tic, FindsOnlyNamesThatEveryCursesHas) {
    const std::set<std::string> flags = FlagNames(), numbers = NumberNames(),
                                strings = StringNames();
    const std::set<std::string> names = NamesInTheSource();
    EXPECT_GE(names.size(), 90u);
    for (const std::string& name : names) {
        EXPECT_TRUE(flags.count(name) || numbers.count(name) || strings.count(name) ||
                    name == "use")
            << name;
        EXPECT_LE(name.size(), 5u) << name << ": curses has short names of five characters";
    }
}

// Telnet sends at most 40 characters, file systems of old hosts take 14, and a description has a
// blank in it, which tells it from a name.
TEST(Tic, FindsNamesThatEveryHostTakes) {
    int heads = 0;
    std::ifstream file(QUILL_TERMINFO_SOURCE);
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#' || line[0] == '\t') {
            EXPECT_LT(line.size(), 256u);
            continue;
        }
        const size_t bar = line.find('|');
        ASSERT_NE(std::string::npos, bar);
        EXPECT_EQ(bar, line.rfind('|')) << "one name";
        EXPECT_LE(bar, 14u);
        EXPECT_EQ(std::string::npos, line.substr(0, bar).find_first_of(" /"));
        EXPECT_NE(std::string::npos, line.find(' ', bar));
        ++heads;
    }
    EXPECT_EQ(2, heads);
}

// What ./run prints is pasted into a shell, whatever the folder is called.
TEST(Tic, IsFoundByTheLineThatRunPrintsInAnyFolder) {
    std::string folder = (std::filesystem::temp_directory_path() / "quill it's.XXXXXX").string();
    ASSERT_NE(nullptr, mkdtemp(folder.data()));
    const std::string print =
        "cd \"" + folder + "\" && sh -c \"$(grep 'export TERM=quill' " + QUILL_RUN ")\"";
    const std::string line = OutputOf(print);
    EXPECT_EQ(0u, line.find("    export TERM=quill TERMINFO=")) << line;
    std::ofstream(folder + "/line") << line << "echo $TERM $TERMINFO\n";
    EXPECT_EQ("quill " + folder + "/build/release/resources/terminfo\n",
              OutputOf("sh \"" + folder + "/line\""));
    std::filesystem::remove_all(folder);
}

// ---------------------------------------------------------------- the compiled form

static int ShortAt(const std::string& bytes, size_t index) {
    const auto byte = [&](size_t at) { return static_cast<unsigned char>(bytes.at(at)); };
    return byte(2 * index) | byte(2 * index + 1) << 8;
}

// The form of System V: a header of six numbers, and after its five sections nothing else, which is
// where later versions put names of their own. term(5)
TEST(Tic, WritesTheFormThatOldVersionsRead) {
    for (const std::string entry : kEntries) {
        const std::string bytes = ReadFile(std::filesystem::path(QUILL_TERMINFO) / "q" / entry);
        ASSERT_GE(bytes.size(), 12u) << entry;
        EXPECT_EQ(0432, ShortAt(bytes, 0)) << "numbers of 16 bits";
        const int names = ShortAt(bytes, 1), flags = ShortAt(bytes, 2), numbers = ShortAt(bytes, 3);
        const int strings = ShortAt(bytes, 4), table = ShortAt(bytes, 5);
        const int before = 12 + names + flags + (names + flags) % 2;
        EXPECT_EQ(before + 2 * numbers + 2 * strings + table, static_cast<int>(bytes.size()));
        EXPECT_LE(bytes.size(), 4096u) << "the longest that they read";
        EXPECT_LE(names, 128) << "the longest names that they read";
    }
}

TEST(Tic, WritesTheSameWithAndWithoutNamesOfLaterVersions) {
    for (const std::string entry : kEntries) {
        EXPECT_EQ(OutputOf("infocmp -1 " + entry + " | grep -v '^#'"),
                  OutputOf("infocmp -1 -x " + entry + " | grep -v '^#'"));
    }
}

// ---------------------------------------------------------------- forms that older systems take

// A termcap entry has 1023 bytes at most.
TEST(OlderForm, OfTermcapFitsTheBuffer) {
    for (const std::string entry : kEntries) {
        const std::string termcap = OutputOf("infocmp -Cr " + entry + " | grep -v '^#'");
        EXPECT_LE(termcap.size(), 1023u);
        for (const char* needed :
             {":am:", ":xn:", ":cm=", ":cs=", ":al=", ":DL=", ":ce=", ":k1=", ":is="}) {
            EXPECT_NE(std::string::npos, termcap.find(needed)) << needed;
        }
    }
}

static std::string TermcapBox() {
    const std::string recipe = ReadPage(QUILL_HOSTS_PAGE).recipes.at("termcap");
    const size_t start = recipe.find("<<'END'\n") + 8;
    return recipe.substr(start, recipe.find("END\n", start) - start);
}

// The entry with its lines joined, as a program has it in its buffer.
static std::string JoinedTermcap(std::string text, const std::string& entry) {
    for (size_t at; (at = text.find("\\\n")) != std::string::npos;) text.erase(at, 2);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind(entry + '|', 0) == 0) return line;
    }
    ADD_FAILURE() << "no entry " << entry;
    return "|:";
}

// "am", "co#80" and "bl=^G"; without those that begin with a point, which programs skip.
static std::set<std::string> TermcapFields(const std::string& command_output,
                                           const std::string& entry) {
    const std::string joined = JoinedTermcap(command_output, entry);
    std::istringstream text(joined.substr(joined.find(':')));
    std::set<std::string> fields;
    for (std::string field; std::getline(text, field, ':');) {
        field.erase(0, field.find_first_not_of(" \t"));
        if (!field.empty() && field[0] != '.') fields.insert(field);
    }
    return fields;
}

// What infocmp makes, and of what it leaves out for the length: keys and line drawing.
static std::set<std::string> TermcapOfTheHandbook(const std::string& entry) {
    const std::set<std::string> more = {"@7", "F1", "F2", "F3", "F4", "F5", "F6",
                                        "F7", "F8", "F9", "FA", "k;", "ac"};
    std::set<std::string> fields = TermcapFields(OutputOf("infocmp -Cr " + entry), entry);
    for (const std::string& field : TermcapFields(OutputOf("infocmp -CrT " + entry), entry)) {
        if (more.count(field.substr(0, 2)) == 1) fields.insert(field);
    }
    return fields;
}

TEST(OlderForm, OfTermcapIsTheHandbooks) {
    EXPECT_EQ(TermcapFields(TermcapBox(), "quill"), TermcapOfTheHandbook("quill"));
    EXPECT_EQ(1u, TermcapOfTheHandbook("quill").count("FA=\\E[34~"));
}

// Fields of the shorter entry come before those of the other, so that they count.
TEST(OlderForm, OfTermcapWithKeysOfSevenBitsDiffersInThoseOnly) {
    const std::set<std::string> own = TermcapFields(TermcapBox(), "quill-7");
    std::set<std::string> expected = {"tc=quill"};
    const std::set<std::string> other = TermcapOfTheHandbook("quill");
    for (const std::string& field : TermcapOfTheHandbook("quill-7")) {
        if (other.count(field) == 0) expected.insert(field);
    }
    EXPECT_EQ(own, expected);
}

// `tc=` is replaced by the other entry's fields.
TEST(OlderForm, OfTermcapOfTheHandbookFitsTheBuffer) {
    const std::string quill = JoinedTermcap(TermcapBox(), "quill");
    const std::string seven = JoinedTermcap(TermcapBox(), "quill-7");
    EXPECT_LE(quill.size(), 1023u);
    const size_t fields = quill.size() - quill.find(':');
    EXPECT_LE(seven.size() - std::string("tc=quill:").size() + fields, 1023u);
}

// An entry compiled from what `command` prints, read back.
static TerminfoEntry Recompiled(const std::string& command, const std::string& name) {
    std::string folder = (std::filesystem::temp_directory_path() / "quill-tic.XXXXXX").string();
    EXPECT_NE(nullptr, mkdtemp(folder.data()));
    EXPECT_EQ("", OutputOf(command + " | tic -o " + folder + " -"));
    TerminfoEntry entry;
    setenv("TERMINFO", folder.c_str(), 1);
    EXPECT_TRUE(ReadEntry(name, &entry)) << command;
    setenv("TERMINFO", QUILL_TERMINFO, 1);
    std::filesystem::remove_all(folder);
    return entry;
}

// What is left of the entry still promises nothing that is not kept, but for `given`: what curses
// itself gives to entries of such a form.
static void ExpectProven(const std::string& command, const std::set<std::string>& given) {
    SCOPED_TRACE(command);
    const TerminfoEntry entry = Recompiled(command, "quill");
    EXPECT_GE(entry.strings.size(), 50u);
    for (const Finding& finding : ProveEntry(entry)) {
        EXPECT_EQ(Loss::kLook, finding.loss) << finding.capability << ": " << finding.message;
        EXPECT_EQ(1u, given.count(finding.capability)) << finding.capability << finding.message;
    }
    for (const char* needed : {"cup", "csr", "el", "ed", "il1", "dl1", "smso", "kcuu1", "kf1"})
        EXPECT_TRUE(Has(entry, needed)) << needed;
}

// They know one line drawing set, all of the VT100's.
TEST(OlderForm, OfEachSystemPassesTheProof) {
    for (const char* form : {"SVr1", "Ultrix", "HP", "BSD"})
        ExpectProven(std::string("infocmp -R ") + form + " quill", {"acsc"});
}

// Its string that ends attributes leaves line drawing to another.
TEST(OlderForm, OfTermcapPassesTheProof) { ExpectProven("infocmp -Cr quill", {"acsc", "sgr0"}); }

TEST(OlderForm, OfTheHandbookPassesTheProof) {
    ExpectProven("{ cat <<'BOX'\n" + TermcapBox() + "BOX\n}", {"sgr0"});
}
