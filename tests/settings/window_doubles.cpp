// SPDX-License-Identifier: MIT
// Recording doubles of MessageBoxW and GetKeyState.
#include "tests/settings/window_doubles.h"

#include "tests/settings/device.h"

std::vector<ShownMessage> shown_messages;
std::map<int, SHORT> key_states;

void ForgetWindowCalls() {
    shown_messages.clear();
    key_states.clear();
}

int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type) {
    shown_messages.push_back({owner, text, caption, type, DeviceFileExists("mconfig.cfg")});
    return 1;
}

SHORT GetKeyState(int virtual_key) {
    const auto found = key_states.find(virtual_key);
    return found == key_states.end() ? SHORT{0} : found->second;
}
