// The chooser of colours that the device's library of common dialogs holds.
#ifndef QUILL_PLATFORM_QT_DIALOG_COLOR_DIALOG_H
#define QUILL_PLATFORM_QT_DIALOG_COLOR_DIALOG_H

#include "windows_ce.h"

BOOL ShowColorDialog(CHOOSECOLORW* request);

#endif
