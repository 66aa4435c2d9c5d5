// SPDX-License-Identifier: MIT
// The server of SSH switches the client's ciphers off, so that any packet can be sent. What the
// screen reader finds is compared with the terminal's cells, and the changes that it is told with
// the text before and after them.
#include "fuzz/window_outside.h"

#include <QAccessible>
#include <QClipboard>
#include <QCryptographicHash>
#include <QFile>
#include <QInputMethodEvent>
#include <QPointer>
#include <QtTest/QTest>
#include <QUrl>
#include <QWindow>

#include "fuzz/cipher_off.h"
#include "platform/qt/services/posix_sockets.h"
#include "platform/qt/services/services.h"
#include "platform/qt/window/accessible.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"
#include "protocol/ssh/ssh2.h"
#include "resources/resource_ids.h"
#include "session/session_state.h"
#include "terminal/screen_buffer.h"
#include "text/bytes.h"
#include "text/text.h"

// ---------------------------------------------------------------- the server of SSH

static std::string Uint32(size_t value) {
    uint8_t bytes[4];
    StoreBig(bytes, static_cast<uint32_t>(value));
    return std::string(reinterpret_cast<char*>(bytes), 4);
}

static std::string Text(const std::string& text) { return Uint32(text.size()) + text; }

static std::string Packet1(const std::string& payload) {
    const size_t length = payload.size() + 4;
    const std::string body = std::string(8 - length % 8, '\0') + payload;
    return Uint32(length) + body +
           Uint32(
               Crc32(reinterpret_cast<const uint8_t*>(body.data()), static_cast<int>(body.size())));
}

static std::string Packet2(const std::string& payload) {
    std::string packet = Uint32(1 + payload.size() + 4) + '\4' + payload + "pppp";
    if (session.ssh2.cipher) packet.append(kMacSize, '\0');
    return packet;
}

// The exponent 1 makes encryption fast.
static std::string PublicKey(size_t bytes) {
    const std::string count = {static_cast<char>(bytes * 8 >> 8), static_cast<char>(bytes * 8)};
    return Uint32(0) + std::string("\0\1\1", 3) + count + std::string(bytes, '\xC5');
}

static std::string PublicKeys(EventInput* input) {
    const size_t server = TakeByte(input), host = TakeByte(input);
    return "\2biscuits" + PublicKey(server) + PublicKey(host) + Uint32(0) + Uint32(12) + Uint32(8);
}

static std::string Ssh1Payload(EventInput* input) {
    static const char kTypes[] = {14, 15, 15, 14, 17, 18, 20, 1, 36};
    const unsigned which = TakeByte(input);
    if (which == 255) return static_cast<char>(TakeByte(input)) + TakeText(input);
    if (which >= 128) return PublicKeys(input);
    const char type = kTypes[which % sizeof(kTypes)];
    const bool shown = type == 17 || type == 18 || type == 1;
    return shown ? type + Text(TakeText(input)) : std::string(1, type);
}

static std::string Ssh2Payload(EventInput* input) {
    static const char kTypes[] = {6, 51, 52, 60, 91, 93, 94, 95, 97, 98, 99, 100, 20, 21};
    const std::string channel = Uint32(27);
    const unsigned which = TakeByte(input);
    if (which == 255) return static_cast<char>(TakeByte(input)) + TakeText(input);
    const char type = kTypes[which % sizeof(kTypes)];
    if (type == 6) return type + Text("ssh-userauth");
    if (type == 51) return type + Text("password") + '\0';
    if (type == 91)
        return type + channel + Uint32(66) + Uint32(1 + TakeByte(input)) + Uint32(32768);
    if (type == 93) return type + channel + Uint32(TakeByte(input));
    if (type == 94) return type + channel + Text(TakeText(input));
    if (type == 95) return type + channel + Uint32(1) + Text(TakeText(input));
    return type + channel;
}

static void SwitchOff() {
    session.ssh1.ssh1Cipher = nullptr;
    if (!session.settings.ssh_type2 || !session.banner_sent) return;
    session.ssh2.cipher = &kOff;
    session.ssh2.inMac = session.ssh2.outMac = &kAny;
}

static bool MayHear() { return session.socket == kHostSocket && session.receive_ready == 1; }

void SshSession(EventInput* input) {
    const unsigned how = TakeByte(input);
    if (Connected() || session.connect_pending || session.socket != INVALID_SOCKET) return;
    Settings& s = session.settings;
    s.ssh = 1;
    s.ssh_type2 = how & 1;
    s.ssh_type = (how >> 1 & 3) % 3;
    s.ssh_def = how >> 3 & 1;
    WideFromAnsi(how & 16 ? "visitor" : "", s.ssh_u, kSettingUnits);
    WideFromAnsi(how & 32 ? "warehouse7" : "", s.ssh_p, kSettingUnits);
    BeginFakeSession();
    HostSays(how & 1 ? "SSH-2.0-fuzzed\r\n" : "SSH-1.5-fuzzed\n");
}

void SshPacket(EventInput* input) {
    const bool ssh2 = session.settings.ssh_type2 == 1;
    const std::string payload = ssh2 ? Ssh2Payload(input) : Ssh1Payload(input);
    if (!session.settings.ssh || !session.banner_sent || !MayHear()) return;
    SwitchOff();
    HostSays(ssh2 ? Packet2(payload) : Packet1(payload));
}

// ---------------------------------------------------------------- the network and the modem

static int connect_error;
static unsigned dial_error;

int NextConnectError() { return connect_error; }
unsigned NextDialError() { return dial_error; }

void NetworkState(EventInput* input) {
    const unsigned how = TakeByte(input);
    connect_error = how & 1 ? WSAEHOSTUNREACH : 10061;
    dial_error = how & 2 ? 633 : 0;
}

void DialState(EventInput* input) {
    const unsigned state = TakeByte(input), more = TakeByte(input);
    const WPARAM reached = state < 24 ? state : state < 128 ? 4096 + state % 4 : 8192 + state % 2;
    PostMessageW(session.main_window, WM_RASDIALEVENT, reached, more & 1 ? 600 + more : 0);
}

// ---------------------------------------------------------------- a second start

static int caller = -1;
static int calls;

static void HangUpCaller() {
    if (caller >= 0) CloseLocally(caller);
    caller = -1;
}

static void HearAnswers() {
    char bytes[256];
    while (caller >= 0 && AwaitLocally(caller, 0))
        if (HearLocally(caller, bytes, sizeof(bytes)) <= 0) HangUpCaller();
}

// No more calls than may wait.
static void Call() {
    if (caller >= 0 || ++calls > 3) return;
    const QByteArray root = QByteArray::fromStdString(DeviceRoot());
    const QByteArray hash = QCryptographicHash::hash(root, QCryptographicHash::Sha1).toHex();
    caller = CallLocally("quill-" + hash.toStdString());
    Require(caller >= 0, "a second start is heard");
}

void SecondStart(EventInput* input) {
    static const char* const kRequests[] = {"foreground\n", "show\n", "paint\n"};
    const unsigned which = TakeByte(input);
    const std::string request = which < 192 ? kRequests[which % 3] : TakeText(input);
    HearAnswers();
    Call();
    if (caller >= 0 && !SayLocally(caller, request)) HangUpCaller();
    if (which % 4 == 3) HangUpCaller();
}

// ---------------------------------------------------------------- a screen reader

static bool reader_listens;
static TextScreen heard;  // when the reader looked last

bool ReaderListens() __asm__("__wrap__ZN11QAccessible8isActiveEv");
bool ReaderListens() { return reader_listens; }

void ReaderHears(QAccessibleEvent* event) __asm__(
    "__wrap__ZN11QAccessible19updateAccessibilityEP16QAccessibleEvent");
void ReaderHears(QAccessibleEvent*) {}

static void CheckChanges(const TextScreen& before, const TextScreen& now) {
    QString text = TextOf(before);
    for (const TextChange& change : ChangesBetween(before, now)) {
        Require(text.mid(change.offset, change.removed.size()) == change.removed,
                "the reader has what is removed");
        text.replace(change.offset, change.removed.size(), change.inserted);
    }
    Require(text == TextOf(now), "the changes lead to the text");
}

// ASCII in the terminal's cells, for which no table is needed. Other cells: 0.
static char16_t Plain(DWORD cell) {
    const DWORD code = cell & 0xff;
    return !(cell & kCellGraphic) && code >= ' ' && code < 0x7f ? static_cast<char16_t>(code) : 0;
}

static void CheckRow(int row, const QString& text) {
    Require(text.size() <= kScreenColumns, "a row's length");
    for (int column = 1; column <= kScreenColumns; ++column) {
        const char16_t cell = Plain(GetCell(row, column));
        const char16_t told = column <= text.size() ? text[column - 1].unicode() : u' ';
        Require(!cell || cell == told, "the reader gets the terminal's text");
    }
}

static void CheckCursor(const QString& whole, int offset) {
    Require(offset >= 0 && offset <= whole.size(), "the cursor is in the text");
    const QString before = whole.left(offset);
    const auto row = before.count('\n'), column = offset - before.lastIndexOf('\n');
    Require(row + 1 == std::clamp(session.screen.cursor_row, 1, kScreenRows) &&
                column == std::clamp(session.screen.cursor_col, 1, kScreenColumns),
            "the reader gets the cursor's place");
}

static void CheckPlace(QAccessibleTextInterface* text, const QWidget* widget, int offset) {
    const QPoint middle = text->characterRect(offset).center();
    if (!widget->rect().contains(widget->mapFromGlobal(middle))) return;
    Require(text->offsetAtPoint(middle) == offset, "a character is found where it is");
}

static void CheckSelections(QAccessibleTextInterface* text, int length) {
    for (int i = 0; i < text->selectionCount(); ++i) {
        int start = -1, end = -1;
        text->selection(i, &start, &end);
        Require(start >= 0 && start <= end && end <= length, "the selection is in the text");
    }
}

static QAccessibleInterface* InterfaceOf(QWidget* widget) {
    return widget ? QAccessible::queryAccessibleInterface(widget) : nullptr;
}

static void ReadText(unsigned at) {
    const Window* client = FindWindowRecord(session.client_window);
    QAccessibleInterface* reader = InterfaceOf(client ? client->widget.data() : nullptr);
    QAccessibleTextInterface* text = reader ? reader->textInterface() : nullptr;
    Require(text != nullptr, "the terminal has a text for screen readers");
    const int length = text->characterCount();
    const QString whole = text->text(0, length);
    const QStringList rows = whole.split('\n');
    Require(whole.size() == length && rows.size() == kScreenRows, "the text is the whole screen");
    for (int row = 1; row <= kScreenRows; ++row) CheckRow(row, rows[row - 1]);
    CheckCursor(whole, text->cursorPosition());
    if (length > 0) CheckPlace(text, client->widget, static_cast<int>(at) * 8 % length);
    CheckSelections(text, length);
    int start = -1, end = -1;
    text->attributes(0, &start, &end);
    Require(start == 0 && end == length, "all of the text looks alike");
    const TextScreen now = text_screen_source.read();
    if (!heard.rows.isEmpty()) CheckChanges(heard, now);
    heard = now;
}

static void LookAt(QWidget* widget, bool press) {
    QAccessibleInterface* reader = InterfaceOf(widget);
    if (!reader || !reader->isValid()) return;
    reader->text(QAccessible::Name);
    reader->state();
    reader->focusChild();
    reader->rect();
    QAccessibleActionInterface* actions = reader->actionInterface();
    if (!actions || !press || !widget->isVisible()) return;
    const QStringList names = actions->actionNames();
    if (!names.isEmpty()) actions->doAction(names.first());
}

void ScreenReader(EventInput* input) {
    const unsigned which = TakeByte(input), how = TakeByte(input);
    reader_listens = true;
    if (how < 128) return ReadText(which);
    const QList<QWidget*> widgets = TopWidget()->findChildren<QWidget*>();
    if (!widgets.isEmpty())
        LookAt(widgets[static_cast<qsizetype>(which) % widgets.size()], how & 1);
}

// ---------------------------------------------------------------- fingers

static QPointer<QWindow> touched;  // the window that the finger is on
static QPoint touch_place;

static QPointingDevice* TouchScreen() {
    static QPointingDevice* device = QTest::createTouchDevice();
    return device;
}

static void PutDown(QWindow* window, QPoint place) {
    if (touched) return;
    touched = window;
    touch_place = place;
    QTest::touchEvent(window, TouchScreen(), false).press(0, place, window).commit(false);
}

static void Move(QPoint place) {
    if (!touched) return;
    touch_place = place;
    QTest::touchEvent(touched, TouchScreen(), false).move(0, place, touched).commit(false);
}

static void LiftFinger() {
    const QPointer<QWindow> window = touched;
    touched.clear();
    if (window)
        QTest::touchEvent(window, TouchScreen(), false)
            .release(0, touch_place, window)
            .commit(false);
}

static QPoint PlaceOnControl(EventInput* input, QWidget* top) {
    const QList<QWidget*> widgets = top->findChildren<QWidget*>();
    const auto which = static_cast<qsizetype>(TakeByte(input));
    if (widgets.isEmpty()) return QPoint();
    QWidget* widget = widgets[which % widgets.size()];
    return widget->mapTo(top, widget->rect().center());
}

void Finger(EventInput* input) {
    const unsigned how = TakeByte(input);
    QWidget* top = TopWidget();
    QWindow* window = top->windowHandle();
    const QPoint place = how & 8 ? PlaceOnControl(input, top) : TakePlace(input, *top);
    if (!window || !top->isVisible()) return;
    const unsigned way = how % 8;
    if (way != 1 && way != 2) PutDown(window, place);
    if (way == 1) Move(place);
    if (way >= 2) LiftFinger();
}

// ---------------------------------------------------------------- an input method, the desktop

void InputMethod(EventInput* input) {
    const unsigned how = TakeByte(input);
    const std::string bytes = TakeText(input);
    const QString text = how & 1 ? QString::fromUtf8(bytes.c_str()) : QString::fromLatin1(bytes);
    QWidget* target = QApplication::focusWidget();
    if (!target) return;
    QInputMethodQueryEvent question(Qt::ImEnabled | Qt::ImHints | Qt::ImCursorRectangle);
    QApplication::sendEvent(target, &question);
    QInputMethodEvent event(how & 2 ? text : QString(), {});
    event.setCommitString(how & 2 ? QString() : text);
    QApplication::sendEvent(target, &event);
}

// The page that the program wrote is whole.
bool OpenPage(const QUrl& page) __asm__("__wrap__ZN16QDesktopServices7openUrlERK4QUrl");
extern "C" const uint8_t quill_help_page[];
extern "C" const uint8_t quill_help_page_end[];
bool OpenPage(const QUrl& page) {
    QFile file(page.toLocalFile());
    Require(file.open(QIODevice::ReadOnly), "the page is a file");
    const QByteArray bytes = file.readAll();
    Require(bytes.size() == quill_help_page_end - quill_help_page &&
                memcmp(bytes.data(), quill_help_page, static_cast<size_t>(bytes.size())) == 0,
            "the page is whole");
    return true;
}

void Desktop(EventInput* input) {
    const unsigned what = TakeByte(input) % 4;
    if (what == 0 && !QApplication::activeModalWidget())
        PostMessageW(session.main_window, WM_HELP, 0, 0);
    if (what == 1) DeviceScreen()->showMinimized();
    if (what == 2) DeviceScreen()->showNormal();
    if (what == 3 && !QApplication::activeModalWidget())
        PostMessageW(session.main_window, WM_COMMAND, IDM_KEY_DOWN, 0);
}

// ---------------------------------------------------------------- around an input

void BeginOutside() {
    connect_error = 10061;
    dial_error = 0;
    calls = 0;
    heard = TextScreen();
}

void LeaveOutside() {
    LiftFinger();
    if (DeviceScreen()->isMinimized()) DeviceScreen()->showNormal();
}

void EndOutside() {
    HangUpCaller();
    reader_listens = false;
    ForgetTextChanges();
}
