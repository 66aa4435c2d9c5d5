// The message boxes that several files show, over the main window.
#ifndef QUILL_SESSION_MESSAGE_BOXES_H
#define QUILL_SESSION_MESSAGE_BOXES_H

#include "session/session_state.h"

// A failure: caption "Error", OK.
inline void ShowError(LPCWSTR text) {
    MessageBoxW(session.main_window, text, TEXT("Error"), MB_OK | MB_ICONERROR);
}

// A question before something is given up: caption "Warning", OK and Cancel. Whether it was OK.
inline bool Agreed(LPCWSTR question) {
    return MessageBoxW(session.main_window, question, TEXT("Warning"),
                       MB_OKCANCEL | MB_ICONEXCLAMATION) == IDOK;
}

#endif
