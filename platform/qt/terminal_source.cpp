// SPDX-License-Identifier: MIT
// Reads the terminal's text for screen readers from the session record, and its settings.
#include "platform/qt/terminal_source.h"

#include "platform/qt/window/accessible.h"
#include "session/session_state.h"
#include "settings/settings.h"
#include "terminal/screen_buffer.h"

namespace {

// Characters that look like the line-drawing glyphs. A glyph that is not in the table becomes a
// blank.
struct GlyphText {
    DWORD code;
    char16_t text;
};

}  // namespace

static const GlyphText kGlyphTexts[] = {
    {'a', u'▒'}, {'j', u'┘'}, {'k', u'┐'}, {'l', u'┌'}, {'m', u'└'}, {'n', u'┼'},
    {'o', u'⎺'}, {'p', u'─'}, {'q', u'─'}, {'r', u'─'}, {'s', u'⎽'}, {'t', u'├'},
    {'u', u'┤'}, {'v', u'┴'}, {'w', u'┬'}, {'x', u'│'}, {'}', u'£'}, {'~', u'·'},
};
constexpr WCHAR kAfterUpperControls = 0xa0;
constexpr DWORD kFirstGlyphCode = 95;
constexpr DWORD kLastGlyphCode = 126;

static QChar CharacterOf(DWORD cell) {
    const auto code = static_cast<unsigned char>(cell & 0xff);
    if ((cell & kCellGraphic) && code >= kFirstGlyphCode && code <= kLastGlyphCode) {
        for (const GlyphText& glyph : kGlyphTexts)
            if (glyph.code == code) return glyph.text;
        return u' ';
    }
    WCHAR character = u' ';
    const auto byte = static_cast<char>(code);
    MultiByteToWideChar(CP_ACP, 0, &byte, 1, &character, 1);
    return character < u' ' || (character >= 0x7f && character < kAfterUpperControls)
               ? QChar(u' ')
               : QChar(character);
}

// Removes trailing blanks, but keeps at least `least` columns.
static QString RowText(int row, int least) {
    QString text;
    for (int column = 1; column <= kScreenColumns; ++column)
        text += CharacterOf(GetCell(row, column));
    auto length = text.size();
    while (length > least && text[length - 1] == ' ') --length;
    return text.left(length);
}

static QPoint CursorPlace() {
    const ScreenBuffer& screen = session.screen;
    return QPoint(std::clamp(screen.cursor_col, 1, kScreenColumns) - 1,
                  std::clamp(screen.cursor_row, 1, kScreenRows) - 1);
}

static QRect Selected() {
    if (!session.screen.selection_active) return QRect();
    const ScreenArea area = SelectedArea();
    const QRect marked(QPoint(area.first_col - 1, area.first_row - 1),
                       QPoint(area.last_col - 1, area.last_row - 1));
    return marked & QRect(0, 0, kScreenColumns, kScreenRows);
}

static QRect FirstCell() {
    const ViewState& view = session.view;
    return QRect(-view.view_left * view.cell_width, -view.view_top * view.cell_height,
                 view.cell_width, view.cell_height);
}

static TextScreen ReadTerminal() {
    TextScreen screen;
    screen.cursor = CursorPlace();
    screen.selected = Selected();
    screen.cell = FirstCell();
    for (int row = 1; row <= kScreenRows; ++row)
        screen.rows << RowText(row, row - 1 == screen.cursor.y() ? screen.cursor.x() : 0);
    return screen;
}

void ServeTerminalText() {
    text_screen_source.window = [] { return session.client_window; };
    text_screen_source.read = ReadTerminal;
}

// The program loads its accelerators after its settings.
void SaveLoadedSettings() {
    if (session.accelerators && session.save_settings == 1) SaveSettings();
}
