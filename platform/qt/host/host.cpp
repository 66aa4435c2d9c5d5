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
#include "platform/qt/window/accessible.h"
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

bool TakeSize(const char* text, QSize* size) {
    int width = 0, height = 0;
    char end = 0;
    if (std::sscanf(text, "%dx%d%c", &width, &height, &end) != 2) return false;
    *size = QSize(width, height);
    return width >= 100 && width <= 4000 && height >= 80 && height <= 4000;
}

// Below 1 there are fewer desktop pixels than the device's lines and letters need.
bool TakeScale(const char* text, double* scale) {
    char* end = nullptr;
    *scale = std::strtod(text, &end);
    return *text && !*end && *scale >= 1 && *scale <= 8;
}

struct OptionRow {
    const char* name;
    const char* wanted;
    bool (*take)(const char* value, HostOptions* options);
};

const OptionRow kOptions[] = {
    {"--root", "a folder", [](const char* v, HostOptions* o) { return o->root = v, *v != 0; }},
    {"--screen", "a size from 100x80 to 4000x4000",
     [](const char* v, HostOptions* o) { return TakeSize(v, &o->screen); }},
    {"--scale", "a number from 1 to 8",
     [](const char* v, HostOptions* o) { return TakeScale(v, &o->scale); }},
    {"--snapshot", "a file",
     [](const char* v, HostOptions* o) { return o->snapshot = v, *v != 0; }},
    {"--text", "a file", [](const char* v, HostOptions* o) { return o->text = v, *v != 0; }},
};

const OptionRow* FindOption(const char* name) {
    for (const OptionRow& row : kOptions)
        if (std::strcmp(row.name, name) == 0) return &row;
    return nullptr;
}

}  // namespace

bool TakeHostOptions(int* argc, char** argv, HostOptions* options) {
    int kept = 1;
    for (int i = 1; i < *argc; i++) {
        const OptionRow* row = FindOption(argv[i]);
        if (std::strcmp(argv[i], "--help") == 0) {
            options->help = true;
            continue;
        }
        if (!row) {
            argv[kept++] = argv[i];  // the toolkit's own, such as -platform
            continue;
        }
        if (i + 1 == *argc || !row->take(argv[i + 1], options)) {
            std::fprintf(stderr, "quill: %s wants %s\n", argv[i], row->wanted);
            TellUsage(stderr);
            return false;
        }
        i++;
    }
    *argc = kept;
    argv[kept] = nullptr;
    return true;
}

void TellUsage(std::FILE* stream) {
    std::fputs(
        "usage: quill [--root FOLDER] [--screen WIDTHxHEIGHT] [--scale FACTOR]\n"
        "             [--snapshot FILE.png] [--text FILE.txt]\n",
        stream);
}

bool MakeRoot(const std::string& folder) {
    if (folder.empty() || QDir().mkpath(QString::fromStdString(folder))) return true;
    std::fprintf(stderr, "quill: %s is no folder and cannot be made one\n", folder.c_str());
    return false;
}

void OpenDevice(const HostOptions& options) {
    SetDeviceRoot(options.root);
    SetResourceImage(quill_resources, static_cast<size_t>(quill_resources_end - quill_resources));
    SetSystemFont();
    OfferToScreenReaders();
    RegisterControls();
    RegisterMenuBar();
    OpenDeviceScreen(QSize(kNarrowestPixels, 300));
    DeviceScreen()->setWindowIcon(LoadProgramIcon(IDI_PROGRAM));
    DeviceScreen()->resize(options.screen.isEmpty() ? ScreenForTerminal() : options.screen);
}

// The modem, which may take its time, is waited for when nothing is shown any more.
void CloseDevice() {
    ForgetTextChanges();
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
