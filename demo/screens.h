// SPDX-License-Identifier: MIT
// The screens of the demo host, and the procedures that they use to write terminal output.
#ifndef QUILL_DEMO_SCREENS_H
#define QUILL_DEMO_SCREENS_H

#include <string>

#include "demo/session.h"

// ---------------------------------------------------------------- writing

// Small procedures that append terminal output to `out`: cursor addressing, attributes, boxes,
// title bars. Rows and columns count from 1 on a screen of 24 rows by 80 columns (ECMA-48, DEC
// VT100 private sequences).

// Resets modes, margins, attributes and character sets, blanks the screen and moves the cursor
// home.
void ClearScreen(std::string& out);

void MoveTo(std::string& out, int row, int col);
void WriteAt(std::string& out, int row, int col, const std::string& text);

// Writes text with the given graphic rendition ("1;7"), then turns all attributes off.
void WriteStyled(std::string& out, int row, int col, const char* rendition,
                 const std::string& text);

// Writes text in the special graphics set, for example "lqqk".
void WriteGraphics(std::string& out, int row, int col, const std::string& text);

// Draws a frame of `height` by `width` cells with a title in its upper edge ("" for no title).
void WriteBox(std::string& out, int row, int col, int height, int width, const std::string& title);

// WriteTitle writes row 1 as a reverse bar with the page's title, WriteHint row 24 as a reverse bar
// with a hint.
void WriteTitle(std::string& out, const std::string& title);
void WriteHint(std::string& out, const std::string& hint);

// Returns `text` cut to `width`, or filled with blanks to `width`.
std::string Fit(const std::string& text, int width);

// ---------------------------------------------------------------- the screens

extern const Screen kLoginScreen, kMenuScreen, kGoodbyeScreen;
extern const Screen kLineDrawingPage, kDoubleSizePage, kAttributesPage;
extern const Screen kRegionsPage, kTabsPage;
extern const Screen kSlowStreamPage, kFastStreamPage;
extern const Screen kCharactersPage;
extern const Screen kFormPage, kShipListPage;
extern const Screen kReportsPage, kKeysPage;

// The `typed` procedure of a page that returns to the menu at any key.
void BackToMenu(Session& session, const std::string& bytes);

constexpr const char kAnyKey[] = "Press any key to return to the menu";

#endif
