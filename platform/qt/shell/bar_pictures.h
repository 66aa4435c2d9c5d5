// The pictures of the command bar's buttons.
#ifndef QUILL_PLATFORM_QT_SHELL_BAR_PICTURES_H
#define QUILL_PLATFORM_QT_SHELL_BAR_PICTURES_H

#include <QIcon>
#include <QPalette>
#include <vector>

// The first `count` pictures of that bitmap in the palette's colours, each also twice as large
// where there is a bitmap for it; empty when the bitmap is missing, damaged or too small. They are
// made once: the toolkit keeps something of every picture that it has drawn.
const std::vector<QIcon>& BarPictures(int id, int count, const QPalette& palette);

void ForgetBarPictures();

#endif
