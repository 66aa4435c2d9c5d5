// The text that stands on each window, as it was drawn last.
#ifndef QUILL_PLATFORM_QT_HOST_SCREEN_TEXT_H
#define QUILL_PLATFORM_QT_HOST_SCREEN_TEXT_H

#include <QStringList>

#include "platform/qt/window/drawing_observer.h"

void KeepScreenText();                // from now on, as one of those who look on
void ForgetScreenText();              // and no more
QStringList ScreenText(HWND window);  // line by line; blanks at the end cut
int PaintsKept();                     // how many WM_PAINTs there have been since KeepScreenText

#endif
