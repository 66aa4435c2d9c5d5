// SPDX-License-Identifier: MIT
// The Windows CE API on desktop Windows: the system's own headers, and the adapter beside this file
// for what they lack of the device. It takes the place of platform/windows_ce.h, so nothing outside
// platform/ knows which of the two it was compiled with.
#ifndef QUILL_PLATFORM_WIN32_WINDOWS_CE_H
#define QUILL_PLATFORM_WIN32_WINDOWS_CE_H

#include "device.h"
#include "system.h"

// ---------------------------------------------------------------- the program's entry

// On the device the command line is UTF-16. main.cpp calls the program's entry by this name.
#define WinMain DeviceMain
int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPWSTR command_line, int show);

// ---------------------------------------------------------------- constants of the device alone

#define SPI_SETSIPINFO 224
#define SPI_GETSIPINFO 225
#define SIPF_ON 0x00000001u
#define SHCMBF_HMENU 0x0010u
#define KEYEVENTF_SILENT 0x0004

// ---------------------------------------------------------------- where the settings are

// The same key below HKEY_CURRENT_USER, so the program can save without an administrator's rights.
#undef HKEY_LOCAL_MACHINE
#define HKEY_LOCAL_MACHINE HKEY_CURRENT_USER

// ---------------------------------------------------------------- calls that the adapter takes

#define RegisterClassW DeviceRegisterClass
#define CreateWindowExW DeviceCreateWindow
#define SetForegroundWindow DeviceSetForegroundWindow
#define OpenClipboard DeviceOpenClipboard
#define CreateFontIndirectW DeviceCreateFontIndirect
#define SelectObject DeviceSelectObject
#define DeleteObject DeviceDeleteObject
#define GetSystemMetrics DeviceGetSystemMetrics
#define GetMessageW DeviceGetMessage
#define PeekMessageW DevicePeekMessage
#define TranslateMessage DeviceTranslateMessage
#define MessageBoxW DeviceMessageBox
#define DialogBoxParamW DeviceDialogBox
#define PropertySheetW DevicePropertySheet
#define CHOOSECOLORW DeviceChooseColor
#define DefWindowProcW DeviceDefWindowProc
#define GetKeyState DeviceGetKeyState
#define keybd_event DeviceKeyEvent
#define CreateProcessW DeviceCreateProcess
#define LoadLibraryW DeviceLoadLibrary
#undef RasEnumEntries
#define RasEnumEntries DeviceRasEnumEntries
#undef RasGetEntryDialParams
#define RasGetEntryDialParams DeviceRasGetEntryDialParams
#undef RasDial
#define RasDial DeviceRasDial
#undef RasHangUp
#define RasHangUp DeviceRasHangUp
#define _wfopen DeviceOpenFile
#define DeleteFileW DeviceDeleteFile

#endif
