// Icons out of the resources: a group names the pictures that it has, one a size.
#include "platform/qt/host/icons.h"

#include <QPixmap>

#include "platform/qt/services/bitmaps.h"

namespace {

constexpr WORD kIcons = 1;  // the kind of a group

bool FindPart(WORD type, WORD number, ResourceReader* reader) {
    *reader = ResourceReader();
    return FindResourceBytes(MAKEINTRESOURCE(type), MAKEINTRESOURCE(number), &reader->bytes,
                             &reader->size);
}

void AddPicture(WORD number, QIcon* icon) {
    ResourceReader reader;
    Bitmap picture;
    if (!FindPart(kResourceIcon, number, &reader) || !ReadIcon(reader, &picture)) return;
    const QImage image(reinterpret_cast<const uchar*>(picture.pixels.data()), picture.width,
                       picture.height, QImage::Format_ARGB32);
    icon->addPixmap(QPixmap::fromImage(image));
}

}  // namespace

QIcon LoadProgramIcon(WORD number) {
    QIcon icon;
    ResourceReader group;
    if (!FindPart(kResourceIconGroup, number, &group)) return icon;
    group.Skip(2);
    if (group.TakeWord() != kIcons) return icon;
    for (WORD count = group.TakeWord(); count > 0 && group.ok; count--) {
        group.Skip(12);  // what the picture says itself
        const WORD picture = group.TakeWord();
        if (group.ok) AddPicture(picture, &icon);
    }
    return icon;
}
