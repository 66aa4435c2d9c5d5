// SPDX-License-Identifier: MIT
// How the terminal looks: the dialog "Font" (face, bold, italic), and the choice of its four
// colours in the system's colour chooser.
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "text/text.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

static Settings& s = session.settings;

static const MarkRow kMarks[] = {
    {IDC_FONT_BOLD, &s.font_bold},
    {IDC_FONT_ITALIC, &s.font_italic},
    {0, nullptr},
};

static LRESULT AskList(HWND dialog, UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
    return SendDlgItemMessageW(dialog, IDC_FONTS, message, wparam, lparam);
}

// The item data of each list entry is the position of its face in session.view.faces.
static void ShowFaces(HWND dialog) {
    WPARAM selected = 0;
    for (int i = 0; i < session.view.face_count; ++i) {
        LPCWSTR name = session.view.faces[i].font.lfFaceName;
        const LRESULT at = AskList(dialog, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name));
        if (at < 0) continue;  // no memory
        AskList(dialog, LB_SETITEMDATA, static_cast<WPARAM>(at), i);
        if (lstrcmpW(name, s.fname) == 0) selected = static_cast<WPARAM>(at);
    }
    AskList(dialog, LB_SETCURSEL, selected);
    FitListWidth(dialog, IDC_FONTS);
}

static void OnOpen(HWND dialog) {
    ShowFaces(dialog);
    ShowMarks(dialog, kMarks);
    CentreDialog(dialog);
}

static void TakeFace(HWND dialog) {
    const LRESULT selected = AskList(dialog, LB_GETCURSEL);
    session.dialog_result = static_cast<int>(selected);
    if (selected < 0) return;
    const LRESULT face = AskList(dialog, LB_GETITEMDATA, static_cast<WPARAM>(selected));
    if (face < 0 || face >= session.view.face_count) return;
    CopyBounded(s.fname, session.view.faces[face].font.lfFaceName, kSettingUnits);
}

static void OnOk(HWND dialog) {
    TakeMarks(dialog, kMarks);
    TakeFace(dialog);
    EndDialog(dialog, IDOK);
}

static const DialogCommand kCommands[] = {
    {IDOK, BN_CLICKED, OnOk},
    {IDCANCEL, BN_CLICKED, CancelDialog},
    {0, 0, nullptr},
};

static INT_PTR CALLBACK FontDialogProc(HWND dialog, UINT message, WPARAM wparam, LPARAM) {
    return RunDialogMessage(dialog, message, wparam, OnOpen, kCommands);
}

void ShowFontDialog() {
    RunDialog(IDD_FONT, FontDialogProc);
    ApplySetting(s.fname);
    SettingsChanged();
    SaveIfEnabled();
}

// ---------------------------------------------------------------- colours

static void ChooseTerminalColor(DWORD* color) {
    if (!session.choose_color) return;
    CHOOSECOLORW request = {};
    request.lStructSize = sizeof(request);
    request.hwndOwner = session.main_window;
    request.hInstance = session.instance;
    request.rgbResult = *color;
    request.lpCustColors = session.custom_colors;
    request.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ENABLETEMPLATE | CC_ANYCOLOR;
    request.lpTemplateName = MAKEINTRESOURCE(IDD_COLOR);
    if (session.choose_color(&request)) *color = request.rgbResult;
    SettingsChanged();
}

void ChooseBackgroundColor() { ChooseTerminalColor(&session.settings.color_bg); }
void ChooseCursorColor() { ChooseTerminalColor(&session.settings.color_cursor); }
void ChooseTextColor() { ChooseTerminalColor(&session.settings.color_fg); }
void ChooseBoldColor() { ChooseTerminalColor(&session.settings.color_bold); }
