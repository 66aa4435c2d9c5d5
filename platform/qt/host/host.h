// SPDX-License-Identifier: MIT
// The host: opens the device before Quill runs on it and closes it afterwards. It also loads icons
// from the resources, records the text that was last drawn on each window, and keeps the place of
// the window.
#ifndef QUILL_PLATFORM_QT_HOST_HOST_H
#define QUILL_PLATFORM_QT_HOST_HOST_H

#include <QIcon>
#include <QSize>
#include <QString>
#include <QStringList>
#include <string>

#include "platform/qt/window/window.h"
#include "windows_ce.h"

struct HostOptions {
    std::string root;  // the device's root folder; empty: a folder below the user's data folder
    QSize screen;      // the device's size in pixels; empty: large enough for 80x24 characters
    double scale = 0;  // desktop pixels per device pixel; 0: chosen for this desktop
    QString snapshot;  // file for a picture of the session once it paints no more
    QString text;      // file for the session's text at the same moment
};

// True if a picture or the text is wanted.
inline bool WantsFile(const HostOptions& options) {
    return !options.snapshot.isEmpty() || !options.text.isEmpty();
}

// Makes the folder of --root if it is missing. Returns false after a complaint on stderr.
bool MakeRoot(const std::string& folder);

void OpenDevice(const HostOptions& options);  // needs a QApplication
void CloseDevice();

// Returns the icon with that number in all its sizes, without those that are damaged; a null icon
// if there is no picture.
QIcon LoadProgramIcon(WORD number);

void KeepScreenText();                // starts recording, as the drawing observer
void ForgetScreenText();              // stops recording
QStringList ScreenText(HWND window);  // line by line, without trailing blanks
int PaintsKept();                     // number of WM_PAINT messages since KeepScreenText

// ---------------------------------------------------------------- the window's place

// ROOT/window.cfg holds it between two runs:
//     size 480 352         device pixels, without the frame
//     place 100 80         of the frame on the desktop; missing if the desktop does not report it
//     desktop 1600 1200    all screens together
//     maximized 1

// Call it before the window is shown. If the file is missing or damaged, the window stays as it is.
// The size is limited to that of the screen. A position where nobody could reach the title bar is
// ignored. If the desktop's size has changed, the whole window is moved onto a screen.
void RestoreWindowPlace();
// Saves the place of a window that has been shown.
void SaveWindowPlace();

#endif
