// SPDX-License-Identifier: MIT
// How a call is made to fail: the linker leads it to the code below, which asks whether it shall.
#include "tests/faults/faults.h"

#include <unistd.h>
#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <sstream>

#include "windows_ce.h"

extern "C" char __executable_start;

static std::mutex g_mutex;  // of the following
static std::map<uintptr_t, int>& g_reached =
    *new std::map<uintptr_t, int>;  // also at the process's end
static uintptr_t g_failing = 0;
static int g_left = 0;  // the failing place fails when this gets 0
static const char* g_every = nullptr;

static std::atomic<bool> g_failed{false};
static thread_local bool g_socket_failed = false;

static constexpr int kNoBuffers = 10055;

// "_Z9SliceSendmPKcii", and not a call that only takes a "P11SliceWindow".
static bool IsSocketCall(std::string_view call) {
    if (!call.starts_with("_Z")) return false;
    call.remove_prefix(std::min(call.find_first_not_of("0123456789", 2), call.size()));
    return call.starts_with("Slice");
}

static bool Fails(uintptr_t place, const char* call) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    ++g_reached[place];
    if (g_every && std::string_view(g_every) == call) return AllPlaces().contains(place);
    if (place != g_failing || --g_left != 0) return false;
    g_failed = true;
    return true;
}

extern "C" int FaultDecide(uintptr_t behind, const char* call);
extern "C" int FaultDecide(uintptr_t behind, const char* call) {
    const uintptr_t place = behind - reinterpret_cast<uintptr_t>(&__executable_start);
    const bool fails = Fails(place, call);
    if (IsSocketCall(call)) g_socket_failed = fails;
    return fails;
}

// Keeps the arguments, asks, and goes on to the call or returns what a failed one does.
#define FAULT_CALL(symbol, result)                      \
    asm(".section .rodata\n"                            \
        "1: .asciz \"" #symbol                          \
        "\"\n"                                          \
        ".text\n"                                       \
        ".globl __wrap_" #symbol                        \
        "\n"                                            \
        ".type __wrap_" #symbol                         \
        ", @function\n"                                 \
        "__wrap_" #symbol                               \
        ":\n"                                           \
        "push %rax\n push %rdi\n push %rsi\n"           \
        "push %rdx\n push %rcx\n push %r8\n push %r9\n" \
        "mov 56(%rsp), %rdi\n"                          \
        "lea 1b(%rip), %rsi\n"                          \
        "call FaultDecide\n"                            \
        "test %eax, %eax\n"                             \
        "pop %r9\n pop %r8\n pop %rcx\n pop %rdx\n"     \
        "pop %rsi\n pop %rdi\n pop %rax\n"              \
        "jne 2f\n"                                      \
        "jmp __real_" #symbol                           \
        "\n"                                            \
        "2: movabs $" #result                           \
        ", %rax\n"                                      \
        "ret\n");
#include "tests/faults/calls.inc"
#undef FAULT_CALL

int RealLastError() __asm__("__real__Z14SliceLastErrorv");
int LastErrorOrForced() __asm__("__wrap__Z14SliceLastErrorv");
int LastErrorOrForced() {
    if (!g_socket_failed) return RealLastError();
    g_socket_failed = false;
    return kNoBuffers;
}

void StartCounting() {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_reached.clear();
}

std::map<uintptr_t, int> Reached() {
    const Places& places = AllPlaces();
    const std::lock_guard<std::mutex> lock(g_mutex);
    std::map<uintptr_t, int> program = g_reached;
    std::erase_if(program, [&](const auto& reached) { return !places.contains(reached.first); });
    return program;
}

void FailAt(uintptr_t place, int time) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_failed = false;
    g_socket_failed = false;
    g_failing = place;
    g_left = time;
}

bool HasFailed() { return g_failed; }

void FailEvery(const char* call) {
    AllPlaces();  // before the lock
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_every = call;
}

// ---------------------------------------------------------------- the list

static std::string OutputOf(const std::string& command) {
    std::string text;
    FILE* pipe = popen(command.c_str(), "r");
    std::array<char, 4096> piece;
    for (size_t count; pipe && (count = fread(piece.data(), 1, piece.size(), pipe)) > 0;)
        text.append(piece.data(), count);
    if (pipe) pclose(pipe);
    return text;
}

static std::string OwnPath() {
    std::array<char, 4096> path = {};
    const ssize_t size = readlink("/proc/self/exe", path.data(), path.size() - 1);
    return std::string(path.data(), size > 0 ? static_cast<size_t>(size) : 0);
}

// "  addr: call target <__wrap_NAME>", each with the address of the line after it.
static std::map<uintptr_t, std::string> WrappedCalls(const std::string& program) {
    std::istringstream lines(OutputOf("objdump -d --no-show-raw-insn " + program +
                                      " | grep -A1 '\\(call\\|jmp\\) .*<__wrap_'"));
    std::map<uintptr_t, std::string> calls;
    std::string call;
    for (std::string line; std::getline(lines, line);) {
        const size_t name = line.find("<__wrap_");
        const size_t colon = line.find(':');
        const bool code = colon != std::string::npos;
        if (code && !call.empty()) calls[std::stoul(line, nullptr, 16)] = call;
        call.clear();
        if (line.find("SliceLastError") != std::string::npos) continue;
        if (code && name != std::string::npos)
            call = line.substr(name + 8, line.find('>', name) - name - 8);
    }
    return calls;
}

static bool IsSlice(const std::string& file) { return file.starts_with("platform/"); }
static bool IsTest(const std::string& file) { return file.starts_with("tests/"); }

// The file below the top of the tree, or nothing for code of the tests and of the slice.
static std::string InProgram(const std::string& line) {
    const size_t up = line.rfind("../");
    std::string file = up == std::string::npos ? line : line.substr(up + 3);
    if (file.starts_with(QUILL_TOP "/")) file.erase(0, sizeof(QUILL_TOP));
    const bool in_tree = std::filesystem::exists(QUILL_TOP "/" + file.substr(0, file.find(':')));
    return in_tree && !IsSlice(file) && !IsTest(file) ? file : "";
}

static Places MakePlaces() {
    const std::string program = OwnPath();
    const std::map<uintptr_t, std::string> calls = WrappedCalls(program);
    std::string addresses;
    for (const auto& [place, call] : calls) {
        std::ostringstream hex;
        hex << std::hex << place - 1;
        addresses += " " + hex.str();
    }
    std::istringstream lines(
        OutputOf("echo" + addresses + " | tr ' ' '\\n' | addr2line -a -i -f -C -e " + program));
    Places places;
    uintptr_t place = 0;
    std::string function;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("0x")) {
            place = std::stoul(line, nullptr, 16) + 1;
            continue;
        }
        function = line;
        if (!std::getline(lines, line)) break;
        const std::string file = InProgram(line);
        if (file.empty() || !calls.contains(place)) continue;
        Place& known = places[place];
        known.call = calls.at(place);
        if (known.line.empty()) known.line = file.substr(0, file.find(' '));
        // A lambda has no name; the procedure around it has.
        if (known.procedure.empty()) known.procedure = function.substr(0, function.find('('));
    }
    return places;
}

const Places& AllPlaces() {
    static const Places places = MakePlaces();
    return places;
}
