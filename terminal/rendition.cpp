// Graphic rendition and character protection.
#include "terminal/rendition.h"

#include "terminal/screen_buffer.h"

struct RenditionRow {
    int value;
    DWORD kept;  // of the current attribute
    DWORD added;
};

// clang-format off
static const DWORD kAllBits = 0xFFFF;
static const RenditionRow kRenditions[] = {
    { 0, 0,                          0             },
    { 1, kAllBits,                   kCellBold     },
    { 4, kAllBits,                   kCellUnderline},
    { 5, kAllBits,                   kCellBlink    },
    { 7, kAllBits,                   kCellReverse  },
    {22, kAllBits & ~kCellBold,      0             },
    {24, kAllBits & ~kCellUnderline, 0             },
    {25, kAllBits & ~kCellBlink,     0             },
    {27, kAllBits & ~kCellReverse,   0             },
    {40, 0,                          0             },
};
// clang-format on

void SelectRendition() {
    DWORD attr = session.screen.current_attr;
    for (int i = 0; i < session.parser.param_count; ++i) {
        for (const RenditionRow& row : kRenditions) {
            if (row.value == session.parser.params[i]) attr = (attr & row.kept) | row.added;
        }
    }
    session.screen.current_attr = static_cast<WORD>(attr);
}

void SelectProtection() {
    if (!session.parser.quote_flag) return;
    const int value = session.parser.params[0];
    if (value >= 0 && value <= 2) SetProtected(value == 1);
}
