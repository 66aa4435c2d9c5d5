// SPDX-License-Identifier: MIT
// The library of common dialogs, which a program looks up at run time. Its only dialog is the
// colour chooser: the toolkit's own, in a window that fits on the desktop and whose buttons are
// always visible.
#include <QAbstractSpinBox>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStyle>
#include <QVBoxLayout>

#include "platform/qt/dialog/dialogs.h"
#include "platform/qt/services/services.h"
#include "platform/qt/shell/shell.h"
#include "platform/qt/window/device_screen.h"
#include "platform/qt/window/gdi.h"
#include "platform/qt/window/messages.h"
#include "platform/qt/window/window.h"

constexpr int kCustomColors = 16;
constexpr int kMargin = 4;
constexpr int kSmallPatch = 20;

static bool TemplateIsThere(const CHOOSECOLORW& request) {
    DialogTemplate shape;
    return !(request.Flags & CC_ENABLETEMPLATE) ||
           LoadDialogTemplate(request.lpTemplateName, &shape);
}

static void PutCustomColors(const COLORREF* colors) {
    for (int i = 0; colors && i < kCustomColors; ++i)
        QColorDialog::setCustomColor(i, ColorOf(colors[i]));
}

static void TakeCustomColors(COLORREF* colors) {
    for (int i = 0; colors && i < kCustomColors; ++i)
        colors[i] = ValueOf(QColorDialog::customColor(i));
}

namespace {

// Leaves Enter to the window, which presses its default button.
class Chooser : public QColorDialog {
  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (enter) return event->ignore();
        QColorDialog::keyPressEvent(event);
    }
};

}  // namespace

static QColorDialog* MakeChooser(const CHOOSECOLORW& request) {
    auto* chooser = new Chooser;
    chooser->setWindowFlags(Qt::Widget);
    chooser->setOptions(QColorDialog::DontUseNativeDialog | QColorDialog::NoButtons);
    chooser->setCurrentColor(request.Flags & CC_RGBINIT ? ColorOf(request.rgbResult) : Qt::black);
    return chooser;
}

static QScrollArea* MakeArea(QColorDialog* chooser, QDialog* window) {
    auto* area = new QScrollArea(window);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(chooser);
    area->setWidgetResizable(true);
    QObject::connect(qApp, &QApplication::focusChanged, area, [area](QWidget*, QWidget* now) {
        if (now && area->widget()->isAncestorOf(now)) area->ensureWidgetVisible(now, 4, 4);
    });
    return area;
}

static QDialogButtonBox* MakeButtons(QColorDialog* chooser, QDialog* window) {
    auto* box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, window);
    QObject::connect(box, &QDialogButtonBox::accepted, chooser, &QDialog::accept);
    QObject::connect(box, &QDialogButtonBox::rejected, chooser, &QDialog::reject);
    return box;
}

// As in the other dialogs, a click on a button does not move the focus, and Enter presses the
// button that is drawn as the default.
static void SetDefaults(QDialog* window, QPushButton* ok) {
    for (QPushButton* button : window->findChildren<QPushButton*>()) {
        button->setFocusPolicy(Qt::TabFocus);
        button->setAutoDefault(false);
        button->setDefault(button == ok);
    }
    FollowFocusWithDefault(window, [ok] { return ok; });
}

// For the screen of a hand-held, drops the space between the fields and most of the patch that
// shows the colour.
static void Squeeze(QColorDialog* chooser) {
    for (QLayout* layout : chooser->findChildren<QLayout*>()) layout->setSpacing(kMargin);
    chooser->layout()->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    for (QWidget* widget : chooser->findChildren<QWidget*>())
        if (widget->inherits("QColorShowLabel")) widget->setMinimumWidth(kSmallPatch);
}

static QSize FrameSize() { return DeviceScreen()->frameGeometry().size() - DeviceScreen()->size(); }

// The input panel is needed to type into the chooser's fields.
static bool LeavesPanelFree() { return RoomForDialogs() != DeviceScreen()->size(); }

// The desktop's screen, or its part above a shown input panel. On Wayland the panel is below the
// chooser in the same window, and needs no more than its height.
static QRect RoomForChooser() {
    QRect room = DeviceScreen()->screen()->availableGeometry();
    const int panel = DeviceScreen()->mapToGlobal(InputPanelPlace().topLeft()).y();
    if (LeavesPanelFree())
        room.setBottom(DesktopTellsPlaces() ? panel - 1 : room.bottom() - kInputPanelHeight);
    return room;
}

// Gives the window the size that the chooser wants, or the room's if that is smaller. The chooser
// then scrolls above its buttons.
static void SetSize(QDialog* window, QColorDialog* chooser, const QWidget& buttons) {
    const QSize room = RoomForChooser().size() - FrameSize();
    const int bar = window->style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    if (chooser->sizeHint().width() + bar > room.width()) Squeeze(chooser);
    QSize size = chooser->sizeHint();
    size.rheight() += buttons.sizeHint().height() + 2 * kMargin;
    if (size.height() > room.height()) size.rwidth() += bar;
    window->resize(WithFoot(*window, size.boundedTo(room)));
}

// The desktop would put the window over the middle of the device, and so over the panel.
static void PlaceAbovePanel(QDialog* window) {
    const QRect room = RoomForChooser();
    QRect place(QPoint(0, 0), window->size() + FrameSize());
    place.moveCenter(DeviceScreen()->frameGeometry().center());
    place.moveBottom(std::min(place.bottom(), room.bottom()));
    place.moveTop(std::max(place.top(), room.top()));
    place.moveRight(std::min(place.right(), room.right()));
    place.moveLeft(std::max(place.left(), room.left()));
    window->move(place.topLeft());
}

// The menu of a number field would open in a loop of its own, in which the program's messages wait.
// The menu of the edit in it does not.
static void OpenMenuWithoutLoop(QLineEdit* field) {
    if (auto* number = qobject_cast<QAbstractSpinBox*>(field->parentWidget()))
        number->setContextMenuPolicy(Qt::NoContextMenu);
    field->setContextMenuPolicy(Qt::DefaultContextMenu);
}

static void PutInWindow(QColorDialog* chooser, QDialog* window) {
    auto* layout = new QVBoxLayout(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(MakeArea(chooser, window));
    QDialogButtonBox* buttons = MakeButtons(chooser, window);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    row->addWidget(buttons);
    layout->addLayout(row);
    SetDefaults(window, buttons->button(QDialogButtonBox::Ok));
    window->setWindowTitle(chooser->windowTitle());
    const auto fit = [=] {
        SetSize(window, chooser, *buttons);
        if (LeavesPanelFree()) PlaceAbovePanel(window);
    };
    fit();
    for (QLineEdit* field : chooser->findChildren<QLineEdit*>()) {
        OfferInputPanel(field, fit);
        OpenMenuWithoutLoop(field);
    }
    chooser->show();
}

// The program calls it through a pointer of this type.
BOOL ShowColorDialog(LPVOID parameter) {
    auto* request = static_cast<CHOOSECOLORW*>(parameter);
    if (!request || request->lStructSize != sizeof(CHOOSECOLORW)) return FALSE;
    if (request->hwndOwner && !IsWindow(request->hwndOwner)) return FALSE;
    if (!TemplateIsThere(*request)) return FALSE;
    PutCustomColors(request->lpCustColors);
    QDialog window(ParentOfBox());
    const QPointer<QWidget> below = window.parentWidget();
    QColorDialog* chooser = MakeChooser(*request);
    PutInWindow(chooser, &window);
    bool chosen = false, done = false;
    QObject::connect(chooser, &QDialog::finished, &window, [&](int result) {
        chosen = result == QDialog::Accepted;
        done = true;
    });
    QObject::connect(&window, &QDialog::finished, &window, [&] { done = true; });
    window.setWindowModality(Qt::ApplicationModal);
    DropInput();
    window.show();
    LendInputPanel(&window);
    if (window_observer.dialog) window_observer.dialog();
    RunModalLoop([&] { return done; });
    if (chosen) request->rgbResult = ValueOf(chooser->selectedColor());
    TakeCustomColors(request->lpCustColors);
    window.hide();
    const Window* outer = TopMostDialog();
    LendInputPanel(outer ? outer->widget.data() : nullptr);
    TakeInputPanelFrom(&window);
    if (below && below->isVisible()) below->activateWindow();
    return chosen;
}

using AnyProcedure = void (*)();

struct ProcedureRow {
    LPCWSTR name;  // null ends the table
    AnyProcedure procedure;
};

struct SliceModule {
    LPCWSTR name;
    const ProcedureRow* procedures;
};

static const ProcedureRow kCommonDialogs[] = {
    {u"ChooseColor", reinterpret_cast<AnyProcedure>(ShowColorDialog)},
    {nullptr, nullptr},
};

static SliceModule g_libraries[] = {{u"COMMDLG.DLL", kCommonDialogs}};

static bool IsLibrary(HMODULE library) {
    return library >= std::begin(g_libraries) && library < std::end(g_libraries);
}

HMODULE LoadLibraryW(LPCWSTR name) {
    if (!name || (window_observer.hide_library && window_observer.hide_library(name)))
        return nullptr;
    for (SliceModule& library : g_libraries)
        if (CompareWithoutCase(name, library.name) == 0) return &library;
    return nullptr;
}

FARPROC GetProcAddressW(HMODULE library, LPCWSTR name) {
    if (!IsLibrary(library) || !name) return nullptr;
    for (const ProcedureRow* row = library->procedures; row->name; ++row)
        if (lstrcmpW(row->name, name) == 0) return reinterpret_cast<FARPROC>(row->procedure);
    return nullptr;
}

BOOL FreeLibrary(HMODULE library) { return IsLibrary(library); }
