// SPDX-License-Identifier: MIT
// A program that is killed while it saves leaves each value old or new, and the file intact.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "tests/dialogs/saved_texts.h"
#include "tests/dialogs/stored.h"
#include "tests/support/person.h"

extern char** environ;

namespace {

constexpr int kKills = 10;  // in each of the ten tests

struct Saver {
    pid_t process = -1;
    int output = -1;
};

Saver StartSaver(const std::string& root) {
    int ends[2];
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    std::string program = QUILL_DIALOG_SAVER, folder = root;
    char* arguments[] = {program.data(), folder.data(), nullptr};
    Saver saver;
    EXPECT_EQ(posix_spawn(&saver.process, program.c_str(), &actions, nullptr, arguments, environ),
              0);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    saver.output = ends[0];
    return saver;
}

// Lets it save for a while after its first output and kills it. True if it was still running.
bool KillAfter(const Saver& saver, int microseconds) {
    char byte = 0;
    const bool began = read(saver.output, &byte, 1) == 1;
    usleep(static_cast<useconds_t>(microseconds));
    kill(saver.process, SIGKILL);
    int status = 0;
    EXPECT_EQ(waitpid(saver.process, &status, 0), saver.process);
    close(saver.output);
    return began && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

void ExpectOldOrNew(const std::string& root) {
    EXPECT_EQ(Integrity(root), "ok");
    for (const SavedText& text : saved_texts) {
        const std::u16string found = StoredText(root, text.name);
        EXPECT_TRUE(found == text.values[0] || found == text.values[1] || found == text.first ||
                    found == u"(not stored)")
            << text.name << " is neither old nor new";
    }
    for (const SavedNumber& number : saved_numbers) {
        const uint32_t found = StoredNumber(root, number.name);
        EXPECT_TRUE(found == number.values[0] || found == number.values[1] ||
                    found == number.first || found == kNotStored)
            << number.name << " is neither old nor new: " << found;
    }
}

// True after an incomplete save: the first value is from another round than the last text.
bool HalfSaved(const std::string& root) {
    const bool first = StoredNumber(root, "blink") == saved_numbers[0].values[1];
    const bool last = StoredText(root, "resp2") == saved_texts[3].values[1];
    return first != last;
}

class KilledInSaving : public testing::TestWithParam<unsigned> {};

TEST_P(KilledInSaving, LeavesEachValueOldOrNewAndTheFileIntact) {
    const std::string root = FreshRoot();
    std::mt19937 random(GetParam());
    std::uniform_int_distribution<int> moment(0, 120000);
    int half_saved = 0;
    for (int i = 0; i < kKills && !HasFailure(); i++) {
        ASSERT_TRUE(KillAfter(StartSaver(root), moment(random)));
        ExpectOldOrNew(root);
        half_saved += HalfSaved(root);
        ASSERT_FALSE(std::filesystem::exists(root + "/registry.db.damaged"));
    }
    RecordProperty("half_saved", half_saved);
    EXPECT_EQ(StoredSettings(root).size(), 132u) << "no save came to its end";
}

INSTANTIATE_TEST_SUITE_P(Round, KilledInSaving, testing::Range(1u, 11u));

}  // namespace
