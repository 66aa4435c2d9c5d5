// SPDX-License-Identifier: MIT
// The keyboard: translates Qt's keys to virtual-key codes; synthetic keys; accelerators.
#include <QInputMethod>
#include <QKeyEvent>

#include "platform/qt/services/resources.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"

namespace {

struct KeyRow {
    int key;
    int virtual_key;
};

}  // namespace

// clang-format off
static const KeyRow kKeys[] = {
    {Qt::Key_Backspace, VK_BACK},    {Qt::Key_Tab, VK_TAB},       {Qt::Key_Backtab, VK_TAB},
    {Qt::Key_Return, VK_RETURN},     {Qt::Key_Enter, VK_RETURN},  {Qt::Key_Escape, VK_ESCAPE},
    {Qt::Key_Space, VK_SPACE},       {Qt::Key_PageUp, VK_PRIOR},  {Qt::Key_PageDown, VK_NEXT},
    {Qt::Key_End, VK_END},           {Qt::Key_Home, VK_HOME},     {Qt::Key_Left, VK_LEFT},
    {Qt::Key_Up, VK_UP},             {Qt::Key_Right, VK_RIGHT},   {Qt::Key_Down, VK_DOWN},
    {Qt::Key_Insert, VK_INSERT},     {Qt::Key_Delete, VK_DELETE}, {Qt::Key_CapsLock, VK_CAPITAL},
};

// Keys of the number pad while it types digits.
static const KeyRow kPadKeys[] = {
    {Qt::Key_Asterisk, VK_MULTIPLY}, {Qt::Key_Plus, VK_ADD},        {Qt::Key_Minus, VK_SUBTRACT},
    {Qt::Key_Period, VK_DECIMAL},    {Qt::Key_Comma, VK_DECIMAL},   {Qt::Key_Slash, VK_DIVIDE},
};

// Punctuation keys that accelerators name, each by both characters of its key.
static const KeyRow kPunctuation[] = {
    {Qt::Key_Plus, VK_OEM_PLUS},   {Qt::Key_Equal, VK_OEM_PLUS},
    {Qt::Key_Minus, VK_OEM_MINUS}, {Qt::Key_Underscore, VK_OEM_MINUS},
};

// X11 keysyms of the modifiers, which distinguish left and right.
static const KeyRow kModifiers[] = {
    {0xffe1, VK_LSHIFT},   {0xffe2, VK_RSHIFT}, {0xffe3, VK_LCONTROL}, {0xffe4, VK_RCONTROL},
    {0xffe9, VK_LMENU},    {0xffea, VK_RMENU},
};
// clang-format on

constexpr LPARAM kWasDown = 1 << 30;  // of a key message: the key repeats
constexpr int kProcessKey = 0xE5;     // a key press that the input method handled

static int ModifierKey(const QKeyEvent& event) {
    for (const KeyRow& row : kModifiers)
        if (static_cast<quint32>(row.key) == event.nativeVirtualKey()) return row.virtual_key;
    if (event.key() == Qt::Key_Shift) return VK_LSHIFT;
    if (event.key() == Qt::Key_Control) return VK_LCONTROL;
    return event.key() == Qt::Key_Alt ? VK_LMENU : 0;
}

// Messages name the key without its side.
static int GenericKey(int key) {
    if (key == VK_LSHIFT || key == VK_RSHIFT) return VK_SHIFT;
    if (key == VK_LCONTROL || key == VK_RCONTROL) return VK_CONTROL;
    return key == VK_LMENU || key == VK_RMENU ? VK_MENU : key;
}

constexpr quint32 kScanCodeOf1 = 10, kScanCodeOf0 = 19;

// The digit keys have the same code with and without Shift; on X11 the hardware code identifies
// them.
static int DigitKey(const QKeyEvent& event) {
    const quint32 code = event.nativeScanCode();
    if (event.nativeVirtualKey() == 0 || code < kScanCodeOf1 || code > kScanCodeOf0) return 0;
    return code == kScanCodeOf0 ? '0' : static_cast<int>('1' + (code - kScanCodeOf1));
}

template <size_t count>
static int FindKey(const KeyRow (&rows)[count], int key) {
    for (const KeyRow& row : rows)
        if (row.key == key) return row.virtual_key;
    return 0;
}

static int PadKey(const QKeyEvent& event) {
    if (event.key() >= Qt::Key_0 && event.key() <= Qt::Key_9)
        return VK_NUMPAD0 + (event.key() - Qt::Key_0);
    return FindKey(kPadKeys, event.key());
}

static int VirtualKey(const QKeyEvent& event) {
    if (const int key = FindKey(kKeys, event.key())) return key;
    if (event.modifiers() & Qt::KeypadModifier) return PadKey(event);
    if (event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F24)
        return VK_F1 + (event.key() - Qt::Key_F1);
    if (const int digit = DigitKey(event)) return digit;
    const bool digit_or_letter = (event.key() >= Qt::Key_0 && event.key() <= Qt::Key_9) ||
                                 (event.key() >= Qt::Key_A && event.key() <= Qt::Key_Z);
    return digit_or_letter ? event.key() : FindKey(kPunctuation, event.key());
}

// Returns what the key types. As on the device, Ctrl with a letter types a control character, and
// the keys of the editing block other than these type nothing.
static QString CharactersOf(const QKeyEvent& event, int virtual_key) {
    if (virtual_key == VK_BACK) return QString(QChar(8));
    if (virtual_key == VK_TAB) return QString(u'\t');
    if (virtual_key == VK_RETURN) return QString(u'\r');
    if (virtual_key == VK_ESCAPE) return QString(u'\x1b');
    if (virtual_key == VK_DELETE || ModifierKey(event)) return QString();
    return event.text();
}

// A release that is lost must not leave a modifier down forever, so each event corrects the state.
static void FollowModifiers(Qt::KeyboardModifiers modifiers) {
    const auto clear = [](size_t left, size_t right) {
        SetKeyDown(left, false);
        SetKeyDown(right, false);
    };
    if (!(modifiers & Qt::ShiftModifier)) clear(VK_LSHIFT, VK_RSHIFT);
    if (!(modifiers & Qt::ControlModifier)) clear(VK_LCONTROL, VK_RCONTROL);
    if (!(modifiers & Qt::AltModifier)) clear(VK_LMENU, VK_RMENU);
    const auto hold = [](size_t left, size_t right) {
        if (!IsKeyDown(left) && !IsKeyDown(right)) SetKeyDown(left, true);
    };
    if (modifiers & Qt::ShiftModifier) hold(VK_LSHIFT, VK_RSHIFT);
    if (modifiers & Qt::ControlModifier) hold(VK_LCONTROL, VK_RCONTROL);
    if (modifiers & Qt::AltModifier) hold(VK_LMENU, VK_RMENU);
}

void ReleaseModifiers() { FollowModifiers(Qt::NoModifier); }

static bool AcceleratorFits(const AcceleratorRow& row, const MSG& message) {
    const bool key = row.flags & kAcceleratorKey;
    const bool down = message.message == WM_KEYDOWN || message.message == WM_SYSKEYDOWN;
    if (key ? !down : message.message != WM_CHAR) return false;
    if (message.wParam != row.key) return false;
    if (!key) return true;
    const auto held = [](int virtual_key) { return (GetKeyState(virtual_key) & 0x8000) != 0; };
    return held(VK_SHIFT) == ((row.flags & kAcceleratorShift) != 0) &&
           held(VK_CONTROL) == ((row.flags & kAcceleratorControl) != 0) &&
           held(VK_MENU) == ((row.flags & kAcceleratorAlt) != 0);
}

void QueueKeyEvent(HWND window, QKeyEvent* event, bool down) {
    const int modifier = ModifierKey(*event);
    if (!modifier) FollowModifiers(event->modifiers());
    const int key = modifier ? modifier : VirtualKey(*event);
    const bool system =
        (event->modifiers() & Qt::AltModifier) && !(event->modifiers() & Qt::ControlModifier);
    const UINT message =
        down ? (system ? WM_SYSKEYDOWN : WM_KEYDOWN) : (system ? WM_SYSKEYUP : WM_KEYUP);
    const QString characters = down ? CharactersOf(*event, key) : QString();
    if (key == 0 && characters.isEmpty()) return;  // a key that the device does not have
    SetKeyDown(static_cast<size_t>(key), down);
    QueueKey(window, message, static_cast<WPARAM>(GenericKey(key)),
             event->isAutoRepeat() ? kWasDown : 0, characters);
}

// As on the device, the key press of the input method comes before its characters.
void QueueCommittedText(HWND window, const QString& text) {
    if (text.isEmpty()) return;
    QueueKey(window, WM_KEYDOWN, kProcessKey, 0, QString());
    for (const QChar character : text) QueueInput(window, WM_CHAR, character.unicode(), 0);
}

void keybd_event(BYTE virtual_key, BYTE, DWORD flags, DWORD_PTR) {
    if (flags & KEYEVENTF_SILENT) {
        if (window_observer.silent_key) window_observer.silent_key(virtual_key, flags);
        return;
    }
    const bool down = !(flags & KEYEVENTF_KEYUP);
    SetKeyDown(virtual_key, down);
    if (HWND window = GetActiveWindow())
        QueueKey(window, down ? WM_KEYDOWN : WM_KEYUP, static_cast<WPARAM>(GenericKey(virtual_key)),
                 0, QString());
}

int TranslateAcceleratorW(HWND window, HACCEL table, MSG* message) {
    if (!table || !FindWindowRecord(window)) return 0;
    for (const AcceleratorRow& row : table->rows) {
        if (!AcceleratorFits(row, *message)) continue;
        SendMessageW(window, WM_COMMAND, static_cast<WPARAM>(row.command | (1u << 16)), 0);
        return 1;
    }
    return 0;
}
