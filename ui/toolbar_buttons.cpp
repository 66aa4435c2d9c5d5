// SPDX-License-Identifier: MIT
// Adds the buttons of one of the three toolbars to the command bar.
#include "ui/main_window.h"

#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/toolbars.h"
#include "text/text.h"

constexpr int kPictureSize = 16;  // pixels
constexpr int kNoText = -1;       // the button shows no text beside its picture

static LPWSTR g_labels[kToolbarRows] = {};  // tool tips of the shown buttons, indexed by position

namespace {

struct Face {
    const char* label;
    WORD bitmapId;
};

}  // namespace

static const Face kDisconnect = {"disconnect", IDB_DISCONNECT};

static Face FaceOf(const ToolbarButton& button) {
    if (button.action == kActionConnect && Connected()) return kDisconnect;
    return {button.name, button.bitmapId};
}

// If there is no memory, the button gets no tool tip.
static void SetLabel(int position, const char* label) {
    const int units = static_cast<int>(std::strlen(label)) + 1;
    std::free(g_labels[position]);
    g_labels[position] =
        static_cast<LPWSTR>(std::calloc(static_cast<size_t>(units), sizeof(WCHAR)));
    if (g_labels[position]) WideFromAnsi(label, g_labels[position], units);
}

static BOOL AddButton(HWND commandBar, int position, WORD bitmapId) {
    TBBUTTON button = {};
    button.iBitmap =
        CommandBar_AddBitmap(commandBar, session.instance, bitmapId, 1, kPictureSize, kPictureSize);
    button.idCommand = IDM_TOOLBAR_FIRST + position;
    button.fsState = TBSTATE_ENABLED;
    button.fsStyle = TBSTYLE_BUTTON;
    button.iString = kNoText;
    return CommandBar_InsertButton(commandBar, position, &button);
}

int BuildToolbar(HWND commandBar, int barNumber, int maxButtons) {
    int count = 0;
    for (const ToolbarButton* row = toolbar_buttons; row->name && count < maxButtons; ++row) {
        if (!OnBar(*row, barNumber)) continue;
        const Face face = FaceOf(*row);
        if (!AddButton(commandBar, count, face.bitmapId)) break;
        SetLabel(count++, face.label);
    }
    if (count > 0) CommandBar_AddToolTips(commandBar, static_cast<UINT>(count), g_labels);
    return count;
}
