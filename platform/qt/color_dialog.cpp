// The chooser of colours: the toolkit's own, in a window no larger than the device's screen.
#include "color_dialog.h"

#include <QColorDialog>
#include <QScrollArea>
#include <QVBoxLayout>

#include "dialogs.h"
#include "gdi.h"
#include "testing.h"

namespace {

constexpr int kCustomColors = 16;

QPointer<QColorDialog> g_shown;

bool TemplateIsThere(const CHOOSECOLORW& request) {
    DialogTemplate shape;
    return !(request.Flags & CC_ENABLETEMPLATE) ||
           LoadDialogTemplate(request.lpTemplateName, &shape);
}

void PutCustomColors(const COLORREF* colors) {
    for (int i = 0; colors && i < kCustomColors; i++)
        QColorDialog::setCustomColor(i, ColorOf(colors[i]));
}

void TakeCustomColors(COLORREF* colors) {
    for (int i = 0; colors && i < kCustomColors; i++)
        colors[i] = ValueOf(QColorDialog::customColor(i));
}

QColorDialog* MakeChooser(const CHOOSECOLORW& request) {
    auto* chooser = new QColorDialog;
    chooser->setWindowFlags(Qt::Widget);
    chooser->setOptions(QColorDialog::DontUseNativeDialog);
    chooser->setCurrentColor(request.Flags & CC_RGBINIT ? ColorOf(request.rgbResult) : Qt::black);
    return chooser;
}

void PutInWindow(QColorDialog* chooser, QDialog* window) {
    auto* layout = new QVBoxLayout(window);
    auto* area = new QScrollArea(window);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(area);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    area->setWidget(chooser);
    chooser->adjustSize();
    window->setWindowTitle(chooser->windowTitle());
    window->setMaximumSize(chooser->size().boundedTo(DeviceScreen()->size()));
    window->resize(window->maximumSize());
    chooser->show();
}

}  // namespace

BOOL ShowColorDialog(CHOOSECOLORW* request) {
    if (!request || request->lStructSize != sizeof(CHOOSECOLORW)) return FALSE;
    if (request->hwndOwner && !IsWindow(request->hwndOwner)) return FALSE;
    if (!TemplateIsThere(*request)) return FALSE;
    PutCustomColors(request->lpCustColors);
    QDialog window(TopMostWidget());
    const QPointer<QWidget> below = window.parentWidget();
    QColorDialog* chooser = MakeChooser(*request);
    PutInWindow(chooser, &window);
    bool chosen = false, done = false;
    QObject::connect(chooser, &QDialog::finished, &window, [&](int result) {
        chosen = result == QDialog::Accepted;
        done = true;
    });
    QObject::connect(&window, &QDialog::finished, &window, [&] { done = true; });
    g_shown = chooser;
    window.setWindowModality(Qt::ApplicationModal);
    window.show();
    chooser->setFocus();
    AnnounceDialog();
    RunModalLoop([&] { return done; });
    if (chosen) request->rgbResult = ValueOf(chooser->selectedColor());
    TakeCustomColors(request->lpCustColors);
    window.hide();
    if (below && below->isVisible()) below->activateWindow();
    return chosen;
}

QColorDialog* ShownColorDialog() { return g_shown; }
