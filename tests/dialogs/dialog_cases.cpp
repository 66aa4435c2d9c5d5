// SPDX-License-Identifier: MIT
// The expected captions, labels and numbers of the dialogs, written independently of the product.
#include "tests/dialogs/dialog_cases.h"

#include <QApplication>

#include "tests/dialogs/dialog_person.h"
#include "ui/dialogs/dialogs.h"

namespace {

HWND OpenConnect() { return OpenDialog(40011, "Connect"); }

HWND OpenAdvanced() {
    ClickControl(OpenConnect(), 1242);
    return AwaitDialog("Connect Advanced");
}

HWND OpenOther() { return PageOf(OpenDialog(40012, "Properties")); }

HWND OpenPage(const std::string& tab) {
    const HWND sheet = OpenDialog(40012, "Properties");
    ClickTab(sheet, tab);
    return PageOf(sheet);
}

HWND OpenToolbar() { return OpenPage("Toolbar"); }
HWND OpenKeyboard() { return OpenPage("Keyboard"); }

HWND OpenChange() {
    ClickControl(OpenKeyboard(), 1243);
    return AwaitDialog("Change");
}

HWND OpenFont() { return OpenDialog(40004, "Font"); }
HWND OpenAutoLogin() { return OpenDialog(126, "Auto Login"); }
HWND OpenAbout() { return OpenDialog(40003, "About TELNET"); }

HWND OpenSignOn() {
    QMetaObject::invokeMethod(
        qApp, [] { AskSignOn(); }, Qt::QueuedConnection);
    return AwaitDialog("Sign on to the host");
}

constexpr Kind S = Kind::kStatic, E = Kind::kEdit, M = Kind::kCombo, L = Kind::kList,
               C = Kind::kCheck, R = Kind::kRadio, B = Kind::kButton, D = Kind::kDefault;

}  // namespace

// clang-format off
const std::vector<DialogCase> dialog_cases = {
    {"Connect", "Connect", OpenConnect, {
        {-1,   S, "UNIX Host IP Address:"},
        {1255, M, ""},
        {1242, B, "Advanced..."},
        {1,    D, "OK"},
        {2,    B, "Cancel"},
    }, {1255, 1242, 1, 2}, true},
    {"ConnectAdvanced", "Connect Advanced", OpenAdvanced, {
        {1249, C, "Make connection at program start"},
        {1251, C, "Exit on session termination"},
        {1252, C, "Confirm Exit"},
        {1254, C, "if [x] is tapped, stop program"},
        {-1,   S, "Port : "},
        {1002, E, ""},
        {1258, C, "Secure Shell (SSH) Use port 22"},
        {1261, R, "ssh-1 or"},
        {1262, R, "ssh-2"},
        {1205, R, "DES"},
        {1206, R, "3-DES"},
        {1259, R, "Blowfish"},
        {1,    D, "OK"},
        {2,    B, "Cancel"},
    }, {1249, 1251, 1252, 1254, 1002, 1258, 1262, 1206, 1, 2}, false},
    {"Other", "Properties", OpenOther, {
        {-1,   S, "Term type:"},
        {1002, E, ""},
        {-1,   S, "Modem con-\nnection name:"},
        {1003, E, ""},
        {1201, C, "Hide status bar"},
        {1202, C, "Screen follow the cursor"},
        {1204, C, "Bell"},
        {1248, C, "Show Negotiation"},
        {1249, C, "Hotspot x. xx.  x: or xx:"},
        {1251, C, "Keep Power on, if a session\nis active"},
    }, {1002, 1003, 1201, 1202, 1204, 1248, 1249, 1251}, false},
    {"Toolbar", "Properties", OpenToolbar, {
        {-1,   S, "Toolbar #1"},
        {1244, L, ""},
        {-1,   S, "Toolbar #2"},
        {1245, L, ""},
        {-1,   S, "Toolbar #3"},
        {1247, L, ""},
    }, {1244, 1245, 1247}, false},
    {"Keyboard", "Properties", OpenKeyboard, {
        {-1,   S, "Key:"},
        {1221, L, ""},
        {-1,   S, "Keystroke:"},
        {1222, L, ""},
        {1243, B, "Change"},
    }, {1221, 1222, 1243}, false},
    {"Change", "Change", OpenChange, {
        {-1,   S, "Keystroke:"},
        {1002, E, ""},
        {1,    D, "OK"},
        {2,    B, "Cancel"},
    }, {1002, 1, 2}, false},
    {"Font", "Font", OpenFont, {
        {-1,   S, "Font:"},
        {1001, L, ""},
        {1249, C, "Bold"},
        {1251, C, "Italic"},
        {1,    D, "OK"},
        {2,    B, "Cancel"},
    }, {1001, 1249, 1251, 1, 2}, true},
    {"AutoLogin", "Auto Login", OpenAutoLogin, {
        {-1,   S, "Search:"},
        {1002, E, ""},
        {-1,   S, "Response:"},
        {1003, E, ""},
        {-1,   S, "Search:"},
        {1253, E, ""},
        {-1,   S, "Response:"},
        {1256, E, ""},
        {-1,   S, "\\012 = CR , \\015 = LF"},
        {1,    D, "OK"},
        {2,    B, "Cancel"},
    }, {1002, 1003, 1253, 1256, 1, 2}, true},
    {"SignOn", "Sign on to the host", OpenSignOn, {
        {-1,   S, "User authentication is required"},
        {-1,   S, "Sign on as:"},
        {1002, E, ""},
        {-1,   S, "Password:"},
        {1003, E, ""},
        {1249, C, "Remember Password"},
        {1,    D, "OK"},
        {2,    B, "Cancel"},
    }, {1002, 1003, 1249, 1, 2}, true},
    {"About", "About TELNET", OpenAbout, {
        {-1,   S, "Quill TELNET"},
        {-1,   S, "Version 2.1"},
        {-1,   S, "A VT100 and VT220 terminal for sessions by Telnet, SSH-1 and SSH-2."},
        {1,    D, "OK"},
    }, {1}, true},
};
// clang-format on
