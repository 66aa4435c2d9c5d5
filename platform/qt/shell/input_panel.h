// SPDX-License-Identifier: MIT
// The input panel: a soft keyboard above the menu bar, for a device without keys. Its keys send key
// events, like those of a real keyboard, to the widget that has the focus.
#ifndef QUILL_PLATFORM_QT_SHELL_INPUT_PANEL_H
#define QUILL_PLATFORM_QT_SHELL_INPUT_PANEL_H

#include <QAbstractButton>
#include <QWidget>
#include <vector>

struct PanelKeyRow;

class PanelKey : public QAbstractButton {
    Q_OBJECT
  public:
    PanelKey(QWidget* panel, const PanelKeyRow& key);
    const PanelKeyRow& key() const { return key_; }
    void Show(const QString& label, bool lit);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QFont LabelFont() const;

    const PanelKeyRow& key_;
    bool lit_ = false;  // true for a latch that is on
};

class InputPanel : public QWidget {
    Q_OBJECT
  public:
    explicit InputPanel(QWidget* screen);

    void LetGo();  // releases a key that is held down
    void setVisible(bool visible) override;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void MakeKeys();  // when it is first shown
    void PlaceKeys();
    void Press(PanelKey* key);
    void Label();  // labels every key for the latches that are on
    bool Latched(int key) const;
    bool Shifted() const;

    std::vector<PanelKey*> keys_;
    std::vector<int> latches_;  // latch keys that are on, until the next key
    bool capitals_ = false;
};

InputPanel* ShellInputPanel();  // null while the device's screen is not open

#endif
