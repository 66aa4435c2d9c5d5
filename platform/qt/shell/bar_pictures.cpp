// Pictures out of the resources, in the desktop's colours.
#include "platform/qt/shell/bar_pictures.h"

#include <map>
#include <QImage>
#include <QPixmap>

#include "platform/qt/services/bitmaps.h"
#include "platform/qt/window/slice.h"

namespace {

constexpr int kTwice = 2;

// Pictures are drawn in the device's colours; these stand for the desktop's.
struct SystemColor {
    uint32_t drawn;  // 0x00RRGGBB
    QPalette::ColorRole role;
};

constexpr uint32_t kFace = 0xC0C0C0;  // the bar itself: seen through

const SystemColor kSystemColors[] = {
    {0x000000, QPalette::ButtonText},
    {0x808080, QPalette::Dark},
    {0xFFFFFF, QPalette::Light},
};

struct Pictures {
    QPalette palette;  // that they were made with
    std::vector<QIcon> icons;
};

std::map<int, Pictures> g_pictures;  // by the bitmap's number

QRgb Shown(uint32_t drawn, const QPalette& palette) {
    if (drawn == kFace) return qRgba(0, 0, 0, 0);
    for (const SystemColor& row : kSystemColors)
        if (row.drawn == drawn) return palette.color(row.role).rgb();
    return 0xFF000000u | drawn;
}

bool SameColors(const QPalette& one, const QPalette& other) {
    for (const SystemColor& row : kSystemColors)
        if (one.color(row.role) != other.color(row.role)) return false;
    return true;
}

QImage Translated(const Bitmap& bitmap, const QPalette& palette) {
    QImage image(bitmap.width, bitmap.height, QImage::Format_ARGB32);
    size_t next = 0;
    for (int y = 0; y < bitmap.height; y++)
        for (int x = 0; x < bitmap.width; x++)
            image.setPixel(x, y, Shown(bitmap.pixels[next++], palette));
    return image;
}

// The strip's bitmap, or none where it is missing, damaged or too small for `count` pictures.
QImage LoadStrip(int id, int count, int side, const QPalette& palette) {
    const uint8_t* bytes = nullptr;
    size_t length = 0;
    Bitmap bitmap;
    if (!FindResourceBytes(MAKEINTRESOURCE(kResourceBitmap), MAKEINTRESOURCE(id), &bytes, &length))
        return QImage();
    if (!ReadBitmap({bytes, length}, &bitmap)) return QImage();
    if (bitmap.height < side || bitmap.width / side < count) return QImage();
    return Translated(bitmap, palette);
}

void AddPicture(QIcon* icon, const QImage& strip, int index, int side, double ratio) {
    if (strip.isNull()) return;
    QPixmap picture = QPixmap::fromImage(strip.copy(index * side, 0, side, side));
    picture.setDevicePixelRatio(ratio);
    icon->addPixmap(picture);
}

std::vector<QIcon> MakePictures(int id, int count, const QPalette& palette) {
    const QImage plain = LoadStrip(id, count, kBarPicture, palette);
    const QImage sharp = LoadStrip(id + kTwiceAsLarge, count, kBarPicture * kTwice, palette);
    std::vector<QIcon> icons;
    for (int i = 0; i < count && !plain.isNull(); i++) {
        QIcon icon;
        AddPicture(&icon, plain, i, kBarPicture, 1);
        AddPicture(&icon, sharp, i, kBarPicture * kTwice, kTwice);
        icons.push_back(icon);
    }
    return icons;
}

}  // namespace

const std::vector<QIcon>& BarPictures(int id, int count, const QPalette& palette) {
    Pictures& known = g_pictures[id];
    if (known.icons.size() != static_cast<size_t>(count) || !SameColors(known.palette, palette))
        known = {palette, MakePictures(id, count, palette)};
    return known.icons;
}

void ForgetBarPictures() { g_pictures.clear(); }
