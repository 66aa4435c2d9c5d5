// SPDX-License-Identifier: MIT
// A program that runs for weeks: every session and every change of the bar releases what it
// allocates.
#include <gtest/gtest.h>
#include <QToolButton>
#include <set>

#include "platform/qt/host/host.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/support/fake_host.h"
#include "tests/support/heap.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

namespace {

constexpr int kTimes = 500;
constexpr int kWarmUp = 30;           // until every picture, font and table is loaded
constexpr size_t kBytesEach = 200;    // growth of the heap for other reasons, each time
constexpr size_t kMostPictures = 28;  // 27 rows, and "disconnect"

// Draws the bar and adds the pictures of its buttons. Call it on the window thread.
void LookAtBar(std::set<qint64>* pictures) {
    QWidget* bar = FindWindowRecord(session.command_bar)->widget;
    bar->grab();
    for (const QToolButton* button : bar->findChildren<QToolButton*>())
        pictures->insert(button->icon().cacheKey());
}

size_t Heap() {
    size_t bytes = 0;
    OnWindowThread([&] { bytes = HeapInUse(); });
    return bytes;
}

void HoldSession(FakeHost& host, std::set<qint64>* pictures) {
    Connect();
    ASSERT_TRUE(host.Accept());
    host.Send("x");
    ASSERT_TRUE(Online());
    OnWindowThread([&] { LookAtBar(pictures); });
    Close();
    ASSERT_TRUE(Offline());
    OnWindowThread([&] { LookAtBar(pictures); });
}

void SwapBar(std::set<qint64>* pictures) {
    OnWindowThread([&] {
        SendMessageW(session.main_window, WM_COMMAND, IDM_TOOLBAR_FIRST, 0);
        LookAtBar(pictures);
    });
}

// Repeats `once` many times, after a warm-up for everything that is created only once.
void ExpectNothingStays(std::set<qint64>* pictures, const std::function<void()>& once) {
    for (int i = 0; i < kWarmUp; i++) once();
    const size_t before = Heap(), drawn = pictures->size();
    for (int i = 0; i < kTimes; i++) once();
    EXPECT_LE(Heap(), before + kTimes * kBytesEach);
    EXPECT_EQ(pictures->size(), drawn);
    EXPECT_LE(pictures->size(), kMostPictures);
}

TEST(ManySessions, LeaveNeitherMemoryNorPicturesBehind) {
    FakeHost host;
    RunProgram({}, [&] {
        OnWindowThread([] { ForgetScreenText(); });
        SetHost(u"127.0.0.1", host.port);
        std::set<qint64> pictures;
        ExpectNothingStays(&pictures, [&] { HoldSession(host, &pictures); });
    });
}

TEST(ManySwapsOfTheBar, LeaveNeitherMemoryNorPicturesBehind) {
    RunProgram({}, [&] {
        OnWindowThread([] { ForgetScreenText(); });
        std::set<qint64> pictures;
        ExpectNothingStays(&pictures, [&] { SwapBar(&pictures); });
    });
}

}  // namespace
