// SPDX-License-Identifier: MIT
// A program that is killed while it saves leaves each value old or new, and the file intact. It
// does not lose what an earlier save has written. QUILL_KILLS: how many kills each test makes.
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

constexpr size_t kStoredValues = 132;

int Kills() {
    const char* asked = std::getenv("QUILL_KILLS");
    return asked ? std::atoi(asked) : 10;
}

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
    const char* other = std::getenv("QUILL_SOAK_SAVER");
    std::string program = other ? other : QUILL_DIALOG_SAVER, folder = root;
    char* arguments[] = {program.data(), folder.data(), nullptr};
    Saver saver;
    EXPECT_EQ(posix_spawn(&saver.process, program.c_str(), &actions, nullptr, arguments, environ),
              0);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    saver.output = ends[0];
    return saver;
}

constexpr int kNoTurn = -1;

// The last number that it has written as a whole line.
int LastTurn(int output) {
    std::string text;
    char piece[256];
    for (ssize_t count; (count = read(output, piece, sizeof(piece))) > 0;)
        text.append(piece, static_cast<size_t>(count));
    const size_t end = text.rfind('\n');
    if (end == std::string::npos) return kNoTurn;
    const size_t before = end == 0 ? std::string::npos : text.rfind('\n', end - 1);
    const std::string line = text.substr(before == std::string::npos ? 0 : before + 1);
    return std::isdigit(static_cast<unsigned char>(line[0])) ? std::stoi(line) : kNoTurn;
}

// Lets it save for a while after its first output and kills it. True if it was still running;
// `last` is the last save that it has completed.
bool KillAfter(const Saver& saver, int microseconds, int* last) {
    char word[7];
    const bool began = read(saver.output, word, sizeof(word)) == sizeof(word);
    usleep(static_cast<useconds_t>(microseconds));
    kill(saver.process, SIGKILL);
    int status = 0;
    EXPECT_EQ(waitpid(saver.process, &status, 0), saver.process);
    *last = LastTurn(saver.output);
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

// The number of the turn is that of the last save that was completed, or of the next.
void ExpectNoneLost(const std::string& root, int last) {
    if (last == kNoTurn) return;
    const uint32_t number = StoredNumber(root, "table") - kFirstTurn;
    const std::string text = QString::fromStdU16String(StoredText(root, "sear2")).toStdString();
    const int first = last, next = last + 1;
    EXPECT_TRUE(number == static_cast<uint32_t>(first) || number == static_cast<uint32_t>(next))
        << number << " after save " << last;
    EXPECT_TRUE(text == std::to_string(first) || text == std::to_string(next))
        << text << " after save " << last;
}

// True after an incomplete save: the first value is from another round than the last text.
bool HalfSaved(const std::string& root) {
    const bool first = StoredNumber(root, "blink") == saved_numbers[0].values[1];
    const bool last = StoredText(root, "resp2") == saved_texts[2].values[1];
    return first != last;
}

class KilledInSaving : public testing::TestWithParam<unsigned> {};

TEST_P(KilledInSaving, LeavesEachValueOldOrNewAndTheFileIntact) {
    const std::string root = FreshRoot();
    std::mt19937 random(GetParam());
    std::uniform_int_distribution<int> moment(0, 120000);
    int half_saved = 0, completed = 0;
    for (int i = 0; i < Kills() && !HasFailure(); i++) {
        int last = kNoTurn;
        ASSERT_TRUE(KillAfter(StartSaver(root), moment(random), &last));
        ExpectOldOrNew(root);
        ExpectNoneLost(root, last);
        completed += last != kNoTurn;
        half_saved += HalfSaved(root);
        ASSERT_FALSE(std::filesystem::exists(root + "/registry.db.damaged"));
    }
    RecordProperty("half_saved", half_saved);
    RecordProperty("completed", completed);
    if (Kills() > 10)
        std::printf("%d kills, %d saves cut, %d after a whole save\n", Kills(), half_saved,
                    completed);
    // None of a few kills may have come after a whole save.
    for (int i = 0; i < 60 && StoredSettings(root).size() < kStoredValues; i++) {
        int last = kNoTurn;
        ASSERT_TRUE(KillAfter(StartSaver(root), 1000000, &last));
    }
    EXPECT_EQ(StoredSettings(root).size(), kStoredValues) << "no save came to its end";
}

INSTANTIATE_TEST_SUITE_P(Round, KilledInSaving, testing::Range(1u, 11u));

}  // namespace
