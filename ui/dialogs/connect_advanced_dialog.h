// "Connect Advanced": how to connect, and what the end of a session is to do.
#ifndef QUILL_UI_DIALOGS_CONNECT_ADVANCED_DIALOG_H
#define QUILL_UI_DIALOGS_CONNECT_ADVANCED_DIALOG_H

#include "windows_ce.h"

// Shown over the dialog `owner` until it is closed. OK changes the record of settings alone: they
// are saved with the next save.
void ShowConnectAdvancedDialog(HWND owner);

#endif
