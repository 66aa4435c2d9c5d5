// Printable characters into the grid.
#include "terminal/text_output.h"

#include "terminal/actions.h"

static void WrapLine() {
    session.screen.cursor_col = 1;
    LineFeed();
}

void WritePrintable(BYTE code) {
    ScreenBuffer& screen = session.screen;
    ParserState& parser = session.parser;
    if (parser.pending_wrap && screen.cursor_col == screen.columns) WrapLine();
    parser.pending_wrap = 0;
    if (session.modes.insert_mode) InsertCell(screen.cursor_row, screen.cursor_col);
    SetCell(screen.cursor_row, screen.cursor_col, code | WrittenAttr());
    if (screen.cursor_col < screen.columns) {
        ++screen.cursor_col;
    } else if (session.modes.autowrap) {
        parser.pending_wrap = 1;
    }
    ClampColumn();
}
