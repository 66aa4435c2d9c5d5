// One program a device root: the window of the one that runs there already.
#ifndef QUILL_PLATFORM_QT_WINDOW_OTHER_INSTANCE_H
#define QUILL_PLATFORM_QT_WINDOW_OTHER_INSTANCE_H

#include "windows_ce.h"

HWND FindOtherInstance();               // null: this is the one that runs on the device root
void ServeOtherInstances(HWND window);  // the one that others ask for
void StopServingInstances();

#endif
