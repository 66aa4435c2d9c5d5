// The icons of the resources.
#ifndef QUILL_PLATFORM_QT_HOST_ICONS_H
#define QUILL_PLATFORM_QT_HOST_ICONS_H

#include <QIcon>

#include "windows_ce.h"

// The icon of that number with all its sizes; those that are damaged are left out. Null without
// any.
QIcon LoadProgramIcon(WORD number);

#endif
