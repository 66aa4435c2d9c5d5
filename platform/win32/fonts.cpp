// Fonts in the device's pixels.
#include "device.h"

HFONT DeviceCreateFontIndirect(const LOGFONTW* font) {
    if (!font) return nullptr;
    LOGFONTW scaled = *font;
    scaled.lfHeight *= kFontScale;
    scaled.lfWidth *= kFontScale;
    return CreateFontIndirectW(&scaled);
}
