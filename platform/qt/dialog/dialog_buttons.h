// Classes of dialog controls: buttons and static texts (dialog_buttons.cpp), edits
// (dialog_edits.cpp).
#ifndef QUILL_PLATFORM_QT_DIALOG_DIALOG_BUTTONS_H
#define QUILL_PLATFORM_QT_DIALOG_DIALOG_BUTTONS_H

#include "platform/qt/dialog/dialogs.h"

extern const ControlClass kButtonClass;
extern const ControlClass kEditClass;
extern const ControlClass kStaticClass;

void ShowLabel(Window& window);  // a static's text; its "&" marks a letter once it has a buddy

#endif
