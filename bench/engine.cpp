// SPDX-License-Identifier: MIT
// Compares the terminal engine, from bytes to grid, with libvterm on the same bytes in the same
// run. One thread, no painting. Each workload prints megabytes per second of both and their ratio.
//
// libvterm has its fastest settings: a screen without callbacks, 8-bit input, merged damage.
#include <benchmark/benchmark.h>
#include <vterm.h>

#include <time.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "bench/workloads.h"
#include "terminal/interpreter.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"

BOOL MessageBeep(UINT) { return TRUE; }

static const size_t kChunk = 3000;  // the most that one read of the socket returns

struct Figures {
    double ours = 0;  // bytes per second
    double peers = 0;
};

static std::vector<Workload> workloads;
static std::vector<Figures> figures;

static void FeedChunk(const BYTE* bytes, int count) {
    for (int done = 0; done < count;) {
        done += TerminalFeedText(bytes + done, count - done);
        if (done < count && TerminalFeedByte(bytes[done++])) {
            benchmark::DoNotOptimize(TerminalTakeReply());
        }
    }
}

static void FeedOurs(const std::string& text) {
    const BYTE* bytes = reinterpret_cast<const BYTE*>(text.data());
    for (size_t at = 0; at < text.size(); at += kChunk) {
        FeedChunk(bytes + at, static_cast<int>(std::min(kChunk, text.size() - at)));
    }
}

static void FeedPeer(VTerm* terminal, const std::string& text) {
    for (size_t at = 0; at < text.size(); at += kChunk) {
        vterm_input_write(terminal, text.data() + at, std::min(kChunk, text.size() - at));
    }
}

static double Rate(const benchmark::State& state, const std::string& text, double seconds) {
    return static_cast<double>(state.iterations()) * static_cast<double>(text.size()) / seconds;
}

static double Now() {
    timespec time;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

static void EngineQuill(benchmark::State& state, size_t index) {
    const std::string& text = workloads[index].text;
    ClearAll();
    TerminalStart();
    TerminalReset(0);
    const double start = Now();
    for (auto _ : state) FeedOurs(text);
    figures[index].ours = Rate(state, text, Now() - start);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

static void DropOutput(const char*, size_t, void*) {}

static void EngineLibvterm(benchmark::State& state, size_t index) {
    const std::string& text = workloads[index].text;
    VTerm* terminal = vterm_new(kScreenRows, kScreenColumns);
    vterm_set_utf8(terminal, 0);
    vterm_output_set_callback(terminal, DropOutput, nullptr);
    VTermScreen* screen = vterm_obtain_screen(terminal);
    vterm_screen_set_damage_merge(screen, VTERM_DAMAGE_SCROLL);
    vterm_screen_reset(screen, 1);
    const double start = Now();
    for (auto _ : state) FeedPeer(terminal, text);
    figures[index].peers = Rate(state, text, Now() - start);
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
    vterm_free(terminal);
}

static void PrintRatios() {
    printf("\n%-22s %14s %14s %8s\n", "workload", "Quill MB/s", "libvterm MB/s", "ratio");
    for (size_t i = 0; i < workloads.size(); ++i) {
        const Figures& row = figures[i];
        if (row.ours <= 0 || row.peers <= 0) continue;  // left out by --benchmark_filter
        printf("%-22s %14.1f %14.1f %8.1f\n", workloads[i].name, row.ours / 1e6, row.peers / 1e6,
               row.ours / row.peers);
    }
}

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    workloads = MakeWorkloads();
    figures.resize(workloads.size());
    for (size_t i = 0; i < workloads.size(); ++i) {
        const std::string name = workloads[i].name;
        benchmark::RegisterBenchmark((name + "/quill").c_str(), EngineQuill, i);
        benchmark::RegisterBenchmark((name + "/libvterm").c_str(), EngineLibvterm, i);
    }
    benchmark::RunSpecifiedBenchmarks();
    PrintRatios();
    return 0;
}
