// SPDX-License-Identifier: MIT
// Pages with typed input: a form with fields, and a long list with menu numbers.
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <type_traits>

#include "demo/session.h"

// ---------------------------------------------------------------- the form

// Goods received: a form with fields. Enter or Tab goes to the next field, Esc returns to the menu.

namespace {

struct Field {
    const char* label;
    int row;
    int width;  // at most kLineMax
};

}  // namespace

// clang-format off
static const Field kFields[] = {
    {"Ship",         6, 24},
    {"Article",      8, 24},
    {"Quantity",    10,  8},
    {"Bay",         12,  4},
    {"Remarks",     14, 30},
};
// clang-format on

constexpr int kFieldCount = static_cast<int>(std::size(kFields));
static_assert(std::size(kFields) == std::extent_v<decltype(Session::fields)>);
constexpr int kLabelCol = 12, kFieldCol = 24;

static void WriteField(std::string& out, const Field& field, const std::string& text) {
    WriteStyled(out, field.row, kFieldCol, "4", Fit(text, field.width));
}

static void GoToField(Session& session, int number) {
    session.field = number;
    StartLine(session, false);
    WriteField(session.out, kFields[number], "");
    MoveTo(session.out, kFields[number].row, kFieldCol);
    session.out += "\x1b[4m";
}

static void EnterForm(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Goods received");
    WriteBox(out, 4, 8, 13, 64, "Delivery note");
    for (const Field& field : kFields) {
        WriteAt(out, field.row, kLabelCol, field.label);
        WriteField(out, field, "");
    }
    WriteHint(out, "Enter: next field    Esc: back to the menu");
    for (std::string& text : session.fields) text.clear();
    GoToField(session, 0);
}

static void Store(Session& session) {
    std::string& out = session.out;
    const std::string& quantity = session.fields[2];
    const bool whole =
        !quantity.empty() && quantity.find_first_not_of("0123456789") == quantity.npos;
    out += "\x1b[0m";
    if (!whole) {
        WriteStyled(out, 18, kLabelCol, "1", Fit("Quantity must be a whole number.", 50));
        return GoToField(session, 2);
    }
    WriteAt(out, 18, kLabelCol, Fit("Noted: " + quantity + " x " + session.fields[1], 60));
    WriteAt(out, 19, kLabelCol, "from " + session.fields[0] + " to bay " + session.fields[3] + ".");
    WriteHint(out, kAnyKey);
    session.step = 1;
}

static void NextField(Session& session) {
    session.fields[session.field] = session.line.text;
    session.out += "\x1b[0m";
    WriteField(session.out, kFields[session.field], session.line.text);
    if (session.field + 1 < kFieldCount) return GoToField(session, session.field + 1);
    Store(session);
}

static bool Fits(const Session& session, char byte) {
    const bool erases = byte == 8 || byte == 127;
    const size_t width = static_cast<size_t>(kFields[session.field].width);
    return erases || session.line.text.size() < width;
}

static void TypedForm(Session& session, const std::string& bytes) {
    if (session.step == 1 || bytes == "\x1b") return BackToMenu(session, bytes);
    for (const char byte : bytes) {
        if (session.step == 1) return;
        if (byte == '\r' || byte == '\t') {
            NextField(session);
        } else if (Fits(session, byte)) {
            TakeLineByte(session, byte);
        }
    }
}

const Screen kFormPage = {EnterForm, TypedForm, nullptr};

// ---------------------------------------------------------------- the list

// Ships in port: a list with many menu numbers. Each has a blank before it and a full stop or a
// colon after it, so that the terminal accepts a double tap on it.

namespace {

struct Ship {
    const char* name;
    const char* cargo;
};

}  // namespace

// clang-format off
static const Ship kShips[] = {
    {"Albatross",     "sailcloth"},      {"Anna Marie",    "oak planks"},
    {"Bright Star",   "lanterns"},       {"Cormorant",     "fresh water"},
    {"Dogger",        "herring"},        {"Eider",         "hemp rope"},
    {"Fair Isle",     "wool"},           {"Gannet",        "tar"},
    {"Good Intent",   "biscuit"},        {"Guillemot",     "coal"},
    {"Halcyon",       "tea"},            {"Heron",         "bricks"},
    {"Isobel",        "apples"},         {"Jackdaw",       "slate"},
    {"Katrine",       "timber"},         {"Kittiwake",     "rye"},
    {"Lapwing",       "salt"},           {"Linnet",        "candles"},
    {"Merganser",     "iron"},           {"Nightjar",      "anchors"},
    {"Osprey",        "wine"},           {"Oystercatcher", "barrels"},
    {"Petrel",        "empty"},          {"Plover",        "glass"},
    {"Quiet Hour",    "paper"},          {"Redshank",      "butter"},
    {"Sandpiper",     "sand"},           {"Shearwater",    "tallow"},
    {"Snipe",         "leather"},        {"Tern",          "mail"},
    {"Three Sisters", "potatoes"},       {"Turnstone",     "granite"},
};
// clang-format on

constexpr int kShipCount = 32, kShipsAColumn = 16, kFirstRow = 4, kChoiceRow = 22;

static void WriteShip(std::string& out, int number) {
    const Ship& ship = kShips[number - 1];
    const bool right = number > kShipsAColumn;
    char text[60];
    snprintf(text, sizeof(text), " %2d%c %-15s%s", number, right ? ':' : '.', ship.name,
             ship.cargo);
    WriteAt(out, kFirstRow + (number - 1) % kShipsAColumn, right ? 42 : 6, text);
}

static void AskShip(Session& session) {
    StartLine(session, false);
    WriteAt(session.out, kChoiceRow, 6, "Choice: \x1b[K");
}

static void EnterShips(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Ships in port");
    WriteBox(out, 3, 3, 18, 76, "");
    for (int number = 1; number <= kShipCount; ++number) WriteShip(out, number);
    WriteHint(out, "A number and Enter: more about a ship    Enter alone: back to the menu");
    AskShip(session);
}

static void TellShip(Session& session, int number) {
    std::string& out = session.out;
    MoveTo(out, 21, 6);
    out += "\x1b[K";
    if (number < 1 || number > kShipCount) {
        out += "There is no such ship.";
        return;
    }
    char text[100];
    snprintf(text, sizeof(text), "%s lies at berth %d with %s, draught %d.%d m.",
             kShips[number - 1].name, number % 9 + 1, kShips[number - 1].cargo, 2 + number % 4,
             number % 10);
    out += text;
}

// Accepts one to three digits, so that the value fits into an int. Returns 0, which is no ship, for
// any other text.
static int ShipNumber(const std::string& text) {
    if (text.size() > 3 || text.find_first_not_of("0123456789") != text.npos) return 0;
    return atoi(text.c_str());
}

static void TypedShips(Session& session, const std::string& bytes) {
    for (const char byte : bytes) {
        if (!TakeLineByte(session, byte)) continue;
        if (session.line.text.empty()) return BackToMenu(session, bytes);
        TellShip(session, ShipNumber(session.line.text));
        AskShip(session);
    }
}

const Screen kShipListPage = {EnterShips, TypedShips, nullptr};
