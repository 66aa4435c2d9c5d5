// SPDX-License-Identifier: MIT
// The person at the device: actions on a second thread while the program runs on the main thread.
#include "tests/support/person.h"

#include <gtest/gtest.h>
#include <atomic>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <new>
#include <QKeyEvent>
#include <QMessageBox>
#include <QPushButton>
#include <QThread>
#include <thread>

#include "platform/qt/host/host.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/window.h"
#include "session/session_state.h"
#include "terminal/screen_buffer.h"
#include "tests/qt_driver/driver.h"
#include "tests/support/drawn.h"

namespace {

std::vector<std::string> g_roots;
std::atomic<bool> g_running{false};

void RemoveRoots() {
    for (const std::string& root : g_roots) std::filesystem::remove_all(root);
}

void ResetSession() {
    session.~SessionState();
    std::memset(static_cast<void*>(&session), 0, sizeof(session));  // as static storage begins
    new (&session) SessionState();
}

void WriteConfig(const std::string& root, const std::string& text) {
    if (!text.empty()) std::ofstream(root + "/mconfig.cfg") << text;
}

void SendKey(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    QWidget* target = QApplication::focusWidget();
    if (!target) target = DeviceScreen();
    QKeyEvent event(type, key, modifiers, text);
    QApplication::sendEvent(target, &event);
}

// Waits until the box is gone, so that the next AwaitBox does not find it again.
void PressButton(QMessageBox::StandardButton button) {
    QPointer<QMessageBox> box;
    OnWindowThread([&] {
        box = ShownMessageBox();
        ASSERT_NE(box, nullptr) << "no message box is shown";
        ASSERT_NE(box->button(button), nullptr) << "the box has no such button";
        box->button(button)->click();
    });
    Eventually([&] { return box.isNull(); });
}

// Reads what the person sees on the window thread, where nothing changes it at the same time.
template <typename Result>
Result Seen(const std::function<Result()>& look) {
    if (!qApp || qApp->thread() == QThread::currentThread()) return look();
    Result seen;
    OnWindowThread([&] { seen = look(); });
    return seen;
}

std::string RowOfGrid(int row) {
    std::string line;
    for (int column = 1; column <= kScreenColumns; column++)
        line += static_cast<char>(GetCell(row, column) & 0xff);
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

std::string CaptionOf(HWND window) {
    WCHAR text[256];
    GetWindowTextW(window, text, 256);
    return FromWide(text).toStdString();
}

}  // namespace

std::string FreshRoot() {
    if (g_roots.empty()) std::atexit(RemoveRoots);
    std::string path = (std::filesystem::temp_directory_path() / "quill-test-XXXXXX").string();
    g_roots.push_back(mkdtemp(path.data()));
    return g_roots.back();
}

int RunProgram(const Stage& stage, const std::function<void()>& person) {
    HostOptions options;
    options.root = stage.root.empty() ? FreshRoot() : stage.root;
    options.screen = QSize(stage.width, stage.height);
    WriteConfig(options.root, stage.config);
    ResetSession();
    OpenDevice(options);
    KeepScreenText();
    WatchDrawing();
    if (stage.before) stage.before();
    g_running = true;
    std::atomic<bool> finished{false};
    std::thread body([&] {
        person();
        if (g_running) OnWindowThread([] { PostQuitMessage(0); });
        finished = true;
    });
    const int result = WinMain(nullptr, nullptr, nullptr, SW_SHOW);
    g_running = false;
    while (!finished) QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    body.join();
    CloseDevice();
    ForgetRecords();
    ForgetScreenText();
    return result;
}

// The baton shows the thread sanitizer the order that the toolkit's own locks keep.
void OnWindowThread(const std::function<void()>& action) {
    static std::atomic<int> baton{0};
    baton.fetch_add(1);
    QMetaObject::invokeMethod(
        qApp,
        [&] {
            baton.fetch_add(1);
            action();
            baton.fetch_add(1);
        },
        Qt::BlockingQueuedConnection);
    baton.fetch_add(1);
}

bool Eventually(const std::function<bool()>& condition, int milliseconds) {
    for (int waited = 0; waited <= milliseconds; waited += 5) {
        bool holds = false;
        OnWindowThread([&] { holds = condition(); });
        if (holds) return true;
        QThread::msleep(5);
    }
    return false;
}

bool ProgramRuns() { return g_running; }

void TypeText(const std::string& text) {
    for (const char c : text) {
        OnWindowThread([&] {
            const bool enter = c == '\n';
            const QString characters(QChar(enter ? '\r' : static_cast<uchar>(c)));
            const int key = enter ? int{Qt::Key_Return} : QChar(c).toUpper().unicode();
            SendKey(QEvent::KeyPress, key, Qt::NoModifier, characters);
            SendKey(QEvent::KeyRelease, key, Qt::NoModifier, characters);
        });
    }
}

void PressKey(int qt_key, int qt_modifiers) {
    OnWindowThread([&] {
        const auto modifiers = Qt::KeyboardModifiers::fromInt(qt_modifiers);
        SendKey(QEvent::KeyPress, qt_key, modifiers, QString());
        SendKey(QEvent::KeyRelease, qt_key, modifiers, QString());
    });
}

void PostToMain(UINT message, WPARAM wparam, LPARAM lparam) {
    OnWindowThread([=] { PostMessageW(session.main_window, message, wparam, lparam); });
}

void ResizeDevice(int width, int height) {
    OnWindowThread([=] { DeviceScreen()->resize(width, height); });
}

std::string AwaitBox(int milliseconds) {
    std::string shown;
    Eventually(
        [&] {
            const QMessageBox* box = ShownMessageBox();
            if (box) shown = (box->windowTitle() + ": " + box->text()).toStdString();
            return box != nullptr;
        },
        milliseconds);
    return shown;
}

void PressOk() { PressButton(QMessageBox::Ok); }
void PressCancel() { PressButton(QMessageBox::Cancel); }

bool DismissBox(const std::string& expected) {
    const std::string shown = AwaitBox();
    if (shown != expected) {
        ADD_FAILURE() << "the box reads \"" << shown << "\" instead of \"" << expected << "\"";
        if (shown.empty()) return false;
    }
    PressOk();
    return shown == expected;
}

std::string TerminalRow(int row) {
    return Seen<std::string>([=] { return RowOfGrid(row); });
}

std::string TerminalText() {
    return Seen<std::string>([] {
        std::string text;
        for (int row = 1; row <= kScreenRows; row++) text += RowOfGrid(row) + '\n';
        return text;
    });
}

std::string DrawnText() {
    return Seen<std::string>(
        [] { return ScreenText(session.client_window).join('\n').toStdString(); });
}

std::string StatusText() {
    return Seen<std::string>([] { return CaptionOf(session.status_window); });
}

std::string Title() {
    return Seen<std::string>([] { return CaptionOf(session.main_window); });
}

QImage Picture() {
    return Seen<QImage>([] { return DeviceScreen()->grab().toImage(); });
}

bool TerminalShows(const std::string& text) {
    return Eventually([&] { return TerminalText().find(text) != std::string::npos; });
}
