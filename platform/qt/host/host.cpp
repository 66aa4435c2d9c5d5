// SPDX-License-Identifier: MIT
// The host: opens the device before Quill runs on it and closes it afterwards. It also loads the
// program's icon.
#include "platform/qt/host/host.h"

#include <QDir>
#include <QFontMetrics>
#include <QPixmap>
#include <QStyleFactory>

#include "platform/qt/services/registry.h"
#include "platform/qt/services/resources.h"
#include "platform/qt/services/services.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/accessible.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/gdi.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "resources/resource_ids.h"

constexpr WORD kIcons = 1;  // the resource type of an icon group

static bool FindPart(WORD type, WORD number, ResourceReader* reader) {
    *reader = ResourceReader();
    return FindResourceBytes(MAKEINTRESOURCE(type), MAKEINTRESOURCE(number), &reader->bytes,
                             &reader->size);
}

static void AddPicture(WORD number, QIcon* icon) {
    ResourceReader reader;
    Bitmap picture;
    if (!FindPart(kResourceIcon, number, &reader) || !ReadIcon(reader, &picture)) return;
    const QImage image(reinterpret_cast<const uchar*>(picture.pixels.data()), picture.width,
                       picture.height, QImage::Format_ARGB32);
    icon->addPixmap(QPixmap::fromImage(image));
}

QIcon LoadProgramIcon(WORD number) {
    QIcon icon;
    ResourceReader group;
    if (!FindPart(kResourceIconGroup, number, &group)) return icon;
    group.Skip(2);
    if (group.TakeWord() != kIcons) return icon;
    for (WORD count = group.TakeWord(); count > 0 && group.ok; --count) {
        group.Skip(12);  // the picture itself has the same data
        const WORD picture = group.TakeWord();
        if (group.ok) AddPicture(picture, &icon);
    }
    return icon;
}

extern "C" const uint8_t quill_resources[];
extern "C" const uint8_t quill_resources_end[];

constexpr int kSystemFontPixels = 9;
constexpr int kUsualHeight = 300;
constexpr int kNarrowestPixels = 400;  // wide enough for a full button bar

static int CALLBACK TakeFirstFace(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM result) {
    *reinterpret_cast<LOGFONTW*>(result) = *font;
    return 0;
}

// The heights of the command bar, the status line and the menu bar.
static int BarsHeight() { return kCommandBarHeight + StatusHeight() + kMenuBarHeight; }

// The smallest screen that shows all 80 by 24 cells in the font of a first start.
static QSize ScreenForTerminal() {
    LOGFONTW face = {};
    EnumFontFamiliesW(nullptr, nullptr, TakeFirstFace, reinterpret_cast<LPARAM>(&face));
    face.lfHeight = 8;
    HDC dc = GetDC(nullptr);
    HFONT font = CreateFontIndirectW(&face);
    SelectObject(dc, font);
    RECT rect = {};
    DrawTextW(dc, u"JULEMANDEN", 10, &rect, DT_CALCRECT | DT_SINGLELINE);
    ReleaseDC(nullptr, dc);
    DeleteObject(font);
    const int width = rect.right / 10 * 80, height = rect.bottom * 24;
    return QSize(std::max(width, kNarrowestPixels), height + BarsHeight());
}

static void SetSystemFont() {
    QFont font = QApplication::font();
    font.setPixelSize(kSystemFontPixels);
    QApplication::setFont(font);
}

bool MakeRoot(const std::string& folder) {
    if (folder.empty() || QDir().mkpath(QString::fromStdString(folder))) return true;
    std::fprintf(stderr, "quill: %s is no folder and cannot be made one\n",
                 Printable(folder).c_str());
    return false;
}

void OpenDevice(const HostOptions& options) {
    SetDeviceRoot(options.root);
    SetResourceImage(quill_resources, static_cast<size_t>(quill_resources_end - quill_resources));
    UseDeviceStyle();
    SetSystemFont();
    OfferToScreenReaders();
    RegisterMenuBar();
    OpenDeviceScreen(QSize(kNarrowestPixels, kUsualHeight));
    FurnishShell();
    DeviceScreen()->setWindowIcon(LoadProgramIcon(IDI_PROGRAM));
    DeviceScreen()->resize(options.screen.isEmpty() ? ScreenForTerminal() : options.screen);
}

// A modem may take seconds to hang up, so the wait for it comes last, when no window is visible.
void CloseDevice() {
    ForgetTextChanges();
    DestroyAllWindows();
    StopServingInstances();
    ResetMessages();
    ReleaseGdi();
    ForgetBarPictures();
    CloseDeviceScreen();
    CloseRegistry();
    QGuiApplication::sync();
    EndDialUps();
}
