// The four colours, through the system's colour chooser.
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "ui/dialogs/dialog_tools.h"
#include "ui/dialogs/dialogs.h"

static void ChooseTerminalColor(DWORD* color) {
    if (!session.choose_color) return;
    CHOOSECOLORW request = {};
    request.lStructSize = sizeof request;
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
