// SPDX-License-Identifier: MIT
//     size 480 352         device pixels, without the frame
//     place 100 80         of the frame on the desktop; missing if the desktop does not report it
//     desktop 1600 1200    all screens together
//     maximized 1
// maximized 1
#ifndef QUILL_PLATFORM_QT_WINDOW_PLACE_H
#define QUILL_PLATFORM_QT_WINDOW_PLACE_H

// Call it before the window is shown. If the file is missing or damaged, the window stays as it is.
// The size is limited to that of the screen. A position where nobody could reach the title bar is
// ignored. If the desktop's size has changed, the whole window is moved onto a screen.
void RestoreWindowPlace();
// Saves the place of a window that has been shown.
void SaveWindowPlace();

#endif
