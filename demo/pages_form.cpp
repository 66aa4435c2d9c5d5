// Goods received: a form with fields. Enter or Tab goes to the next field, Esc leaves.
#include <iterator>
#include <type_traits>
#include "demo/screens.h"

namespace {

struct Field {
    const char* label;
    int row;
    int width;  // at most kLineMax
};

// clang-format off
const Field kFields[] = {
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

void WriteField(std::string& out, const Field& field, const std::string& text) {
    WriteStyled(out, field.row, kFieldCol, "4", Fit(text, field.width));
}

void GoToField(Session& session, int number) {
    session.field = number;
    StartLine(session, false);
    WriteField(session.out, kFields[number], "");
    MoveTo(session.out, kFields[number].row, kFieldCol);
    session.out += "\x1b[4m";
}

void EnterForm(Session& session) {
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

void Store(Session& session) {
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

void NextField(Session& session) {
    session.fields[session.field] = session.line.text;
    session.out += "\x1b[0m";
    WriteField(session.out, kFields[session.field], session.line.text);
    if (session.field + 1 < kFieldCount) return GoToField(session, session.field + 1);
    Store(session);
}

bool Fits(const Session& session, char byte) {
    const bool erases = byte == 8 || byte == 127;
    const size_t width = static_cast<size_t>(kFields[session.field].width);
    return erases || session.line.text.size() < width;
}

void TypedForm(Session& session, const std::string& bytes) {
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

}  // namespace

const Screen kFormPage = {EnterForm, TypedForm, nullptr};
