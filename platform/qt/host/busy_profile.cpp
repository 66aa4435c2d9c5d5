// SPDX-License-Identifier: MIT
// Each profile has at most one window; a second start is pointed to the first.
#include "platform/qt/host/busy_profile.h"

#include <unistd.h>

#include <QMessageBox>

#include "platform/qt/window/window.h"

bool IsProfileBusy(const CommandLine& line) {
    const HWND other = FindOtherInstance();
    if (!other) return false;
    SetForegroundWindow(other);
    const QString text = QString(
                             "Quill already runs on these settings. For a second window with "
                             "%1, start: quill --profile NAME %1")
                             .arg(QString::fromStdString(line.target.host));
    std::fprintf(stderr, "quill: %s\n", qPrintable(text));
    if (!isatty(STDERR_FILENO)) QMessageBox::information(nullptr, "Quill Telnet", text);
    return true;
}
