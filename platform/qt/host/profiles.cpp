// SPDX-License-Identifier: MIT
// Profiles: lists them, and marks the window of one. Each profile has at most one window; a second
// start is pointed to the first.
#include "platform/qt/host/profiles.h"

#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <QIcon>
#include <QMessageBox>
#include <QPainter>

#include "platform/qt/services/services.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"

constexpr size_t kLongestName = 40;

static bool IsPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

static std::string ProfilesFolder() { return UserRoot() + "/profiles"; }

static const QColor kDisc(0x60, 0x00, 0x20);

// Draws the letter in white on a dark disc, a little larger than the lower right quarter.
static void DrawLetter(QPixmap* picture, QChar letter) {
    const int side = picture->width() * 5 / 8;
    const QRect place(picture->width() - side, picture->height() - side, side, side);
    QPainter painter(picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(kDisc);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(place);
    QFont font = painter.font();
    font.setPixelSize(std::max(side * 3 / 4, 6));
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(place, Qt::AlignCenter, letter.toUpper());
}

bool IsProfileName(const std::string& name) {
    if (name.empty() || name.size() > kLongestName || !IsPlain(name[0])) return false;
    return std::all_of(name.begin(), name.end(),
                       [](char c) { return IsPlain(c) || c == '.' || c == '-' || c == '_'; });
}

std::string ProfileFolder(const std::string& name) { return ProfilesFolder() + "/" + name; }

std::vector<std::string> ProfileNames() {
    std::vector<std::string> names;
    DIR* folder = opendir(ProfilesFolder().c_str());
    if (!folder) return names;
    while (const dirent* entry = readdir(folder)) {
        if (!IsProfileName(entry->d_name)) continue;
        if (DIR* profile = opendir(ProfileFolder(entry->d_name).c_str())) {
            closedir(profile);
            names.push_back(entry->d_name);
        }
    }
    closedir(folder);
    std::sort(names.begin(), names.end());
    return names;
}

void MarkWindow(const std::string& profile) {
    if (profile.empty()) return;
    const QString name = QString::fromStdString(profile);
    const QIcon plain = DeviceScreen()->windowIcon();
    QIcon marked;
    for (const QSize& size : plain.availableSizes()) {
        QPixmap picture = plain.pixmap(size, 1.0);
        DrawLetter(&picture, name[0]);
        marked.addPixmap(picture);
    }
    DeviceScreen()->setWindowIcon(marked);
    DeviceScreen()->winId();  // creates the native window, which takes the icon text
    DeviceScreen()->setWindowIconText(name + " - Quill");
}

// ---------------------------------------------------------------- a second start

static void TellNoSession() {
    std::fprintf(stderr, "quill: Quill already runs on %s, so this start has no session to save\n",
                 Printable(DeviceRoot()).c_str());
}

bool IsProfileBusy(const CommandLine& line) {
    const HWND other = FindOtherInstance();
    if (!other) return false;
    if (WantsFile(line.options)) return TellNoSession(), true;
    SetForegroundWindow(other);
    const QString text = QString(
                             "Quill already runs on these settings. For a second window with "
                             "%1, start: quill --profile NAME %1")
                             .arg(QString::fromStdString(line.target.host));
    std::fprintf(stderr, "quill: %s\n", qPrintable(text));
    if (!isatty(STDERR_FILENO)) QMessageBox::information(nullptr, "Quill Telnet", text);
    return true;
}

void TellIfSizeIsKept(const HostOptions& options) {
    const bool named = !options.screen.isEmpty() || options.scale > 0;
    if (!named || !FindOtherInstance()) return;
    std::fprintf(stderr,
                 "quill: Quill already runs on %s, so its window keeps its size and scale\n",
                 Printable(DeviceRoot()).c_str());
}
