// SPDX-License-Identifier: MIT
// The soft keyboard: 15 units wide, with five rows, laid out like an English keyboard. Shift, Ctl
// and Fn stay on for the next key, CAP until it is pressed again. With Fn, the digits become the
// function keys, and the arrows become Home, End and the page keys.
#include "platform/qt/shell/shell.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPainter>

#include "platform/qt/window/accessible.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/messages.h"

struct PanelKeyRow {
    int row;              // from the top
    double width;         // in units
    int key;              // Qt's key code without Shift
    const char* plain;    // what it types, or its label if it types nothing
    const char* shifted;  // the same with Shift; null: no difference
    int fn_key;           // the key code with Fn; 0: no difference
    const char* fn_label;
};

constexpr double kUnits = 15;
constexpr int kRows = 5;
constexpr int kFnKey = Qt::Key_unknown;
constexpr int kLabelMargin = 3;      // pixels at either side of a key's label
constexpr int kSmallestLabel = 5;    // pixels of its font
constexpr int kRepeatDelay = 400;    // milliseconds
constexpr int kRepeatInterval = 60;  // milliseconds

// clang-format off
static const PanelKeyRow kPanelKeys[] = {
    {0, 1.25, Qt::Key_Escape,      "Esc", nullptr, 0,            nullptr},
    {0, 1,   Qt::Key_1,            "1",   "!",     Qt::Key_F1,   "F1"},
    {0, 1,   Qt::Key_2,            "2",   "@",     Qt::Key_F2,   "F2"},
    {0, 1,   Qt::Key_3,            "3",   "#",     Qt::Key_F3,   "F3"},
    {0, 1,   Qt::Key_4,            "4",   "$",     Qt::Key_F4,   "F4"},
    {0, 1,   Qt::Key_5,            "5",   "%",     Qt::Key_F5,   "F5"},
    {0, 1,   Qt::Key_6,            "6",   "^",     Qt::Key_F6,   "F6"},
    {0, 1,   Qt::Key_7,            "7",   "&",     Qt::Key_F7,   "F7"},
    {0, 1,   Qt::Key_8,            "8",   "*",     Qt::Key_F8,   "F8"},
    {0, 1,   Qt::Key_9,            "9",   "(",     Qt::Key_F9,   "F9"},
    {0, 1,   Qt::Key_0,            "0",   ")",     Qt::Key_F10,  "F10"},
    {0, 1,   Qt::Key_Minus,        "-",   "_",     Qt::Key_F11,  "F11"},
    {0, 1,   Qt::Key_Equal,        "=",   "+",     Qt::Key_F12,  "F12"},
    {0, 1.75, Qt::Key_Backspace,   "Bksp", nullptr, 0,           nullptr},

    {1, 1.5, Qt::Key_Tab,          "Tab", nullptr, 0,            nullptr},
    {1, 1,   Qt::Key_Q,            "q",   "Q",     0,            nullptr},
    {1, 1,   Qt::Key_W,            "w",   "W",     0,            nullptr},
    {1, 1,   Qt::Key_E,            "e",   "E",     0,            nullptr},
    {1, 1,   Qt::Key_R,            "r",   "R",     0,            nullptr},
    {1, 1,   Qt::Key_T,            "t",   "T",     0,            nullptr},
    {1, 1,   Qt::Key_Y,            "y",   "Y",     0,            nullptr},
    {1, 1,   Qt::Key_U,            "u",   "U",     0,            nullptr},
    {1, 1,   Qt::Key_I,            "i",   "I",     0,            nullptr},
    {1, 1,   Qt::Key_O,            "o",   "O",     0,            nullptr},
    {1, 1,   Qt::Key_P,            "p",   "P",     0,            nullptr},
    {1, 1,   Qt::Key_BracketLeft,  "[",   "{",     0,            nullptr},
    {1, 1,   Qt::Key_BracketRight, "]",   "}",     0,            nullptr},
    {1, 1.5, Qt::Key_Backslash,    "\\",  "|",     0,            nullptr},

    {2, 2,   Qt::Key_CapsLock,     "CAP", nullptr, 0,            nullptr},
    {2, 1,   Qt::Key_A,            "a",   "A",     0,            nullptr},
    {2, 1,   Qt::Key_S,            "s",   "S",     0,            nullptr},
    {2, 1,   Qt::Key_D,            "d",   "D",     0,            nullptr},
    {2, 1,   Qt::Key_F,            "f",   "F",     0,            nullptr},
    {2, 1,   Qt::Key_G,            "g",   "G",     0,            nullptr},
    {2, 1,   Qt::Key_H,            "h",   "H",     0,            nullptr},
    {2, 1,   Qt::Key_J,            "j",   "J",     0,            nullptr},
    {2, 1,   Qt::Key_K,            "k",   "K",     0,            nullptr},
    {2, 1,   Qt::Key_L,            "l",   "L",     0,            nullptr},
    {2, 1,   Qt::Key_Semicolon,    ";",   ":",     0,            nullptr},
    {2, 1,   Qt::Key_Apostrophe,   "'",   "\"",    0,            nullptr},
    {2, 2,   Qt::Key_Return,       "Enter", nullptr, 0,          nullptr},

    {3, 2.5, Qt::Key_Shift,        "Shift", nullptr, 0,          nullptr},
    {3, 1,   Qt::Key_Z,            "z",   "Z",     0,            nullptr},
    {3, 1,   Qt::Key_X,            "x",   "X",     0,            nullptr},
    {3, 1,   Qt::Key_C,            "c",   "C",     0,            nullptr},
    {3, 1,   Qt::Key_V,            "v",   "V",     0,            nullptr},
    {3, 1,   Qt::Key_B,            "b",   "B",     0,            nullptr},
    {3, 1,   Qt::Key_N,            "n",   "N",     0,            nullptr},
    {3, 1,   Qt::Key_M,            "m",   "M",     0,            nullptr},
    {3, 1,   Qt::Key_Comma,        ",",   "<",     0,            nullptr},
    {3, 1,   Qt::Key_Period,       ".",   ">",     0,            nullptr},
    {3, 1,   Qt::Key_Slash,        "/",   "?",     0,            nullptr},
    {3, 1,   Qt::Key_Up,           "\u2191", nullptr, Qt::Key_PageUp, "PU"},
    {3, 1.5, Qt::Key_Delete,       "Del", nullptr, 0,            nullptr},

    {4, 2,   Qt::Key_Control,      "Ctl", nullptr, 0,            nullptr},
    {4, 1.5, kFnKey,               "Fn",  nullptr, 0,            nullptr},
    {4, 1,   Qt::Key_QuoteLeft,    "`",   "~",     0,            nullptr},
    {4, 7,   Qt::Key_Space,        " ",   nullptr, 0,            nullptr},
    {4, 1,   Qt::Key_Left,         "\u2190", nullptr, Qt::Key_Home, "Hm"},
    {4, 1,   Qt::Key_Down,         "\u2193", nullptr, Qt::Key_PageDown, "PD"},
    {4, 1.5, Qt::Key_Right,        "\u2192", nullptr, Qt::Key_End, "End"},
};
// clang-format on

static bool IsLatch(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == kFnKey;
}

static bool IsLetter(const PanelKeyRow& row) {
    return row.key >= Qt::Key_A && row.key <= Qt::Key_Z;
}

static bool TypesItsLabel(const PanelKeyRow& row) {
    return row.shifted || row.key == Qt::Key_Space;
}

static bool IsBracket(int key) { return key >= Qt::Key_BracketLeft && key <= Qt::Key_BracketRight; }

static QString ControlCharacter(const PanelKeyRow& row) {
    if (IsLetter(row) || IsBracket(row.key)) return QString(QChar(row.key & 0x1f));
    if (row.key == Qt::Key_Slash) return QString(QChar(0x1f));
    return row.key == Qt::Key_Space ? QString(QChar(0)) : QString();
}

// Control characters are the same as those of X11's keyboard driver.
static QString TextOf(const PanelKeyRow& row, bool shifted, bool control) {
    if (row.key == Qt::Key_Backspace) return "\b";
    if (row.key == Qt::Key_Tab) return "\t";
    if (row.key == Qt::Key_Return) return "\r";
    if (row.key == Qt::Key_Escape) return "\033";
    if (!TypesItsLabel(row)) return QString();
    if (control) return ControlCharacter(row);
    return QString::fromUtf8(shifted && row.shifted ? row.shifted : row.plain);
}

static QPointer<InputPanel> g_panel;

// Not every desktop keeps the focus in the dialog when the panel is tapped.
static QWidget* Target() {
    QWidget* modal = QApplication::activeModalWidget();
    if (modal) return modal->focusWidget() ? modal->focusWidget() : modal;
    return QApplication::focusWidget() ? QApplication::focusWidget() : DeviceScreen();
}

// Queued, and only then given a target: the key before this one may move the focus.
static void Tap(int key, Qt::KeyboardModifiers modifiers, const QString& text) {
    const auto type = [=] {
        const QPointer<QWidget> target = Target();
        for (const QEvent::Type way : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(way, key, modifiers, text);
            if (target) QCoreApplication::sendEvent(target, &event);
        }
        ReleaseModifiers();  // a latch holds for this key only
    };
    QMetaObject::invokeMethod(g_panel, type, Qt::QueuedConnection);
}

PanelKey::PanelKey(QWidget* panel, const PanelKeyRow& key) : QAbstractButton(panel), key_(key) {
    setFocusPolicy(Qt::NoFocus);
    setAutoRepeat(!IsLatch(key.key) && key.key != Qt::Key_CapsLock);
    setAutoRepeatDelay(kRepeatDelay);
    setAutoRepeatInterval(kRepeatInterval);
}

void PanelKey::Show(const QString& label, bool lit) {
    lit_ = lit;
    setText(label);
    setAccessibleName(key_.key == Qt::Key_Space ? "Space" : label);
    update();
}

// Uses smaller letters if the label would touch the key's edge.
QFont PanelKey::LabelFont() const {
    QFont font = this->font();
    const int room = width() - 2 * kLabelMargin;
    const int wanted = QFontMetrics(font).horizontalAdvance(text());
    if (wanted > room && room > 0)
        font.setPixelSize(std::max(font.pixelSize() * room / wanted, kSmallestLabel));
    return font;
}

void PanelKey::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool dark = isDown() || lit_;
    painter.setPen(palette().color(QPalette::Mid));
    painter.setBrush(palette().color(dark ? QPalette::Dark : QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    painter.setPen(palette().color(dark ? QPalette::BrightText : QPalette::Text));
    painter.setFont(LabelFont());
    painter.drawText(rect(), Qt::AlignCenter, text());
}

InputPanel::InputPanel(QWidget* screen) : QWidget(screen) {
    g_panel = this;
    setObjectName("input panel");
    setAccessibleName("Keyboard");
    hide();
}

void InputPanel::setVisible(bool visible) {
    if (visible && keys_.empty()) MakeKeys();
    QWidget::setVisible(visible);
}

void InputPanel::FillFoot() {
    const QSize size = parentWidget()->size();
    setGeometry(0, size.height() - kInputPanelHeight, size.width(), kInputPanelHeight);
}

bool InputPanel::eventFilter(QObject* dialog, QEvent* event) {
    if (event->type() == QEvent::Resize && dialog == parentWidget()) FillFoot();
    return QWidget::eventFilter(dialog, event);
}

void InputPanel::MakeKeys() {
    for (const PanelKeyRow& row : kPanelKeys) {
        auto* key = new PanelKey(this, row);
        // A key types when it is pressed, not when it is released: a stylus that slips off has
        // still typed.
        connect(key, &QAbstractButton::pressed, this, [this, key] { Press(key); });
        keys_.push_back(key);
    }
    Label();
    PlaceKeys();
    for (PanelKey* key : keys_) TellWidgetMade(key);
}

void InputPanel::LetGo() {
    for (PanelKey* key : keys_) key->setDown(false);
}

bool InputPanel::Latched(int key) const {
    return std::find(latches_.begin(), latches_.end(), key) != latches_.end();
}

bool InputPanel::Shifted() const { return Latched(Qt::Key_Shift); }

void InputPanel::Press(PanelKey* pressed) {
    const PanelKeyRow& row = pressed->key();
    if (IsLatch(row.key)) {
        if (std::erase(latches_, row.key) == 0) latches_.push_back(row.key);
    } else if (row.key == Qt::Key_CapsLock) {
        capitals_ = !capitals_;
    } else {
        const bool shift = Shifted(), control = Latched(Qt::Key_Control);
        const bool fn = Latched(kFnKey) && row.fn_key;
        Qt::KeyboardModifiers modifiers;
        modifiers.setFlag(Qt::ShiftModifier, shift);
        modifiers.setFlag(Qt::ControlModifier, control);
        const bool upper = IsLetter(row) ? shift != capitals_ : shift;
        Tap(fn ? row.fn_key : row.key, modifiers, fn ? QString() : TextOf(row, upper, control));
        latches_.clear();
    }
    Label();
}

void InputPanel::Label() {
    for (PanelKey* key : keys_) {
        const PanelKeyRow& row = key->key();
        const bool fn = Latched(kFnKey) && row.fn_key;
        const bool upper = IsLetter(row) ? Shifted() != capitals_ : Shifted();
        const char* label = fn ? row.fn_label : upper && row.shifted ? row.shifted : row.plain;
        const bool lit = row.key == Qt::Key_CapsLock ? capitals_ : Latched(row.key);
        key->Show(QString::fromUtf8(label), lit);
    }
}

void InputPanel::resizeEvent(QResizeEvent*) { PlaceKeys(); }

// Each key ends where the next one of its row begins, so rounding leaves no gap.
void InputPanel::PlaceKeys() {
    double unit = 0;
    int row = 0;
    for (PanelKey* key : keys_) {
        if (key->key().row != row) row = key->key().row, unit = 0;
        const auto column = [&](double at) { return static_cast<int>(at * width() / kUnits); };
        const int left = column(unit), right = column(unit += key->key().width);
        const int top = row * height() / kRows, bottom = (row + 1) * height() / kRows;
        key->setGeometry(left, top, right - left, bottom - top);
    }
}

void InputPanel::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), palette().color(QPalette::Window));
}

InputPanel* ShellInputPanel() { return g_panel; }
