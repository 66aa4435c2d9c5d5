// SPDX-License-Identifier: MIT
// The entry `quill` as it is compiled: every capability is a test of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "settings/key_map.h"
#include "tests/hosts/proof.h"

static TerminfoEntry quill;

class CapabilityTest : public testing::Test {
  public:
    explicit CapabilityTest(const std::string& capability) : capability_(capability) {}

    void TestBody() override {
        for (const Finding& finding : ProveCapability(quill, capability_)) {
            ADD_FAILURE() << finding.capability << " (" << LossName(finding.loss)
                          << "): " << finding.message;
        }
    }

  private:
    std::string capability_;
};

static std::string TestName(const std::string& capability) {
    return capability.substr(0, 3) == "no " ? "No_" + capability.substr(3) : capability;
}

// ---------------------------------------------------------------- what the entry lacks

// Strings of other entries that the terminal carries out and `quill` leaves out, with the reason.
struct LeftOut {
    const char* capability;
    const char* reason;
};

// clang-format off
static const LeftOut kLeftOut[] = {
    {"cvvis", "the cursor has no second look"},
    {"enacs", "smacs and rmacs designate G0 themselves"},
    {"ich1",  "ich does it, and programs that find ich1 beside smir insert twice"},
    {"is1",   "is2 does it all"},
    {"is3",   "is2 does it all"},
    {"ll",    "cup is as short"},
    {"rmcup", "there is nothing to come back to"},
    {"rmkx",  "keys send the same in every mode"},
    {"rs3",   "rs1 and rs2 do it all"},
    {"smcup", "there is no other screen"},
    {"smkx",  "keys send the same in every mode"},
};
// clang-format on

static const char* const kOtherEntries[] = {"vt52",  "vt100", "vt102",  "vt220", "ansi",
                                            "linux", "xterm", "screen", "sun",   "rxvt"};

static bool ListedAsLeftOut(const std::string& capability) {
    for (const LeftOut& row : kLeftOut) {
        if (capability == row.capability) return true;
    }
    return false;
}

// A key string of another entry is not what the key table sends, and promises nothing by itself.
static bool IsCandidate(const std::string& capability) {
    const CheckRow* look = FindLookCheck(capability);
    const bool neutral = look && look->check == FindLookCheck("pad")->check;
    return !Has(quill, capability) && capability[0] != 'k' && !neutral;
}

TEST(Entry, LacksOnlyWhatIsListed) {
    for (const char* name : kOtherEntries) {
        TerminfoEntry other;
        ASSERT_TRUE(ReadEntry(name, &other)) << name;
        for (const auto& [capability, text] : other.strings) {
            if (!IsCandidate(capability) || ListedAsLeftOut(capability)) continue;
            TerminfoEntry extended = quill;
            extended.strings[capability] = text;
            EXPECT_FALSE(ProveCapability(extended, capability).empty())
                << "the terminal does " << capability << "=" << AsEscapeText(text) << " of "
                << name;
        }
    }
}

TEST(Entry, EveryKeyOfTheTableThatCursesKnowsIsInIt) {
    for (const std::string& name : KeyCapabilities()) {
        const KeyRow& key = *FindKey(name);
        // Shift+Tab sends the same as Tab, which is no key of its own.
        if (SentByDefault(key) == "\t") continue;
        EXPECT_EQ(AsEscapeText(SentByDefault(key)), AsEscapeText(Expand(quill, name))) << name;
    }
}

// The entry for lines of seven bits differs in the keys that begin with an 8-bit introducer.
TEST(Entry, Quill7DiffersInTheEightBitKeysAlone) {
    TerminfoEntry seven;
    ASSERT_TRUE(ReadEntry("quill-7", &seven));
    std::string changed;
    for (const Finding& finding : ProveEntry(seven)) {
        EXPECT_EQ(Loss::kKey, finding.loss) << finding.capability << ": " << finding.message;
        changed += finding.capability + " ";
    }
    EXPECT_EQ("kend kf1 kf2 kf3 kf4 khome knp kpp ", changed);
    for (const auto& [name, text] : seven.strings) {
        for (const char c : text) EXPECT_EQ(0, c & 0x80) << name;
    }
}

TEST(Entry, HasNoKeyThatTheTableLacks) {
    for (const auto& [name, text] : quill.strings) {
        if (name[0] != 'k') continue;
        EXPECT_NE(nullptr, FindKey(name)) << name;
    }
}

TEST(Entry, InitialisingPutsAllModesRightAndLeavesTheScreen) {
    EXPECT_EQ("", LeftByInitialising(quill));
}

// ---------------------------------------------------------------- tic

static std::string OutputOf(const std::string& command) {
    std::string output;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return "cannot run " + command;
    char line[400];
    while (fgets(line, sizeof line, pipe)) output += line;
    const int status = pclose(pipe);
    return status == 0 ? output : output + "exit status " + std::to_string(status);
}

TEST(Entry, IsReadWithoutAWarning) { EXPECT_EQ("", OutputOf("tic -c " QUILL_TERMINFO_SOURCE)); }

// The short forms of older systems keep all that paints: what they drop are names that they lack.
TEST(Entry, IsReadWithoutAWarningInOlderForms) {
    for (const char* form : {"SVr1", "Ultrix", "HP", "BSD"}) {
        const std::string older = std::string("infocmp -R ") + form + " quill";
        EXPECT_EQ("", OutputOf(older + " | tic -c -")) << form;
    }
}

// A termcap entry has 1023 bytes at most.
TEST(Entry, FitsATermcapEntry) {
    const std::string termcap = OutputOf("infocmp -Cr quill | grep -v '^#'");
    EXPECT_LE(termcap.size(), 1023u);
    for (const char* needed : {":am:", ":xn:", ":cm=", ":cs=", ":al=", ":DL=", ":ce=", ":k1="}) {
        EXPECT_NE(std::string::npos, termcap.find(needed)) << needed;
    }
}

TEST(Entry, UsesNoExtendedNames) {
    EXPECT_EQ(OutputOf("infocmp -1 quill | grep -v '^#'"),
              OutputOf("infocmp -1 -x quill | grep -v '^#'"));
}

// Telnet sends at most 40 characters, and file systems of old hosts take 14.
TEST(Entry, HasANameThatEveryHostTakes) {
    EXPECT_EQ("quill", quill.name);
    EXPECT_LE(quill.name.size(), 14u);
}

// ---------------------------------------------------------------- other names

// The first word in backquotes of each line of the table under "Right names".
static std::vector<std::string> NamesInTheTable() {
    std::ifstream page(QUILL_NAMES_PAGE);
    std::vector<std::string> names;
    bool inside = false;
    for (std::string line; std::getline(page, line);) {
        if (line.rfind("## ", 0) == 0) inside = line == "## Right names";
        const size_t end = line.find('`', 3);
        if (inside && line.rfind("| `", 0) == 0) names.push_back(line.substr(3, end - 3));
    }
    return names;
}

TEST(Names, OfTheTablePromiseNothingThatEndsInAWrongScreen) {
    const std::vector<std::string> names = NamesInTheTable();
    ASSERT_FALSE(names.empty());
    for (const std::string& name : names) {
        TerminfoEntry entry;
        if (!ReadEntry(name, &entry)) continue;  // in a database that is not installed here
        for (const Finding& finding : ProveEntry(entry)) {
            EXPECT_NE(Loss::kScreen, finding.loss)
                << name << ", " << finding.capability << ": " << finding.message;
        }
    }
}

// What the table is for: the usual name promises a counted insert-line.
TEST(Names, Vt220PromisesMoreThanTheTerminalDoes) {
    TerminfoEntry entry;
    ASSERT_TRUE(ReadEntry("vt220", &entry));
    std::string broken;
    for (const Finding& finding : ProveEntry(entry)) {
        if (finding.loss == Loss::kScreen) broken += finding.capability + " ";
    }
    EXPECT_EQ("il ", broken);
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    setenv("TERMINFO", QUILL_TERMINFO, 1);
    if (!ReadEntry("quill", &quill)) {
        fprintf(stderr, "no entry quill in %s\n", QUILL_TERMINFO);
        return 2;
    }
    for (const std::string& capability : PromisesOf(quill)) {
        testing::RegisterTest(
            "Capability", TestName(capability).c_str(), nullptr, nullptr, __FILE__, __LINE__,
            [capability]() -> testing::Test* { return new CapabilityTest(capability); });
    }
    return RUN_ALL_TESTS();
}
