// SPDX-License-Identifier: MIT
// The screens around the pages: banner with login and password, the main menu, and goodbye.
#include <cstdio>

#include "demo/session.h"

// ---------------------------------------------------------------- login

// Banner, login and password. Any name and any password are accepted.

static void WriteBanner(std::string& out) {
    const char* name = "HARBOUR STORES";
    WriteAt(out, 4, 16, std::string("\x1b[1m").append(name).append("\x1b[m"));
    WriteGraphics(out, 6, 16, std::string(48, 'q'));
    WriteAt(out, 7, 16, "Quay 4, North Basin     stock and shipping desk");
    WriteGraphics(out, 8, 16, std::string(48, 'q'));
    WriteAt(out, 10, 16, "A demo host on this machine. Any name and any");
    WriteAt(out, 11, 16, "password will let you in.");
}

static void EnterLogin(Session& session) {
    WriteBanner(session.out);
    WriteAt(session.out, 14, 16, "login: ");
}

static void AskPassword(Session& session) {
    session.name = session.line.text;
    session.step = 1;
    StartLine(session, true);
    WriteAt(session.out, 15, 16, "Password: ");
}

static void TypedLogin(Session& session, const std::string& bytes) {
    for (const char byte : bytes) {
        if (!TakeLineByte(session, byte)) continue;
        if (session.step == 1) return ShowScreen(session, kMenuScreen);
        if (session.line.text.empty()) {
            WriteAt(session.out, 14, 16, "login: ");
        } else {
            AskPassword(session);
        }
    }
}

static void EnterGoodbye(Session& session) {
    WriteAt(session.out, 2, 3, "Thank you for calling, " + session.name + ".");
    WriteAt(session.out, 3, 3, "Harbour Stores is open every day from 6:30.");
    session.out += "\r\n\r\n";
    session.ending = true;
}

static void TypedNothing(Session&, const std::string&) {}

const Screen kLoginScreen = {EnterLogin, TypedLogin, nullptr};
const Screen kGoodbyeScreen = {EnterGoodbye, TypedNothing, nullptr};

// ---------------------------------------------------------------- the menu

// The main menu. Each number has a blank before it and a full stop after it, so that the terminal
// accepts a double tap on it as a menu number.

namespace {

struct Choice {
    const char* number;
    const char* label;
    const char* about;
    const Screen* screen;
};

}  // namespace

// clang-format off
static const Choice kChoices[] = {
    {"1",  "Line drawing",        "frames and every special graphics glyph", &kLineDrawingPage},
    {"2",  "Double-size lines",   "double width, double height",             &kDoubleSizePage},
    {"3",  "Attributes",          "bold, underline, blink, reverse",         &kAttributesPage},
    {"4",  "Scrolling region",    "rows 5 to 20 move, the others stay",      &kRegionsPage},
    {"5",  "Slow stream",         "the gate's log, a line each 0.2 seconds", &kSlowStreamPage},
    {"6",  "Fast stream",         "5,000 stock lines at full speed",         &kFastStreamPage},
    {"7",  "Tabs and addressing", "tab stops, a curve drawn point by point", &kTabsPage},
    {"8",  "8-bit characters",    "code page 1252",                          &kCharactersPage},
    {"9",  "Goods received",      "a form with fields",                      &kFormPage},
    {"10", "Ships in port",       "a long list with menu numbers",           &kShipListPage},
    {"11", "Device reports",      "what this terminal says of itself",       &kReportsPage},
    {"12", "Keys",                "the bytes that each key sends",           &kKeysPage},
    {"0",  "Log out",             "",                                        &kGoodbyeScreen},
};
// clang-format on

constexpr int kFirstRow = 6, kChoiceRow = 22;

static void WriteChoice(std::string& out, int row, const Choice& choice) {
    char text[100];
    snprintf(text, sizeof(text), " %2s. %-22s%s", choice.number, choice.label, choice.about);
    WriteAt(out, row, 8, text);
}

static void AskChoice(Session& session) {
    StartLine(session, false);
    WriteAt(session.out, kChoiceRow, 8, "Choice: \x1b[K");
}

static void EnterMenu(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Main menu");
    WriteStyled(out, 3, 8, "1", "Good day, " + session.name + ".");
    const std::string& type = session.telnet.terminal_type;
    WriteAt(out, 3, 50, "Terminal: " + (type.empty() ? std::string("unknown") : Fit(type, 18)));
    WriteBox(out, 5, 5, 16, 72, "What would you like to see?");
    int row = kFirstRow;
    for (const Choice& choice : kChoices) {
        WriteChoice(out, choice.screen == &kGoodbyeScreen ? row + 1 : row, choice);
        ++row;
    }
    WriteHint(out, "Type a number and Enter");
    AskChoice(session);
}

static void Choose(Session& session) {
    for (const Choice& choice : kChoices) {
        if (session.line.text == choice.number) return ShowScreen(session, *choice.screen);
    }
    WriteAt(session.out, kChoiceRow, 30, "\x1b[KThere is no such choice.");
    StartLine(session, false);
    WriteAt(session.out, kChoiceRow, 8, "Choice: " + std::string(14, ' ') + std::string(14, '\b'));
}

static void TypedMenu(Session& session, const std::string& bytes) {
    for (const char byte : bytes) {
        if (!TakeLineByte(session, byte)) continue;
        if (session.line.text.empty()) {
            AskChoice(session);
            continue;
        }
        Choose(session);
        if (session.screen != &kMenuScreen) return;
    }
}

const Screen kMenuScreen = {EnterMenu, TypedMenu, nullptr};

void BackToMenu(Session& session, const std::string&) { ShowScreen(session, kMenuScreen); }
