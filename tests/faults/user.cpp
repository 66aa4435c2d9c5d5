// SPDX-License-Identifier: MIT
// A user who accepts anything, and sessions with a host that may not come.
#include "tests/faults/user.h"

#include <QApplication>
#include <QColorDialog>
#include <QMessageBox>
#include <QPushButton>

#include "connection/connection.h"
#include "platform/qt/shell/shell.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "tests/dialogs/stored.h"
#include "tests/faults/faults.h"
#include "tests/support/sessions.h"

int Patience() { return HasFailed() ? kShort : kLong; }

std::vector<std::string> boxes_shown;

bool Soon(const std::function<bool()>& condition, int milliseconds) {
    return Eventually([&] { return !ProgramRuns() || condition(); }, milliseconds) && ProgramRuns();
}

void Settle() {
    Soon([] { return !MessagesWaiting(); });
}

static void PressBoxButton(QMessageBox* box) {
    boxes_shown.push_back((box->windowTitle() + ": " + box->text()).toStdString());
    QAbstractButton* ok = box->button(QMessageBox::Ok);
    if (!ok) ok = box->defaultButton();
    if (ok) ok->click();
}

bool CloseTop() {
    if (QMessageBox* box = ShownMessageBox()) return PressBoxButton(box), true;
    if (QColorDialog* chooser = ShownColorDialog()) return chooser->reject(), true;
    if (!ShownDialog()) return false;
    if (!ClickControl(IDCANCEL) && !ClickControl(IDOK)) SendMessageW(ShownDialog(), WM_CLOSE, 0, 0);
    return true;
}

void CloseAll() {
    for (int i = 0; i < 20; ++i) {
        bool any = false;
        OnWindowThread([&] { any = CloseTop(); });
        Settle();
        if (!any) return;
    }
}

void Answer() {
    if (Soon([] { return ShownMessageBox() != nullptr; })) OnWindowThread([] { CloseTop(); });
    Settle();
}

void Command(WORD id) {
    PostToMain(WM_COMMAND, id);
    Settle();
}

void Use(const std::function<void()>& hands) {
    OnWindowThread(hands);
    Settle();
}

void InDialog(WORD command, int button, const std::function<void()>& hands) {
    Command(command);
    if (!Soon([] { return ShownDialog() || ShownColorDialog() || ShownMessageBox(); })) return;
    Use(hands);
    Use([=] { ClickControl(button); });
    CloseAll();
}

// ---------------------------------------------------------------- a host

void UseKind(const LongHost& host, const HostKind& kind, DWORD cipher) {
    OnWindowThread([&] {
        Settings& settings = session.settings;
        settings.port = static_cast<DWORD>(host.net.port);
        settings.ssh = static_cast<DWORD>(kind.ssh);
        settings.ssh_type2 = static_cast<DWORD>(kind.ssh_type2);
        settings.ssh_type = cipher;
        settings.ssh_def = 1;
        lstrcpyW(settings.host, u"127.0.0.1");
        lstrcpyW(settings.ssh_u, u"visitor");
        lstrcpyW(settings.ssh_p, u"warehouse7");
    });
}

void ServeUntil(LongHost& host, const std::function<bool()>& condition) {
    for (int waited = 0; waited < Patience() && !condition() && !host.gone; waited += 5)
        Serve(host, 5);
}

bool Open(LongHost& host, const HostKind& kind, DWORD cipher, int patience) {
    UseKind(host, kind, cipher);
    ConnectLater();
    if (!host.net.Accept(patience)) return false;
    BeginSession(host, kind, static_cast<unsigned>(cipher));
    ServeUntil(host, [&] { return host.ready && Connected(); });
    return true;
}
