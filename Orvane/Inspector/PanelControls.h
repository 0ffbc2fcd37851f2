#pragma once

#include <QCheckBox>
#include <QIcon>
#include <QPushButton>

#include <initializer_list>
#include <string_view>

class QHBoxLayout;
class QLabel;
class QPainter;

namespace orvane {

/// Sharp at every scale of the screen: on whole device pixels, `size` view points wide.
void drawIcon(QPainter& painter, const QIcon& icon, const QPointF& centre, int size,
              QIcon::Mode mode = QIcon::Normal);

/// A button of the panel with a picture and a word. A checkable one shows a tool that is armed.
class PanelButton final : public QPushButton {
    Q_OBJECT

public:
    /// `help` is the tooltip; empty means none.
    PanelButton(std::string_view icon, const QString& text, const QString& help = {},
                QWidget* parent = nullptr);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A small bare button with nothing but a picture. `help` is also its name for screen readers.
class GlyphButton final : public QAbstractButton {
    Q_OBJECT

public:
    GlyphButton(const QIcon& icon, const QString& help, QWidget* parent = nullptr);

    void setHelp(const QString& help);
    QSize sizeHint() const override { return {24, 24}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// A switch at the right end of its row, the word at the left.
///
///   Shadow                 (  o)
class Toggle final : public QCheckBox {
    Q_OBJECT

public:
    explicit Toggle(const QString& text, const QString& help = {}, QWidget* parent = nullptr);
    QSize sizeHint() const override { return {120, 26}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool hitButton(const QPoint& point) const override;
};

/// At the left of a row, as wide in all of them.
QLabel* rowLabel(const QString& text);
/// A row of controls after such a label.
QHBoxLayout* labelledRow(const QString& label);
/// Buttons that share a row evenly.
QHBoxLayout* buttonRow(std::initializer_list<QWidget*> buttons);
/// Over a control that has no room beside it.
QLabel* captionLabel(const QString& text);

} // namespace orvane
