// The two split regions.
#include "terminal/split_regions.h"

#include <algorithm>

#include "terminal/cursor.h"

void ResetSplit() {
    const int rows = session.screen.rows;
    SplitRegions& split = session.split;
    split.active_region = 1;
    split.upper_height = rows;
    split.region_last_row = rows;
    split.upper = {1, 1, 1, rows, 0, 0};
    split.lower = {1, split.lower.row, rows, rows, 0, 0};
}

// The top margin stays. Where the upper region takes the whole screen the lower one starts on row
// 1.
void DefineSplit() {
    SplitRegions& split = session.split;
    const int rows = session.screen.rows;
    const int height = std::min(session.parser.params[0], rows);
    if (height < 1) return;
    split.active_region = 1;
    split.upper_height = height;
    split.region_last_row = height;
    session.screen.bottom_margin = height;
    split.upper.col = 1;
    split.upper.row = 1;
    split.upper.bottom_margin = height;
    split.lower.col = 1;
    split.lower.row = height == rows ? 1 : rows;
    split.lower.top_margin = height == rows ? 1 : height + 1;
    MoveCursor(1, 1);
}

static void SaveRegion(RegionCursor* region) {
    const ScreenBuffer& screen = session.screen;
    *region = {screen.cursor_col,    screen.cursor_row,   screen.top_margin,
               screen.bottom_margin, screen.current_attr, session.parser.pending_wrap};
}

static void RestoreRegion(const RegionCursor& region) {
    session.screen.top_margin = region.top_margin;
    session.screen.bottom_margin = region.bottom_margin;
    session.screen.current_attr = region.attr;
    session.parser.pending_wrap = region.pending_wrap;
    MoveCursor(region.row, region.col);
}

void SwitchRegion() {
    SplitRegions& split = session.split;
    if (session.parser.param_count != 1) return;
    const int wanted = session.parser.params[0];
    if (wanted == 1 && split.active_region == 1) {
        SaveRegion(&split.upper);
        split.active_region = 0;
        split.region_last_row = session.screen.rows;
        RestoreRegion(split.lower);
    } else if (wanted == 0 && split.active_region == 0) {
        SaveRegion(&split.lower);
        split.active_region = 1;
        split.region_last_row = split.upper_height;
        RestoreRegion(split.upper);
    }
}
