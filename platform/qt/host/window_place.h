// SPDX-License-Identifier: MIT
// Size and place of the desktop's window, kept from run to run in ROOT/window.cfg, beside the
// program's settings: text, mode 0600.
//     size 480 352         device pixels, without the frame
//     place 100 80         of the frame on the desktop; left out where the desktop tells none
//     desktop 1600 1200    all screens together
//     maximized 1
#ifndef QUILL_PLATFORM_QT_WINDOW_PLACE_H
#define QUILL_PLATFORM_QT_WINDOW_PLACE_H

// Before the window is shown. A file that is missing or damaged leaves the window as it is. The
// size is cut to that of the screen; a place where nobody could reach the title bar is dropped,
// and on a desktop of another size the whole window is moved onto a screen.
void RestoreWindowPlace();
// Of a window that has been shown.
void SaveWindowPlace();

#endif
