// SPDX-License-Identifier: MIT
// The entry `quill` as it is compiled: every capability is a test of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "tests/hosts/own_entry.h"

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

static const char* const kOtherEntries[] = {"vt52",  "vt100", "vt102",  "vt220", "ansi",
                                            "linux", "xterm", "screen", "sun",   "rxvt"};

TEST(Entry, HasNoFault) {
    for (const std::string& fault : FaultsOfOwnEntry(quill)) ADD_FAILURE() << fault;
}

// A key string of another entry is not what the key table sends, and promises nothing by itself.
static bool IsCandidate(const std::string& capability) {
    return !Has(quill, capability) && capability[0] != 'k' && !IsNeutral(capability);
}

TEST(Entry, LacksOnlyWhatIsListed) {
    for (const char* name : kOtherEntries) {
        TerminfoEntry other;
        ASSERT_TRUE(ReadEntry(name, &other)) << name;
        for (const auto& [capability, text] : other.strings) {
            if (!IsCandidate(capability) || IsLeftOut(capability)) continue;
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
        // Shift+Tab sends the same as Tab, so a host cannot take it for a key of its own.
        if (const std::string other = OtherKeyOf(key); !other.empty()) {
            EXPECT_FALSE(Has(quill, name)) << name << " is what the key " << other << " sends";
            continue;
        }
        EXPECT_EQ(AsEscapeText(SentByDefault(key)), AsEscapeText(Expand(quill, name))) << name;
    }
}

// The entry for lines of seven bits differs in the keys that begin with an 8-bit introducer.
TEST(Entry, Quill7DiffersOnlyInTheEightBitKeys) {
    TerminfoEntry seven;
    ASSERT_TRUE(ReadEntry("quill-7", &seven));
    std::string changed;
    for (const Finding& finding : ProveEntry(seven)) {
        EXPECT_EQ(Loss::kKey, finding.loss) << finding.capability << ": " << finding.message;
        changed += finding.capability + " ";
    }
    EXPECT_EQ("kend kf1 kf2 kf3 kf4 khome knp kpp ", changed);
    for (const auto& [name, text] : seven.strings) {
        if (name == "rs1") continue;  // its byte 240 is for lines that keep the eighth bit
        for (const char c : text) EXPECT_EQ(0, c & 0x80) << name;
    }
}

TEST(Entry, Quill7IsQuillInAllElse) {
    TerminfoEntry seven;
    ASSERT_TRUE(ReadEntry("quill-7", &seven));
    for (const std::string& fault : FaultsOfSevenBitEntry(seven, quill)) ADD_FAILURE() << fault;
}

TEST(Entry, InitialisingResetsAllModesAndKeepsTheScreen) {
    EXPECT_EQ("", LeftByInitialising(quill));
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
