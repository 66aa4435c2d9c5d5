// SPDX-License-Identifier: MIT
// Fonts: lists the desktop's fixed-pitch families, and makes fonts whose cell has the wanted
// height.
#include <cmath>
#include <QFontDatabase>
#include <QFontInfo>

#include "platform/qt/services/services.h"
#include "platform/qt/window/gdi.h"

static std::shared_ptr<const FontData> g_system_font;
static std::shared_ptr<const FontData> g_made_last;  // made for the face below
static LOGFONTW g_face_made_last;
static std::unique_ptr<LineFont> g_line_font;  // the last one that was asked for

// DEL and the control characters after it.
constexpr int kFirstUpperControl = 127, kAfterUpperControls = 160;

static void FillGlyphs(FontData& font) {
    QString codes;
    for (int code = 32; code < 256; ++code)
        if (code < kFirstUpperControl || code >= kAfterUpperControls) codes.append(QChar(code));
    const auto glyphs = font.raw.glyphIndexesForString(codes);  // one for each of these codes
    for (qsizetype i = 0; i < glyphs.size(); ++i) font.glyphs[codes[i].unicode()] = glyphs[i];
}

// Compares only what decides which font of the desktop is chosen.
static bool SameFont(const LOGFONTW& one, const LOGFONTW& other) {
    return one.lfHeight == other.lfHeight && !one.lfItalic == !other.lfItalic &&
           (one.lfWeight >= FW_BOLD) == (other.lfWeight >= FW_BOLD) &&
           FromWide(one.lfFaceName) == FromWide(other.lfFaceName);
}

// The height of the faces that EnumFontFamiliesW lists. A first start draws with it, too.
constexpr LONG kListedHeight = 8;

// The one place that chooses a font of the desktop: equal requests load it only once.
static QFont DesktopFont(const QString& family, LONG height) {
    QFont font(family);
    font.setStyleHint(QFont::Monospace);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setPixelSize(static_cast<int>(height));
    return font;
}

// Keeps the last font, because a start asks for the same font twice: to choose the screen's size,
// and to draw.
std::shared_ptr<const FontData> MakeFont(const LOGFONTW& wanted) {
    if (g_made_last && SameFont(wanted, g_face_made_last)) return g_made_last;
    const auto data = std::make_shared<FontData>();
    data->height = std::max<LONG>(std::abs(wanted.lfHeight), 1);
    data->font = DesktopFont(FromWide(wanted.lfFaceName), data->height);
    data->font.setBold(wanted.lfWeight >= FW_BOLD);
    data->font.setItalic(wanted.lfItalic);
    data->raw = QRawFont::fromFont(data->font);
    data->fixed = QFontInfo(data->font).fixedPitch();  // before the size changes: a size is a load
    const double cell = data->raw.ascent() + data->raw.descent();
    if (cell > 0) data->raw.setPixelSize(data->raw.pixelSize() * data->height / cell);
    data->font.setPixelSize(std::max(static_cast<int>(data->raw.pixelSize()), 1));
    data->ascent = data->raw.ascent();
    data->descent = data->raw.descent();
    data->leading = data->raw.leading();
    FillGlyphs(*data);
    data->run.setRawFont(data->raw);
    g_face_made_last = wanted;
    g_made_last = data;
    return data;
}

// Compares with whole pixels, because the background of the next run cuts off the rest anyway.
bool GlyphOverhangs(const FontData& font, char16_t code) {
    std::optional<bool>& known = font.overhangs[code];
    if (known) return *known;
    const double advance = font.raw.advancesForGlyphIndexes({font.glyphs[u'M']}).value(0).x();
    const QRectF box = code > u' ' ? font.raw.boundingRect(font.glyphs[code]) : QRectF();
    known = box.left() < 0 || box.right() > std::floor(advance) ||
            -box.top() > font.height - font.descent || box.bottom() > font.descent;
    return *known;
}

const FontData& FontOf(HDC dc) {
    if (dc && dc->font && dc->font->font) return *dc->font->font;
    if (!g_system_font) {
        LOGFONTW wanted = {};
        wanted.lfHeight = 10;
        CopyUnits(wanted.lfFaceName, ToWide(QApplication::font().family()).c_str(), LF_FACESIZE);
        g_system_font = MakeFont(wanted);
    }
    return *g_system_font;
}

const LineFont& LineFontOf(const QFont& font) {
    if (g_line_font && g_line_font->font == font) return *g_line_font;
    g_line_font = std::make_unique<LineFont>();
    LineFont& line = *g_line_font;
    line.font = font;
    line.raw = QRawFont::fromFont(font);
    line.run.setRawFont(line.raw);
    QString codes;
    std::fill(std::begin(line.advances), std::end(line.advances), 0.0);  // of control characters
    for (char16_t c = u' '; c < kFirstUpperControl; ++c) {
        codes.append(QChar(c));
        line.advances[c].reset();
    }
    const auto glyphs = line.raw.glyphIndexesForString(codes);
    for (qsizetype i = 0; i < glyphs.size(); ++i) line.glyphs[codes[i].unicode()] = glyphs[i];
    return line;
}

double LineAdvance(const LineFont& font, char16_t code) {
    std::optional<double>& known = font.advances[code];
    if (!known) known = font.raw.advancesForGlyphIndexes({font.glyphs[code]}).value(0).x();
    return *known;
}

void ForgetFonts() {
    g_made_last.reset();
    g_system_font.reset();
    g_line_font.reset();
}

// Calls the procedure for one family, unless the family does not match. Returns the procedure's
// answer; 0 means stop.
static int TellOfFamily(const QString& name, LPCWSTR wanted, FONTENUMPROCW procedure,
                        LPARAM parameter) {
    if (name.size() >= LF_FACESIZE || (wanted && name != FromWide(wanted))) return 1;
    LOGFONTW font = {};
    font.lfHeight = kListedHeight;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfPitchAndFamily = FIXED_PITCH;
    CopyUnits(font.lfFaceName, ToWide(name).c_str(), LF_FACESIZE);
    TEXTMETRICW metrics = {};
    metrics.tmHeight = font.lfHeight;
    return procedure(&font, &metrics, 4, parameter);  // 4: a scalable font
}

// The desktop may name its font by an alias. The toolkit loads the font to know its family, so it
// is asked for the font that a first start draws with.
static QString OwnFixedFamily() {
    const QString name = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
    return QFontInfo(DesktopFont(name, kListedHeight)).family();
}

// The desktop's own fixed-pitch family comes first. The others are looked up only if the procedure
// wants more, because the toolkit reads each font for that.
int EnumFontFamiliesW(HDC, LPCWSTR family, FONTENUMPROCW procedure, LPARAM parameter) {
    const QString own = OwnFixedFamily();
    int result = TellOfFamily(own, family, procedure, parameter);
    if (result == 0) return 0;
    for (const QString& name : QFontDatabase::families()) {
        if (name == own || !QFontDatabase::isFixedPitch(name) ||
            !QFontDatabase::isSmoothlyScalable(name))
            continue;
        result = TellOfFamily(name, family, procedure, parameter);
        if (result == 0) break;
    }
    return result;
}
