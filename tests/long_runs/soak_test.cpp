// SPDX-License-Identifier: MIT
// The runs. QUILL_SOAK_SECONDS, QUILL_SOAK_SEED and QUILL_SOAK_FROM (the session to begin with)
// make the random one longer or another; QUILL_RECONNECTS does so for the other one. A failure
// names seed, session and step.
#include <gtest/gtest.h>
#include <algorithm>
#include <chrono>
#include <QApplication>
#include <QClipboard>
#include <thread>
#include <vector>

#include "platform/qt/host/host.h"
#include "session/session_state.h"
#include "tests/dialogs/stored.h"
#include "tests/long_runs/checks.h"
#include "tests/long_runs/counts.h"
#include "tests/long_runs/steps.h"
#include "tests/support/person.h"
#include "tests/support/sessions.h"

static constexpr int kSessionsOfAStart = 60;
static constexpr int kStepsOfASession = 24;
static constexpr int kWarmSessions = 20;  // until every font, picture and table is there
static constexpr int kPatience = 1800;    // seconds of one step, on a machine with other work

// Fonts and pictures are kept until another is wanted; the toolkit's caches come and go.
static constexpr long kRoomOfAStart = 6000000;  // bytes
static constexpr long kRoomOfReconnects = 500000;

// The second half of a run is one start. The least of the heap in some sessions does not contain
// what comes and goes, so it shows what is kept for ever.
static constexpr long kRoomOfALongStart = 300000;
static constexpr int kLongStart = 1000, kSessionsOfALeast = 300;

static long Asked(const char* name, long otherwise) {
    const char* value = std::getenv(name);
    return value ? std::atol(value) : otherwise;
}

using Clock = std::chrono::steady_clock;

struct Soak {
    LongRun run;
    long seed = 1;
    long session = 0;
    long first = 0;
    long first_of_start = 0;
    Clock::time_point half, end;
    Held warm = {};
    std::vector<long> bytes;  // after each session of this start
};

static bool Failed() { return testing::Test::HasFailure(); }

static void NameFailure(Soak& soak, int step) {
    if (!Failed()) return;
    ADD_FAILURE() << "seed " << soak.seed << ", session " << soak.session << ", step " << step
                  << ": " << soak.run.doing.load();
}

static void Tell(const Soak& soak, const Held& held) {
    std::printf("session %ld, step %ld: %s\n", soak.session, soak.run.steps.load(),
                Describe(held).c_str());
    std::fflush(stdout);
}

// The socket of a session that its host closed stays open until it is closed here too.
static void ComeToRest(LongRun& run) {
    Close();
    ResizeDevice(640, 480);
    OnWindowThread([] {
        QApplication::clipboard()->clear();
        StartReplay();
    });
    run.host.shown = run.host.received = std::string();
}

static void ExpectNothingGrew(Soak& soak) {
    ComeToRest(soak.run);
    const long done = soak.session - soak.first_of_start;
    if (done < kWarmSessions) return;
    Held held = WhatIsHeld();
    soak.bytes.push_back(held.bytes);
    if (done == kWarmSessions) soak.warm = held, Tell(soak, held);  // of this start
    // Threads and files of what has just ended may still be going.
    for (int i = 0; i < 200 && !Growth(soak.warm, held, kRoomOfAStart).empty(); ++i) {
        Sleep(10);
        held = WhatIsHeld();
    }
    EXPECT_EQ("", Growth(soak.warm, held, kRoomOfAStart));
    if (soak.session % 200 == 0) Tell(soak, held);
}

static long LeastFrom(std::vector<long>::const_iterator first) {
    return *std::min_element(first, first + kSessionsOfALeast);
}

static void ExpectNoSlowGrowth(const Soak& soak) {
    if (soak.bytes.size() < kLongStart) return;
    const long before = LeastFrom(soak.bytes.begin() + kSessionsOfALeast);
    const long after = LeastFrom(soak.bytes.end() - kSessionsOfALeast);
    std::printf("%zu sessions of one start: %ld bytes, then %ld\n", soak.bytes.size(), before,
                after);
    EXPECT_LE(after - before, kRoomOfALongStart) << "bytes that are kept for ever";
}

static void OneSession(Soak& soak) {
    LongRun& run = soak.run;
    run.random.seed(static_cast<unsigned>(soak.seed * 1000003 + soak.session));
    WhileOffline(run);
    BeginRandomSession(run);
    NameFailure(soak, 0);
    const int steps = 1 + static_cast<int>(Below(run.random, kStepsOfASession));
    for (int step = 1; step <= steps && !Failed(); ++step) {
        const Step& chosen = ChooseStep(run);
        Tell(run, chosen.name);
        chosen.run(run);
        if (!Failed() && (step == steps || Below(run.random, 8) == 0)) RestOnline(run);
        NameFailure(soak, step);
    }
    if (Failed()) return;
    EndSession(run);
    ExpectNothingGrew(soak);
    NameFailure(soak, steps + 1);
}

static void OneStart(Soak& soak) {
    soak.first_of_start = soak.session;
    soak.bytes.clear();
    const bool last = Clock::now() >= soak.half;
    counts.objects = 0;  // what the last start held went with its device
    const long keys = counts.keys, sockets = counts.sockets, contexts = counts.contexts;
    Stage stage{.root = soak.run.root, .before = [&] { StageDialUp(soak.run); }};
    RunProgram(stage, [&] {
        OnWindowThread([] { ForgetScreenText(); });
        for (int i = 0; (last || i < kSessionsOfAStart) && !Failed() && Clock::now() < soak.end;
             ++i) {
            OneSession(soak);
            ++soak.session;
        }
    });
    if (Failed()) return;
    ExpectNoSlowGrowth(soak);
    ExpectMemoryStored(soak.run.root);
    EXPECT_EQ(keys, counts.keys) << "registry keys are open after the program's end";
    EXPECT_EQ(sockets, counts.sockets) << "sockets are open after the program's end";
    EXPECT_EQ(contexts, counts.contexts) << "contexts are held after the program's end";
}

// Ends the program where a step does not end.
static void Watch(LongRun& run, const std::atomic<bool>& over) {
    long seen = -1;
    for (int idle = 0; !over; ++idle) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        if (run.steps != seen) idle = 0;
        seen = run.steps;
        if (idle < kPatience) continue;
        std::fprintf(stderr, "no end of: %s\n", run.doing.load());
        std::abort();
    }
}

TEST(Soak, SurvivesHostUserAndNetworkAtOnce) {
    Soak soak;
    soak.seed = Asked("QUILL_SOAK_SEED", 1);
    soak.first = soak.session = Asked("QUILL_SOAK_FROM", 0);
    const std::chrono::seconds time(Asked("QUILL_SOAK_SECONDS", 20));
    soak.half = Clock::now() + time / 2;
    soak.end = Clock::now() + time;
    soak.run.root = FreshRoot();
    soak.run.dial = FreshRoot();
    std::atomic<bool> over{false};
    std::thread watch([&] { Watch(soak.run, over); });
    while (Clock::now() < soak.end && !Failed()) OneStart(soak);
    over = true;
    watch.join();
    std::printf("%ld sessions, %ld steps\n", soak.session - soak.first, soak.run.steps.load());
}

TEST(Soak, ReconnectsLeaveNothingBehind) {
    const long reconnects = Asked("QUILL_RECONNECTS", 100);
    FakeHost host;
    RunProgram({}, [&] {
        OnWindowThread([] { ForgetScreenText(); });
        SetHost(u"127.0.0.1", host.port);
        Held warm = {};
        for (long i = 0; i < reconnects && !Failed(); ++i) {
            Connect();
            ASSERT_TRUE(host.Accept());
            const std::string word = "session " + std::to_string(i);
            host.Send(word);
            ASSERT_TRUE(TerminalShows(word));
            if (i % 2) host.Drop(), DismissBox(kClosed);
            Close();
            ASSERT_TRUE(Offline());
            if (i == std::min(reconnects / 2, 30L)) warm = WhatIsHeld();
        }
        host.Drop();
        Held held = {};
        Eventually([&] { return true; });
        for (int i = 0; i < 200; ++i) {
            held = WhatIsHeld();
            if (Growth(warm, held, kRoomOfReconnects).empty()) break;
            Sleep(10);
        }
        EXPECT_EQ("", Growth(warm, held, kRoomOfReconnects)) << "after " << reconnects;
        std::printf("%ld reconnects: %s\n", reconnects, Describe(held).c_str());
    });
}
