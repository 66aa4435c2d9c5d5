// The terminal's font: the device's fixed-pitch faces, and the font in use with the size of its
// character cell. The size is the setting fsize; every procedure here holds it to 1..25 before use.
#ifndef QUILL_UI_VIEW_TERMINAL_FONT_H
#define QUILL_UI_VIEW_TERMINAL_FONT_H

#include "windows_ce.h"

// Fills session.view.faces with the device's fixed-pitch families, at most 24, in their order.
void ListFontFaces(HWND window);

// Makes the font that the settings fname, fsize, font_bold and font_italic ask for in place of the
// one before, and measures its cell: cell_height and cell_width (each at least 1) and
// underline_offset. A face that is not listed becomes the first one that is. The view is not laid
// out again: LayoutTerminal does that.
void CreateTerminalFont();

// The next size with another cell height; at 25 and at 1 the size stays. The view is laid out again
// in every case.
void LargerFont();
void SmallerFont();

#endif
