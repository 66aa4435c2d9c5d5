// SPDX-License-Identifier: MIT
// Each place where the program calls what can fail, made to fail once: nothing crashes or hangs,
// and afterwards a session works as ever. QUILL_FAULTS_REPORT names a file for what came of each
// place.
#include <gtest/gtest.h>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <thread>

#include "tests/faults/faults.h"
#include "tests/faults/segments.h"

static constexpr int kPatience = 60;  // seconds of one run

// ---------------------------------------------------------------- a watch

static std::atomic<const char*> g_doing{nullptr};
static std::atomic<int> g_seconds{0};

static void Watch() {
    for (;;) {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        if (!g_doing.load() || ++g_seconds < kPatience) continue;
        std::fprintf(stderr, "no end of: %s\n", g_doing.load());
        std::abort();
    }
}

static RunResult RunWatched(const Segment& segment, const std::string& doing) {
    static std::thread watch = [] {
        std::thread thread(Watch);
        thread.detach();
        return thread;
    }();
    g_seconds = 0;
    g_doing = doing.c_str();
    const RunResult result = RunSegment(segment);
    g_doing = nullptr;
    return result;
}

// ---------------------------------------------------------------- what a piece reaches

static std::set<uintptr_t> ReachedBy(const Segment& segment) {
    ForgetReached();
    FailAt(0);
    const RunResult result = RunWatched(segment, segment.name);
    EXPECT_EQ("", result.unwell) << segment.name << ", where nothing fails";
    return Reached();
}

// That no piece before it reaches.
static std::set<uintptr_t> FirstReachedBy(size_t index) {
    std::set<uintptr_t> before;
    for (size_t i = 0; i < index; ++i) before.merge(ReachedBy(segments[i]));
    std::set<uintptr_t> own;
    for (const uintptr_t place : ReachedBy(segments[index]))
        if (!before.contains(place)) own.insert(place);
    return own;
}

// ---------------------------------------------------------------- failing

static void Report(const Place& place, const RunResult& result) {
    const char* name = std::getenv("QUILL_FAULTS_REPORT");
    if (!name) return;
    std::ofstream report(name, std::ios::app);
    report << place.where << ": " << place.call << (result.ended_early ? " (ends)" : "")
           << result.unwell;
    for (const std::string& box : result.boxes) report << " | " << box;
    report << "\n";
}

class Faults : public testing::TestWithParam<size_t> {};

TEST_P(Faults, LeaveTheProgramWell) {
    const Segment& segment = segments[GetParam()];
    int failed = 0;
    for (const uintptr_t at : FirstReachedBy(GetParam())) {
        const Place& place = AllPlaces().at(at);
        FailAt(at);
        const RunResult result = RunWatched(segment, place.where);
        failed += HasFailed();
        FailAt(0);
        Report(place, result);
        EXPECT_EQ("", result.unwell) << place.call << " fails at " << place.where;
    }
    std::printf("%s: %d places failed\n", segment.name, failed);
}

INSTANTIATE_TEST_SUITE_P(At, Faults, testing::Range(size_t{0}, segments.size()),
                         [](const auto& info) { return segments[info.param].name; });

// ---------------------------------------------------------------- the list

static std::set<std::string> Known() {
    std::set<std::string> known;
    std::ifstream file(QUILL_FAULTS "/unreached.txt");
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line[0] != '#') known.insert(line);
    return known;
}

// By file, procedure and call: lines move.
static std::string WithoutLine(const Place& place) {
    const size_t colon = place.where.find(':'), in = place.where.find(" in ");
    return place.where.substr(0, colon) + place.where.substr(in) + ": " + place.call;
}

TEST(FaultPlaces, AreReachedOrKnown) {
    std::set<uintptr_t> reached;
    for (const Segment& segment : segments) reached.merge(ReachedBy(segment));
    std::set<std::string> unreached;
    for (const auto& [at, place] : AllPlaces())
        if (!reached.contains(at)) unreached.insert(WithoutLine(place));
    std::printf("%zu places, %zu reached\n", AllPlaces().size(), reached.size());
    const std::set<std::string> known = Known();
    for (const std::string& place : unreached) EXPECT_TRUE(known.contains(place)) << place;
    for (const std::string& place : known)
        EXPECT_TRUE(unreached.contains(place)) << place << " is reached, or gone";
}
