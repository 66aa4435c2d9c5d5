// Making windows of any kind, and the operations of those that are this program's own.
#ifndef QUILL_PLATFORM_QT_WINDOW_WINDOWS_H
#define QUILL_PLATFORM_QT_WINDOW_WINDOWS_H

#include "platform/qt/window/window.h"

// A record without a widget; what is posted to it is taken from now on.
Window* AddWindow(const WindowClass* window_class, const WindowOperations* operations, HWND parent,
                  int id);
void DestroyAllWindows();

// Of a window that the toolkit paints, and parts for kinds that do some of it otherwise.
extern const WindowOperations kToolkitOperations;
BOOL ShowOwnWindow(Window& window, int show);
BOOL BringOwnWindow(Window& window);

#endif
