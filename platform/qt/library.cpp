// Libraries that a program looks up at run time. This device carries none of them.
#include "slice.h"

HMODULE LoadLibraryW(LPCWSTR) { return nullptr; }

FARPROC GetProcAddressW(HMODULE, LPCWSTR) { return nullptr; }

BOOL FreeLibrary(HMODULE) { return FALSE; }
