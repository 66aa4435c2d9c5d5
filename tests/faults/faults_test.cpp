// SPDX-License-Identifier: MIT
// Each place where the program calls what can fail, made to fail once: nothing crashes or hangs,
// the settings on disk are whole, and afterwards a session works as before, or the program has
// ended with the code or the message for it.
//
// A place fails in the first piece that reaches it. With QUILL_FAULTS=all it fails in each piece
// that reaches it, and memory ends each time that the place asks for some. QUILL_FAULTS_REPORT
// names a file for what came of each place.
#include <gtest/gtest.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>

#include "tests/faults/faults.h"
#include "tests/faults/segments.h"

static constexpr int kPatience = 240;  // seconds of one run; a busy machine can take a minute

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

static std::map<uintptr_t, int> ReachedBy(const Segment& segment) {
    static std::map<std::string, std::map<uintptr_t, int>> known;
    if (known.contains(segment.name)) return known[segment.name];
    FailAt(0);
    StartCounting();
    const RunResult result = RunWatched(segment, segment.name);
    EXPECT_EQ("", result.first_try) << segment.name << ", where nothing fails";
    EXPECT_EQ(0, result.unsaved) << segment.name << ", where nothing fails";
    return known[segment.name] = Reached();
}

static constexpr int kMostTimes = 200;

static bool IsMemory(const Place& place) {
    return place.call == "malloc" || place.call == "calloc";
}

static std::string Described(const Place& place) {
    return place.line + " in " + place.procedure + ": " + place.call;
}

// The places of this piece, and how many times each is to fail.
static std::map<uintptr_t, int> EachOf(size_t index, const std::string& wanted) {
    std::map<uintptr_t, int> own = ReachedBy(segments[index]);
    std::erase_if(own, [&](const auto& reached) {
        return Described(AllPlaces().at(reached.first)).find(wanted) == std::string::npos;
    });
    for (auto& [at, times] : own)
        times = IsMemory(AllPlaces().at(at)) ? std::min(times, kMostTimes) : 1;
    return own;
}

static std::map<uintptr_t, int> FirstReachedBy(size_t index) {
    std::map<uintptr_t, int> before;
    for (size_t i = 0; i < index; ++i) before.merge(ReachedBy(segments[i]));
    std::map<uintptr_t, int> own;
    for (const auto& [at, times] : ReachedBy(segments[index]))
        if (!before.contains(at)) own[at] = 1;
    return own;
}

static std::map<uintptr_t, int> ToFail(size_t index) {
    const char* form = std::getenv("QUILL_FAULTS");
    if (!form) return FirstReachedBy(index);
    return EachOf(index, std::string(form) == "all" ? "" : form);
}

// ---------------------------------------------------------------- failing

static void Report(const Place& place, int time, const RunResult& result) {
    const char* name = std::getenv("QUILL_FAULTS_REPORT");
    if (!name) return;
    std::ofstream report(name, std::ios::app);
    report << Described(place) << " " << time;
    if (result.ended_early) report << " (ended with " << result.code << ")";
    report << " " << result.first_try << " " << result.second_try;
    for (const std::string& box : result.boxes) report << " | " << box;
    report << "\n";
}

namespace {

struct Stated {
    const char* file;
    const char* call;
    const char* box;  // one that is shown
};

}  // namespace

// clang-format off
static const Stated kStated[] = {
    {"app/start_up.cpp",              "SliceStartup",          "Error: cannot find WinSock DLL. Maybe TCP/IP is missing"},
    {"connection/connection.cpp",     "SliceSocket",           "Error: Cannot open the socket interface. Maybe TCP/IP is missing"},
    {"connection/connection.cpp",     "SliceHostByName",       "Error: Cannot connect to the UNIX Host"},
    {"connection/connection.cpp",     "SliceConnect",          "Error: Connection to the UNIX Host has failed (10055)"},
    {"connection/receive_thread.cpp", "CreateThread",          "Error: Not possible to create a session to the UNIX Host"},
    {"connection/receive_thread.cpp", "CreateEventW",          "Error: Not possible to create a session to the UNIX Host"},
    {"connection/dialling.cpp",       "RasGetEntryDialParams", "Error: Cannot find dial information for connection name. (office)"},
    {"connection/dialling.cpp",       "RasDial",               "Error: RAS Dial has failed. Check your network configuration (600)"},
};
// clang-format on

// "_Z12CreateThreadPvj...": the length and the name.
static bool IsCallOf(const Place& place, const std::string& name) {
    return place.call.starts_with("_Z" + std::to_string(name.size()) + name);
}

static bool IsOf(const Stated& row, const Place& place) {
    return place.line.starts_with(row.file) && IsCallOf(place, row.call);
}

static void ExpectStatedBox(const Place& place, const RunResult& result) {
    for (const Stated& row : kStated) {
        if (!IsOf(row, place)) continue;
        EXPECT_NE(result.boxes.end(), std::find(result.boxes.begin(), result.boxes.end(), row.box))
            << row.box;
    }
}

// The codes of a program that cannot start: no main window class, no terminal class, no window.
static bool EndsAsStated(const Segment& segment, const RunResult& result) {
    const std::string name = segment.name;
    if (result.code == 1 || result.code == 2 || result.code == 16) return true;
    const bool by_user = name == "Exit" || name == "Reset";
    return result.code == 0 && (by_user || !result.boxes.empty());
}

// "_Z14RegisterClassW..." is none.
static bool IsRegistry(const Place& place) {
    return place.call.find("Reg") < 6 && place.call.find("Register") == std::string::npos;
}

static void ExpectWell(const Segment& segment, const Place& place, const RunResult& result) {
    if (result.ended_early) {
        EXPECT_TRUE(EndsAsStated(segment, result)) << "ends with " << result.code;
    } else {
        EXPECT_EQ("", result.in_segment ? result.first_try : result.second_try);
    }
    ExpectStatedBox(place, result);
    EXPECT_EQ("ok", result.integrity);
    if (result.code != 0) return;
    EXPECT_LE(result.unsaved, IsRegistry(place) ? 1 : 0) << "settings not on disk";
}

class Faults : public testing::TestWithParam<size_t> {};

TEST_P(Faults, LeaveTheProgramWell) {
    const Segment& segment = segments[GetParam()];
    int failed = 0;
    for (const auto& [at, times] : ToFail(GetParam())) {
        const Place& place = AllPlaces().at(at);
        for (int time = 1; time <= times; ++time) {
            const std::string doing = Described(place) + ", time " + std::to_string(time);
            SCOPED_TRACE(doing);
            std::fprintf(stderr, "fails: %s\n", doing.c_str());
            FailAt(at, time);
            const RunResult result = RunWatched(segment, doing);
            const bool has_failed = HasFailed();
            FailAt(0);
            failed += has_failed;
            Report(place, time, result);
            EXPECT_TRUE(has_failed || std::getenv("QUILL_FAULTS")) << "is not reached this time";
            if (has_failed) ExpectWell(segment, place, result);
        }
    }
    std::printf("%s: %d failed\n", segment.name, failed);
}

INSTANTIATE_TEST_SUITE_P(At, Faults, testing::Range(size_t{0}, segments.size()),
                         [](const auto& info) { return segments[info.param].name; });

// ---------------------------------------------------------------- the list

// "PLACE # the reason", one a line.
static std::map<std::string, std::string> KnownAsUnreached() {
    std::map<std::string, std::string> known;
    std::ifstream file(QUILL_FAULTS "/unreached.txt");
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        const size_t mark = line.find(" # ");
        known[line.substr(0, mark)] = mark == std::string::npos ? "" : line.substr(mark + 3);
    }
    return known;
}

// The file and the text of the line, because lines move, and other compilers inline other
// procedures.
static std::string SourceOf(const Place& place) {
    const size_t colon = place.line.find(':');
    const std::string path = place.line.substr(0, colon);
    std::ifstream file(QUILL_TOP "/" + path);
    std::string text;
    for (int line = std::stoi(place.line.substr(colon + 1)); line > 0; --line)
        std::getline(file, text);
    return path + ": " + text.substr(std::min(text.find_first_not_of(' '), text.size()));
}

// A line of the source is reached if one of its places is.
TEST(FaultPlaces, AreReachedOrKnown) {
    std::map<uintptr_t, int> reached;
    for (const Segment& segment : segments) reached.merge(ReachedBy(segment));
    std::map<std::string, const Place*> unreached;  // by line and call
    for (const auto& [at, place] : AllPlaces()) unreached[place.line + place.call] = &place;
    const size_t lines = unreached.size();
    for (const auto& [at, times] : reached)
        unreached.erase(AllPlaces().at(at).line + AllPlaces().at(at).call);
    std::map<std::string, std::string> known = KnownAsUnreached();
    for (const auto& [line, place] : unreached) {
        EXPECT_NE("", known[SourceOf(*place)]) << place->line << " is not reached: \n"
                                               << SourceOf(*place) << " # the reason";
        known.erase(SourceOf(*place));
    }
    for (const auto& [place, reason] : known) ADD_FAILURE() << place << " is reached, or gone";
    std::printf("%zu places of %zu lines; %zu places reached, %zu lines not\n", AllPlaces().size(),
                lines, reached.size(), unreached.size());
}

// Or a file has another name now. Without optimisation the calls of inline procedures in the
// device's header are not within their callers.
TEST(FaultPlaces, OfEachStatedBoxExist) {
#ifndef __OPTIMIZE__
    GTEST_SKIP() << "this build has no inline calls";
#endif
    for (const Stated& row : kStated) {
        const bool exists = std::any_of(AllPlaces().begin(), AllPlaces().end(),
                                        [&](const auto& at) { return IsOf(row, at.second); });
        EXPECT_TRUE(exists) << row.file << " does not call " << row.call;
    }
}
