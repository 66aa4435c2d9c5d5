// Fonts: the fixed-pitch families of the desktop, and fonts whose cell has the wanted height.
#include <cmath>
#include <QFontDatabase>
#include <QFontInfo>

#include "gdi.h"

namespace {

std::unique_ptr<FontData> g_system_font;

// Whether a glyph of the codes that a terminal shows leaves its cell; a hair's breadth is cut off
// by the next run's background anyway.
bool Overhangs(const FontData& font) {
    const double advance = font.raw.advancesForGlyphIndexes({font.glyphs['M']}).value(0).x();
    for (int code = 33; code < 256; code++) {
        const QRectF box = font.raw.boundingRect(font.glyphs[code]);
        if (box.left() < 0 || box.right() > std::floor(advance)) return true;
        if (-box.top() > font.height - font.descent || box.bottom() > font.descent) return true;
    }
    return false;
}

void FillGlyphs(FontData& font) {
    for (int code = 32; code < 256; code++) {
        if (code >= 127 && code < 160) continue;
        const auto found = font.raw.glyphIndexesForString(QString(QChar(code)));
        font.glyphs[code] = found.isEmpty() ? 0 : found.front();
    }
}

}  // namespace

std::unique_ptr<FontData> MakeFont(const LOGFONTW& wanted) {
    auto data = std::make_unique<FontData>();
    data->height = std::max<LONG>(std::abs(wanted.lfHeight), 1);
    data->font = QFont(FromWide(wanted.lfFaceName));
    data->font.setStyleHint(QFont::Monospace);
    data->font.setBold(wanted.lfWeight >= FW_BOLD);
    data->font.setItalic(wanted.lfItalic);
    data->font.setHintingPreference(QFont::PreferNoHinting);
    data->font.setPixelSize(static_cast<int>(data->height));
    data->raw = QRawFont::fromFont(data->font);
    const double cell = data->raw.ascent() + data->raw.descent();
    if (cell > 0) data->raw.setPixelSize(data->raw.pixelSize() * data->height / cell);
    data->font.setPixelSize(std::max(static_cast<int>(data->raw.pixelSize()), 1));
    data->ascent = data->raw.ascent();
    data->descent = data->raw.descent();
    data->leading = data->raw.leading();
    data->fixed = QFontInfo(data->font).fixedPitch();
    FillGlyphs(*data);
    data->overhangs = Overhangs(*data);
    return data;
}

const FontData& FontOf(HDC dc) {
    if (dc && dc->font && dc->font->font) return *dc->font->font;
    if (!g_system_font) {
        LOGFONTW wanted = {};
        wanted.lfHeight = 10;
        lstrcpynW(wanted.lfFaceName, ToWide(QApplication::font().family()).c_str(), LF_FACESIZE);
        g_system_font = MakeFont(wanted);
    }
    return *g_system_font;
}

void ForgetFonts() { g_system_font.reset(); }

int EnumFontFamiliesW(HDC, LPCWSTR family, FONTENUMPROCW procedure, LPARAM parameter) {
    const QString own = QFontInfo(QFontDatabase::systemFont(QFontDatabase::FixedFont)).family();
    QStringList families{own};
    for (const QString& name : QFontDatabase::families())
        if (name != own && QFontDatabase::isFixedPitch(name) &&
            QFontDatabase::isSmoothlyScalable(name))
            families << name;
    int result = 1;
    for (const QString& name : families) {
        if (name.size() >= LF_FACESIZE || (family && name != FromWide(family))) continue;
        LOGFONTW font = {};
        font.lfHeight = 8;
        font.lfWeight = FW_NORMAL;
        font.lfCharSet = DEFAULT_CHARSET;
        font.lfPitchAndFamily = FIXED_PITCH;
        lstrcpynW(font.lfFaceName, ToWide(name).c_str(), LF_FACESIZE);
        TEXTMETRICW metrics = {};
        metrics.tmHeight = font.lfHeight;
        result = procedure(&font, &metrics, 4, parameter);  // 4: a scalable font
        if (result == 0) break;
    }
    return result;
}
