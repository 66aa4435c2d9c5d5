// SPDX-License-Identifier: MIT
// Fonts in the device's pixels. A font keeps its handle when the monitor's scale changes; to select
// it then selects a copy in the new size.
#include <map>

#include "device.h"

namespace {

struct Font {
    LOGFONTW device;  // in the device's pixels
    HFONT drawn;      // the handle itself, or its copy for another scale
    UINT dpi;         // of `drawn`
};

}  // namespace
static std::map<HGDIOBJ, Font> fonts;

static HFONT MakeFont(const LOGFONTW& device) {
    LOGFONTW scaled = device;
    scaled.lfHeight = DevicePixels(device.lfHeight * kFontScale);
    scaled.lfWidth = DevicePixels(device.lfWidth * kFontScale);
    return CreateFontIndirectW(&scaled);
}

static void DropLike(HGDIOBJ handle, const Font& font) {
    if (font.drawn != handle) DeleteObject(font.drawn);
}

static HGDIOBJ DrawnFor(HGDIOBJ handle) {
    const auto found = fonts.find(handle);
    if (found == fonts.end()) return handle;
    Font& font = found->second;
    if (font.dpi != DeviceDpi()) {
        DropLike(handle, font);
        font.dpi = DeviceDpi();
        font.drawn = MakeFont(font.device);
    }
    return font.drawn;
}

HFONT DeviceCreateFontIndirect(const LOGFONTW* font) {
    if (!font) return nullptr;
    const HFONT handle = MakeFont(*font);
    if (handle) fonts[handle] = {*font, handle, DeviceDpi()};
    return handle;
}

HGDIOBJ DeviceSelectObject(HDC dc, HGDIOBJ object) { return SelectObject(dc, DrawnFor(object)); }

BOOL DeviceDeleteObject(HGDIOBJ object) {
    const auto found = fonts.find(object);
    if (found != fonts.end()) {
        DropLike(object, found->second);
        fonts.erase(found);
    }
    return DeleteObject(object);
}
