// SPDX-License-Identifier: MIT
// Pages that show the bytes that the terminal sends: its answers to report requests, and its keys.
#include <algorithm>
#include <cstdio>
#include <iterator>
#include "demo/session.h"

// Returns bytes as text: printable ones unchanged, ESC and CSI by name, others in hexadecimal.
// After about `most` characters the text is cut and ends in "...".
static std::string Readable(const std::string& bytes, size_t most) {
    std::string text;
    for (const char byte : bytes) {
        const unsigned char code = static_cast<unsigned char>(byte);
        char piece[8];
        if (code == 27) {
            snprintf(piece, sizeof(piece), "ESC ");
        } else if (code == 0x9B) {
            snprintf(piece, sizeof(piece), "CSI ");
        } else if (code > 32 && code < 127) {
            snprintf(piece, sizeof(piece), "%c", code);
        } else {
            snprintf(piece, sizeof(piece), "<%02X>", code);
        }
        if (text.size() + 5 > most) return text + "...";
        text += piece;
    }
    return text;
}

static std::string Hex(const std::string& bytes, size_t most) {
    std::string text;
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (i == most) return text + "...";
        char piece[8];
        snprintf(piece, sizeof(piece), "%02X ", static_cast<unsigned char>(bytes[i]));
        text += piece;
    }
    return text;
}

namespace {

struct Question {
    const char* label;
    const char* request;
};

}  // namespace

// clang-format off
static const Question kQuestions[] = {
    {"Primary attributes",    "\x1b[c"},
    {"Secondary attributes",  "\x1b[>c"},
    {"Status",                "\x1b[5n"},
    {"Cursor position",       "\x1b[6n"},
    {"Printer",               "\x1b[?15n"},
    {"User-defined keys",     "\x1b[?25n"},
    {"Keyboard",              "\x1b[?26n"},
    {"Parameters",            "\x1b[1x"},
    {"Answerback",            "\x05"},
};
// clang-format on

constexpr int kQuestionCount = static_cast<int>(std::size(kQuestions));
constexpr int kFirstQuestionRow = 6, kAnswerCol = 42;
constexpr long long kMostWait = 1000, kQuiet = 150;

static int QuestionRow(const Session& session) { return kFirstQuestionRow + session.step; }

static void Ask(Session& session) {
    const Question& question = kQuestions[session.step];
    WriteAt(session.out, QuestionRow(session), 5, Fit(question.label, 24));
    session.out += Fit(Readable(question.request, 20), 12);
    session.answer.clear();
    // Puts the cursor where the answer will be shown, so that the answer to the cursor position
    // request is known.
    MoveTo(session.out, QuestionRow(session), kAnswerCol);
    session.out += question.request;
    session.wake = Now() + kMostWait;
}

static void EnterReports(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Device reports");
    WriteStyled(out, 4, 5, "4", Fit("Question", 24) + Fit("Sent", 13) + Fit("Answer", 34));
    WriteHint(out, "Asking the terminal ...");
    Ask(session);
}

// Called kQuiet milliseconds after the last byte of an answer, or after kMostWait without an
// answer.
static void TickReports(Session& session) {
    const std::string text = session.answer.empty() ? "no answer" : Readable(session.answer, 34);
    WriteAt(session.out, QuestionRow(session), kAnswerCol, text);
    ++session.step;
    if (session.step < kQuestionCount) return Ask(session);
    session.wake = 0;
    WriteHint(session.out, kAnyKey);
}

static void TypedReports(Session& session, const std::string& bytes) {
    if (session.step >= kQuestionCount) return BackToMenu(session, bytes);
    if (session.answer.size() < 64) session.answer += bytes;
    session.wake = Now() + kQuiet;
}

constexpr int kFirstKeyRow = 6, kKeyRows = 16;

static void EnterKeys(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Keys");
    WriteAt(out, 3, 5, "Press keys to see the bytes they send. Enter twice returns to the menu.");
    WriteStyled(out, 4, 5, "4", Fit("No.", 8) + Fit("Bytes", 37) + Fit("As text", 26));
    WriteHint(out, "Enter twice: back to the menu");
    MoveTo(out, kFirstKeyRow, 5);
}

static bool IsEnter(const std::string& bytes) {
    return bytes.find_first_not_of(std::string("\r\n\0", 3)) == bytes.npos;
}

// The rows are used in a cycle. The row after the newest one is blanked, so that the newest one is
// easy to find.
static void TypedKeys(Session& session, const std::string& bytes) {
    std::string& out = session.out;
    const auto enters = std::count(bytes.begin(), bytes.end(), '\r');
    session.field = IsEnter(bytes) ? session.field + static_cast<int>(enters) : 0;
    if (session.field >= 2) return BackToMenu(session, bytes);
    const int row = kFirstKeyRow + session.step % kKeyRows;
    const int next = kFirstKeyRow + (session.step + 1) % kKeyRows;
    session.step = (session.step + 1) % 10000;
    WriteAt(out, row, 5, "\x1b[K" + Fit(std::to_string(session.step), 8));
    out += Fit(Hex(bytes, 11), 37) + Readable(bytes, 26);
    WriteAt(out, next, 5, "\x1b[K");
}

const Screen kReportsPage = {EnterReports, TypedReports, TickReports};
const Screen kKeysPage = {EnterKeys, TypedKeys, nullptr};
