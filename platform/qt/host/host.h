// The host: opens the device before the program runs on it, and takes it down afterwards.
#ifndef QUILL_PLATFORM_QT_HOST_HOST_H
#define QUILL_PLATFORM_QT_HOST_HOST_H

#include "platform/qt/window/slice.h"

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

#endif
