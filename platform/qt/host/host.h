// SPDX-License-Identifier: MIT
// The host: opens the device before the program runs on it, and takes it down afterwards; the icons
// of the resources; the text that stands on each window, as it was drawn last.
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
    std::string root;  // the device's root folder; empty: below the user's data folder
    QSize screen;      // pixels of the device; empty: 80x24 characters fit
    double scale = 0;  // desktop pixels a device pixel; 0: readable on this desktop
    QString snapshot;  // picture file: written when the session has come to rest
    QString text;      // text file, likewise
};

// Makes the folder of --root if it is missing; false after a complaint.
bool MakeRoot(const std::string& folder);

void OpenDevice(const HostOptions& options);  // needs a QApplication
void CloseDevice();

// The icon of that number with all its sizes; those that are damaged are left out. Null without
// any.
QIcon LoadProgramIcon(WORD number);

void KeepScreenText();                // from now on, as one of those who look on
void ForgetScreenText();              // and no more
QStringList ScreenText(HWND window);  // line by line; blanks at the end cut
int PaintsKept();                     // how many WM_PAINTs there have been since KeepScreenText

#endif
