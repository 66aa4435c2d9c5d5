// SPDX-License-Identifier: MIT
// The events. The first byte of each one selects a row of kEvents; with its highest bit the next
// event comes at once.
#include "fuzz/window_events.h"

#include <algorithm>
#include <QAbstractButton>
#include <QClipboard>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPushButton>
#include <QTabBar>
#include <string>
#include <utility>
#include <vector>

#include "connection/connection.h"
#include "fuzz/window_outside.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"
#include "protocol/protocols.h"
#include "protocol/telnet/telnet.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "settings/key_map.h"
#include "settings/settings.h"
#include "settings/toolbars.h"
#include "terminal/modes.h"
#include "terminal/screen_buffer.h"
#include "tests/settings/settings_rows.h"
#include "ui/view/view.h"

unsigned TakeByte(EventInput* input) {
    if (input->left == 0) return 0;
    --input->left;
    return *input->at++;
}

std::string TakeText(EventInput* input) {
    const size_t count = std::min<size_t>(TakeByte(input), input->left);
    const std::string text(reinterpret_cast<const char*>(input->at), count);
    input->at += count;
    input->left -= count;
    return text;
}

// ---------------------------------------------------------------- the host

void BeginFakeSession() {
    ArmAutoLogin();
    session.closing = 0;
    TerminalStart();
    TelnetReset();
    ClearAllLines();
    RepaintTerminal();
    BeginProtocol();
    session.connect_pending = 1;
    session.socket = kHostSocket;
    session.receive_ready = 1;
    session.connected = 1;
    PostMessageW(session.main_window, WM_SOCKET_CONNECTED, 0, 0);
}

void HostSays(const std::string& bytes) {
    if (bytes.empty() || bytes.size() > kReceiveSize || session.socket != kHostSocket ||
        session.receive_ready != 1)
        return;
    std::memset(session.receive_buffer, '#', kReceiveSize);
    bytes.copy(session.receive_buffer, kReceiveSize);
    session.receive_count = static_cast<int>(bytes.size());
    session.receive_ready = 0;
    PostMessageW(session.main_window, WM_SOCKET_DATA, 0, 0);
}

static void HostBytes(EventInput* input) { HostSays(TakeText(input)); }

static void HostCloses(EventInput*) {
    if (session.socket != kHostSocket) return;
    PostMessageW(session.main_window, WM_SOCKET_DATA, 1, 0);
}

static void HostComes(EventInput*) {
    if (!Connected() && !session.connect_pending && session.socket == INVALID_SOCKET)
        BeginFakeSession();
}

// ---------------------------------------------------------------- keys

QWidget* TopWidget() {
    if (QWidget* popup = QApplication::activePopupWidget()) return popup;
    QWidget* modal = QApplication::activeModalWidget();
    return modal ? modal : DeviceScreen();
}

static void SendKey(QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                    const QString& text) {
    QWidget* target = QApplication::activePopupWidget();
    if (!target) target = QApplication::focusWidget();
    if (!target) target = TopWidget();
    QKeyEvent event(type, key, modifiers, text);
    QApplication::sendEvent(target, &event);
}

static Qt::KeyboardModifiers ModifiersOf(unsigned bits) {
    Qt::KeyboardModifiers modifiers;
    if (bits & 1) modifiers |= Qt::ShiftModifier;
    if (bits & 2) modifiers |= Qt::ControlModifier;
    if (bits & 4) modifiers |= Qt::AltModifier;
    if (bits & 8) modifiers |= Qt::KeypadModifier;
    return modifiers;
}

static void PressOrRelease(EventInput* input) {
    static const int kKeys[] = {
        Qt::Key_Backspace, Qt::Key_Tab,    Qt::Key_Backtab, Qt::Key_Return, Qt::Key_Enter,
        Qt::Key_Escape,    Qt::Key_Space,  Qt::Key_PageUp,  Qt::Key_Down,   Qt::Key_End,
        Qt::Key_Home,      Qt::Key_Left,   Qt::Key_Up,      Qt::Key_Right,  Qt::Key_PageDown,
        Qt::Key_Insert,    Qt::Key_Delete, Qt::Key_Shift,   Qt::Key_Alt,    Qt::Key_Control,
        Qt::Key_CapsLock,  Qt::Key_Plus,   Qt::Key_Minus,   Qt::Key_0,      Qt::Key_9};
    const unsigned which = TakeByte(input), how = TakeByte(input);
    const unsigned count = std::size(kKeys);
    const int key = which < count        ? kKeys[which]
                    : which < count + 24 ? Qt::Key_F1 + static_cast<int>(which - count)
                                         : static_cast<int>(which);
    const bool letter = key > 0x20 && key < 0x7f;
    const QString text = letter && !(how & 16) ? QString(QChar(key)) : QString();
    if (!(how & 32)) SendKey(QEvent::KeyPress, key, ModifiersOf(how), text);
    if (!(how & 64)) SendKey(QEvent::KeyRelease, key, ModifiersOf(how), text);
}

static void TypeText(EventInput* input) {
    for (const char c : TakeText(input)) {
        const QChar typed(static_cast<uchar>(c));
        const int key = typed.toUpper().unicode();
        SendKey(QEvent::KeyPress, key, Qt::NoModifier, typed);
        SendKey(QEvent::KeyRelease, key, Qt::NoModifier, typed);
    }
}

// ---------------------------------------------------------------- the stylus

constexpr QPoint kOutside(-9999, -9999);  // of all windows

static QPointer<QWidget> g_pressed;

static void SendMouse(QWidget* target, QEvent::Type type, QPoint place, bool down) {
    const bool move = type == QEvent::MouseMove;
    QMouseEvent event(type, place, target->mapToGlobal(place), move ? Qt::NoButton : Qt::LeftButton,
                      down ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

void LiftStylus() {
    if (g_pressed) SendMouse(g_pressed, QEvent::MouseButtonRelease, kOutside, false);
    g_pressed.clear();
}

QPoint TakePlace(EventInput* input, const QWidget& window) {
    const auto along = [&](int size) {
        return static_cast<int>(TakeByte(input)) * (size + 40) / 255 - 20;
    };
    const int x = along(window.width());
    return QPoint(x, along(window.height()));
}

static QWidget* WidgetAt(QWidget* top, QPoint place) {
    QWidget* child = top->childAt(place);
    return child ? child : top;
}

static void TapOn(QWidget* target, QPoint place) {
    const QPointer<QWidget> widget = target;
    if (target->focusPolicy() & Qt::ClickFocus) target->setFocus(Qt::MouseFocusReason);
    SendMouse(target, QEvent::MouseButtonPress, place, true);
    if (widget) SendMouse(target, QEvent::MouseButtonRelease, place, false);
}

static void Stylus(EventInput* input) {
    enum { kDown, kMove, kUp, kTap, kDoubleTap, kWays };
    QWidget* top = TopWidget();
    const unsigned way = TakeByte(input) % kWays;
    const QPoint place = TakePlace(input, *top);
    QWidget* target = WidgetAt(top, place);
    if ((way == kMove || way == kUp) && g_pressed) target = g_pressed;
    const QPoint at = target->mapFrom(
        target->window(), target->window() == top ? place : target->window()->rect().center());
    if (way == kDown) g_pressed = target;
    if (way == kDown) SendMouse(target, QEvent::MouseButtonPress, at, true);
    if (way == kMove) SendMouse(target, QEvent::MouseMove, at, g_pressed != nullptr);
    if (way == kUp) g_pressed.clear();
    if (way == kUp) SendMouse(target, QEvent::MouseButtonRelease, at, false);
    if (way < kTap) return;
    const QPointer<QWidget> widget = target;
    TapOn(target, at);
    if (way == kTap || !widget) return;
    SendMouse(target, QEvent::MouseButtonDblClick, at, true);
    if (widget) SendMouse(target, QEvent::MouseButtonRelease, at, false);
}

// What a person finds in a dialog.
static void TapControl(EventInput* input) {
    QList<QWidget*> controls;
    for (QWidget* widget : TopWidget()->findChildren<QWidget*>()) {
        const bool control = qobject_cast<QAbstractButton*>(widget) ||
                             qobject_cast<QLineEdit*>(widget) || qobject_cast<QComboBox*>(widget) ||
                             qobject_cast<QTabBar*>(widget) || qobject_cast<QListWidget*>(widget);
        if (control && widget->isVisible() && widget->isEnabled()) controls.push_back(widget);
    }
    const auto which = static_cast<qsizetype>(TakeByte(input));
    const int along = static_cast<int>(TakeByte(input));
    if (controls.isEmpty()) return;
    QWidget* control = controls[which % controls.size()];
    if (auto* list = qobject_cast<QListWidget*>(control); list && list->count() > 0) {
        QListWidgetItem* row = list->item(along % list->count());
        list->scrollToItem(row);
        return TapOn(list->viewport(), list->visualItemRect(row).center());
    }
    TapOn(control, QPoint(control->width() * along / 255, control->height() / 2));
}

static void TapPanel(EventInput* input) {
    const QList<QAbstractButton*> keys = ShellInputPanel()->findChildren<QAbstractButton*>();
    const auto which = static_cast<qsizetype>(TakeByte(input));
    if (keys.isEmpty() || ShellInputPanel()->isHidden()) return;
    QAbstractButton* key = keys[which % keys.size()];
    TapOn(key, key->rect().center());
}

// ---------------------------------------------------------------- commands, messages, the desktop

static void Command(EventInput* input) {
    static const WORD kCommands[] = {
        IDM_AUTO_LOGIN,  IDM_ABOUT,         IDM_FONT,          IDM_LARGER_FONT, IDM_SMALLER_FONT,
        IDM_CONNECT,     IDM_PROPERTIES,    IDM_COPY,          IDM_PASTE,       IDM_COLOR_BG,
        IDM_COLOR_TEXT,  IDM_COLOR_CURSOR,  IDM_COLOR_BOLD,    IDM_RESET,       IDM_HELP,
        IDM_KEY_PAGE_UP, IDM_KEY_PAGE_DOWN, IDM_KEY_ENTER,     IDM_KEY_ESC,     IDM_KEY_LEFT,
        IDM_KEY_RIGHT,   IDM_KEY_UP,        IDM_TOOLBAR_FIRST, IDM_F1,          IDM_EXIT};
    const unsigned which = TakeByte(input), more = TakeByte(input);
    const WORD id = kCommands[which % std::size(kCommands)];
    const unsigned room = id == IDM_TOOLBAR_FIRST ? 50 : id == IDM_F1 ? 20 : 1;
    // A person reaches the program's menus only while no dialog covers them.
    if (!QApplication::activeModalWidget())
        PostMessageW(session.main_window, WM_COMMAND, id + more % room, 0);
}

static void Tick(EventInput*) { PostMessageW(session.main_window, WM_TIMER, 1, 0); }

static void Scroll(EventInput* input) {
    const unsigned how = TakeByte(input), place = TakeByte(input);
    static const int kCodes[] = {SB_LINEUP, SB_LINEDOWN, SB_PAGEUP, SB_PAGEDOWN, SB_THUMBPOSITION};
    const auto code = static_cast<WORD>(kCodes[how / 2 % std::size(kCodes)]);
    PostMessageW(session.client_window, how & 1 ? WM_VSCROLL : WM_HSCROLL,
                 static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(code, place % 100))), 0);
}

static void Resize(EventInput* input) {
    const int width = static_cast<int>(TakeByte(input)), height = static_cast<int>(TakeByte(input));
    DeviceScreen()->resize(100 + width * 3, 80 + height * 3);
}

static void Clipboard(EventInput* input) {
    QApplication::clipboard()->setText(QString::fromLatin1(TakeText(input).c_str()));
}

static void Activation(EventInput* input) {
    if (TakeByte(input) & 1) return TopWidget()->activateWindow();
    if (QWidget* focus = QApplication::focusWidget()) focus->clearFocus();
    QEvent event(QEvent::WindowDeactivate);
    QApplication::sendEvent(TopWidget(), &event);
}

static void Panel(EventInput*) { ShowInputPanel(!InputPanelShown()); }

static void CloseWindow(EventInput*) { TopWidget()->close(); }

// As the dialogs set them.
static void Switch(EventInput* input) {
    Settings& s = session.settings;
    DWORD* const kFields[] = {&s.followcursor, &s.bell,    &s.nego,         &s.hotspot, &s.alive,
                              &s.exit_dis,     &s.ssh_def, &s.confirm_exit, &s.xbox};
    const unsigned which = TakeByte(input);
    DWORD* field = kFields[which % std::size(kFields)];
    *field = which & 128 ? 1 : 0;
}

// ---------------------------------------------------------------- what must hold

static bool g_compare = false;

static void Compare(EventInput*) { g_compare = true; }

bool TakeWishToCompare() { return std::exchange(g_compare, false); }

static std::vector<std::u16string> WhatIsSaved() {
    std::vector<std::u16string> all;
    for (const NumberSetting& row : number_settings)
        all.push_back({static_cast<char16_t>(*row.field), static_cast<char16_t>(*row.field >> 16)});
    for (const TextSetting& row : text_settings) all.emplace_back(row.field);
    for (const ToolbarButton* button = toolbar_buttons; button->name; ++button)
        for (const DWORD bar : {button->onBar1, button->onBar2, button->onBar3})
            all.push_back({static_cast<char16_t>(bar)});
    for (const KeyMapEntry* key = key_map; key->name; ++key) {
        const std::string text = key->text ? key->text : "";
        all.emplace_back(text.begin(), text.end());
    }
    return all;
}

// As if the program ended and began.
static void SaveAndLoad(EventInput*) {
    const std::vector<std::u16string> before = WhatIsSaved();
    SaveSettings();
    std::memset(static_cast<void*>(&session.settings), 0xA5, sizeof(session.settings));
    LoadSettings();
    Require(WhatIsSaved() == before, "what the dialogs set is saved and loaded");
}

// ---------------------------------------------------------------- the table

// The host's bytes have more than one row: they are what happens most.
static void (*const kEvents[])(EventInput*) = {
    HostBytes,  HostBytes, HostBytes,  PressOrRelease, TypeText, Stylus,     Stylus, TapControl,
    TapControl, TapPanel,  Command,    Command,        Tick,     Scroll,     Resize, Clipboard,
    Activation, Panel,     HostCloses, HostComes,      Switch,   CloseWindow};

// The last numbers of events.
static void (*const kFromOutside[])(EventInput*) = {
    SshSession,  SshPacket,    SshPacket,   SshPacket,    SshPacket, SshPacket,
    DialState,   NetworkState, SecondStart, ScreenReader, Finger,    Finger,
    InputMethod, Desktop,      SaveAndLoad, Compare,      Compare,   Compare};
static const unsigned kFirstFromOutside = 128 - std::size(kFromOutside);

bool DoEvent(EventInput* input) {
    const unsigned kind = TakeByte(input), number = kind & 127;
    if (number >= kFirstFromOutside)
        kFromOutside[number - kFirstFromOutside](input);
    else
        kEvents[number % std::size(kEvents)](input);
    return kind & 128 && !g_compare;
}

// ---------------------------------------------------------------- the end

static QPushButton* ButtonToLeave(const QMessageBox& box) {
    auto* cancel = qobject_cast<QPushButton*>(box.button(QMessageBox::Cancel));
    return cancel ? cancel : qobject_cast<QPushButton*>(box.button(QMessageBox::Ok));
}

bool CloseTopMost() {
    if (QWidget* popup = QApplication::activePopupWidget()) return popup->close(), true;
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal) return false;
    if (auto* box = qobject_cast<QMessageBox*>(modal))
        ButtonToLeave(*box)->click();
    else if (auto* dialog = qobject_cast<QDialog*>(modal))
        dialog->reject();
    else
        modal->close();
    return true;
}
