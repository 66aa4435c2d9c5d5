// SPDX-License-Identifier: MIT
// Each program of the walks under the entry `quill`, and under the names for hosts where it cannot
// be installed, judged after every step.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/guide/page.h"
#include "tests/hosts/program_walks.h"
#include "tests/hosts/pty_program.h"
#include "tests/hosts/terminfo_entry.h"

class WalkTest : public testing::Test {
  public:
    explicit WalkTest(const ProgramWalk& walk) : walk_(walk) {}

    void TestBody() override {
        TerminfoEntry entry;
        ASSERT_TRUE(ReadEntry(walk_.term, &entry));
        if (!IsInstalled(walk_.program)) GTEST_SKIP() << walk_.program << " is not installed";
        const WalkResult result = WalkThrough(walk_, walk_.term, walk_.term);
        EXPECT_EQ(0, result.wrong) << result.first_difference;
        EXPECT_TRUE(result.finished) << "it ended early, on\n" << result.screen;
        EXPECT_EQ(walk_.steps.size(), static_cast<size_t>(result.steps));
        printf("%d steps, %d wrong\n", result.steps, result.wrong);
    }

  private:
    ProgramWalk walk_;
};

// ---------------------------------------------------------------- docs/hosts_names.md

// A walk in a process of its own: the programs mostly wait, so all are walked through at once.
struct Walker {
    const char* walk;
    pid_t pid;
    int faults;  // what is wrong, as text up to its end
};

static std::string FaultsOfWalk(const ProgramWalk& walk, const std::string& term) {
    const WalkResult result = WalkThrough(walk, term, term);
    if (!result.finished) return "it ended early, on\n" + result.screen;
    if (result.wrong != 0)
        return std::to_string(result.wrong) + " wrong screens, " + result.first_difference;
    const size_t steps = static_cast<size_t>(result.steps);
    return steps == walk.steps.size() ? "" : "it took " + std::to_string(steps) + " steps";
}

static Walker StartWalk(const ProgramWalk& walk, const std::string& term) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(0, pipe2(ends, O_CLOEXEC));
    fflush(stdout);
    const pid_t pid = fork();
    if (pid == 0) {
        const std::string faults = FaultsOfWalk(walk, term);
        const ssize_t written = write(ends[1], faults.data(), faults.size());
        _exit(written == static_cast<ssize_t>(faults.size()) ? 0 : 1);
    }
    close(ends[1]);
    return {walk.name, pid, ends[0]};
}

static void ExpectNoFault(const Walker& walker) {
    std::string faults;
    char buffer[4000];
    for (ssize_t count; (count = read(walker.faults, buffer, sizeof(buffer))) > 0;)
        faults.append(buffer, static_cast<size_t>(count));
    close(walker.faults);
    EXPECT_EQ("", faults) << walker.walk;
    int status = -1;
    EXPECT_EQ(walker.pid, waitpid(walker.pid, &status, 0));
    EXPECT_EQ(0, status) << walker.walk << " broke off";
}

// Under another name, with the rows of the key table that the page changes.
class WalksAsTest : public testing::Test {
  public:
    explicit WalksAsTest(const std::string& term) : term_(term) {}

    void TestBody() override {
        TerminfoEntry entry;
        if (!ReadEntry(term_, &entry)) GTEST_SKIP() << "there is no entry " << term_;
        std::string missing;
        std::vector<Walker> walkers;
        for (const ProgramWalk& walk : ProgramWalks()) {
            if (IsInstalled(walk.program)) {
                walkers.push_back(StartWalk(walk, term_));
            } else {
                missing += std::string(" ") + walk.program;
            }
        }
        for (const Walker& walker : walkers) ExpectNoFault(walker);
        if (!missing.empty()) GTEST_SKIP() << "not installed:" << missing;
    }

  private:
    std::string term_;
};

static std::vector<PageRow> RightNames() {
    return ReadPage(QUILL_NAMES_PAGE).tables["Right names"];
}

// The names of a row share one entry.
static std::string FirstName(const PageRow& row) { return CodeOf(row.at(0)).at(0); }

// A hyphen would end the names of a filter.
static std::string TestName(std::string name) {
    for (char& c : name) c = c == '-' ? '_' : c;
    return name;
}

// Each walk above and below is held to its steps, and a wrong screen fails it.
TEST(WalksOfThePage, TakeTheStepsThatItSays) {
    size_t steps = 0;
    for (const ProgramWalk& walk : ProgramWalks()) steps += walk.steps.size();
    const std::vector<PageRow> rows = RightNames();
    EXPECT_FALSE(rows.empty());
    for (const PageRow& row : rows)
        EXPECT_EQ(std::to_string(steps) + " steps, 0 wrong", row.at(2)) << FirstName(row);
}

// ---------------------------------------------------------------- all of them

void RegisterWalks() {
    for (const ProgramWalk& walk : ProgramWalks()) {
        testing::RegisterTest("Walk", walk.name, nullptr, nullptr, __FILE__, __LINE__,
                              [=]() -> testing::Test* { return new WalkTest(walk); });
    }
    for (const PageRow& row : RightNames()) {
        const std::string name = FirstName(row);
        testing::RegisterTest("WalksAs", TestName(name).c_str(), nullptr, nullptr, __FILE__,
                              __LINE__, [=]() -> testing::Test* { return new WalksAsTest(name); });
    }
}
