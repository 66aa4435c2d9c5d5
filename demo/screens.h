// SPDX-License-Identifier: MIT
// What the demo host's screens are made of, and every one of them.
#ifndef QUILL_DEMO_SCREENS_H
#define QUILL_DEMO_SCREENS_H

#include <string>

#include "demo/session.h"

// ---------------------------------------------------------------- writing

// Small procedures that write terminal output: cursor addressing, attributes, boxes, title bars.
// Rows and columns count from 1 on a screen of 24 by 80 (ECMA-48, DEC VT100 private sequences).

// Modes, margins, attributes and character sets as at the start; screen blank, cursor home.
void ClearScreen(std::string& out);

void MoveTo(std::string& out, int row, int col);
void WriteAt(std::string& out, int row, int col, const std::string& text);

// Text between the given graphic rendition ("1;7") and attributes off.
void WriteStyled(std::string& out, int row, int col, const char* rendition,
                 const std::string& text);

// Text in the special graphics set, for example "lqqk".
void WriteGraphics(std::string& out, int row, int col, const std::string& text);

// A frame of `height` by `width` cells with a title in its upper edge ("" for none).
void WriteBox(std::string& out, int row, int col, int height, int width, const std::string& title);

// Row 1 as a reverse bar with the page's title, row 24 as a reverse bar with a hint.
void WriteTitle(std::string& out, const std::string& title);
void WriteHint(std::string& out, const std::string& hint);

// `text` cut or filled with blanks to `width`.
std::string Fit(const std::string& text, int width);

// ---------------------------------------------------------------- the screens

extern const Screen kLoginScreen, kMenuScreen, kGoodbyeScreen;
extern const Screen kLineDrawingPage, kDoubleSizePage, kAttributesPage;
extern const Screen kRegionsPage, kTabsPage;
extern const Screen kSlowStreamPage, kFastStreamPage;
extern const Screen kCharactersPage;
extern const Screen kFormPage, kShipListPage;
extern const Screen kReportsPage, kKeysPage;

// `typed` of a page that any key leaves.
void BackToMenu(Session& session, const std::string& bytes);

constexpr const char kAnyKey[] = "Press any key to return to the menu";

#endif
