// Ships in port: a list with many menu numbers, after a blank and before a full stop or a colon.
#include <cstdio>
#include <cstdlib>
#include "demo/screens.h"

namespace {

struct Ship {
    const char* name;
    const char* cargo;
};

// clang-format off
const Ship kShips[] = {
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

void WriteShip(std::string& out, int number) {
    const Ship& ship = kShips[number - 1];
    const bool right = number > kShipsAColumn;
    char text[60];
    snprintf(text, sizeof text, " %2d%c %-15s%s", number, right ? ':' : '.', ship.name, ship.cargo);
    WriteAt(out, kFirstRow + (number - 1) % kShipsAColumn, right ? 42 : 6, text);
}

void AskShip(Session& session) {
    StartLine(session, false);
    WriteAt(session.out, kChoiceRow, 6, "Choice: \x1b[K");
}

void EnterShips(Session& session) {
    std::string& out = session.out;
    WriteTitle(out, "Ships in port");
    WriteBox(out, 3, 3, 18, 76, "");
    for (int number = 1; number <= kShipCount; ++number) WriteShip(out, number);
    WriteHint(out, "A number and Enter: more about a ship    Enter alone: back to the menu");
    AskShip(session);
}

void TellShip(Session& session, int number) {
    std::string& out = session.out;
    MoveTo(out, 21, 6);
    out += "\x1b[K";
    if (number < 1 || number > kShipCount) {
        out += "There is no such ship.";
        return;
    }
    char text[100];
    snprintf(text, sizeof text, "%s lies at berth %d with %s, draught %d.%d m.",
             kShips[number - 1].name, number % 9 + 1, kShips[number - 1].cargo, 2 + number % 4,
             number % 10);
    out += text;
}

// Digits only and at most three of them, so that the value fits; anything else is no ship.
int ShipNumber(const std::string& text) {
    if (text.size() > 3 || text.find_first_not_of("0123456789") != text.npos) return 0;
    return atoi(text.c_str());
}

void TypedShips(Session& session, const std::string& bytes) {
    for (const char byte : bytes) {
        if (!TakeLineByte(session, byte)) continue;
        if (session.line.text.empty()) return BackToMenu(session, bytes);
        TellShip(session, ShipNumber(session.line.text));
        AskShip(session);
    }
}

}  // namespace

const Screen kShipListPage = {EnterShips, TypedShips, nullptr};
