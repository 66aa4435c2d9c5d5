// The host: opens the device before the program runs on it, and takes it down afterwards.
#include "platform/qt/host/host.h"

#include <QDir>
#include <QFontMetrics>
#include <QStyleFactory>

#include "platform/qt/host/icons.h"
#include "platform/qt/services/device_root.h"
#include "platform/qt/services/registry.h"
#include "platform/qt/services/resources.h"
#include "platform/qt/shell/bar_pictures.h"
#include "platform/qt/shell/dial_up.h"
#include "platform/qt/shell/menu_bar.h"
#include "platform/qt/testing.h"
#include "platform/qt/window/gdi.h"
#include "resources/resource_ids.h"

extern "C" const uint8_t quill_resources[];
extern "C" const uint8_t quill_resources_end[];

namespace {

constexpr int kSystemFontPixels = 9;
constexpr int kNarrowestPixels = 400;  // wide enough for a full bar of buttons

int CALLBACK TakeFirstFace(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM result) {
    *reinterpret_cast<LOGFONTW*>(result) = *font;
    return 0;
}

// Command bar, status line and menu bar.
int BarsHeight() { return kCommandBarHeight + StatusHeight() + kMenuBarHeight; }

// The screen on which 80 by 24 cells of the first start's font are wholly visible.
QSize ScreenForTerminal() {
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

void SetSystemFont() {
    QFont font = QApplication::font();
    font.setPixelSize(kSystemFontPixels);
    QApplication::setFont(font);
}

}  // namespace

bool MakeRoot(const std::string& folder) {
    if (folder.empty() || QDir().mkpath(QString::fromStdString(folder))) return true;
    std::fprintf(stderr, "quill: %s is no folder and cannot be made one\n", folder.c_str());
    return false;
}

void OpenDevice(const HostOptions& options) {
    SetDeviceRoot(options.root);
    SetResourceImage(quill_resources, static_cast<size_t>(quill_resources_end - quill_resources));
    SetSystemFont();
    RegisterControls();
    RegisterMenuBar();
    OpenDeviceScreen(QSize(kNarrowestPixels, 300));
    DeviceScreen()->setWindowIcon(LoadProgramIcon(IDI_PROGRAM));
    DeviceScreen()->resize(options.screen.isEmpty() ? ScreenForTerminal() : options.screen);
}

// The modem, which may take its time, is waited for when nothing is shown any more.
void CloseDevice() {
    DestroyAllWindows();
    StopServingInstances();
    ResetMessages();
    ResetKeyboard();
    ForgetRecords();
    ReleaseGdi();
    ForgetBarPictures();
    CloseDeviceScreen();
    CloseRegistry();
    QGuiApplication::sync();
    EndDialUps();
}
