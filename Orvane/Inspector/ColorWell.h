#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QPointer>

#include <string>

namespace orvane {

class ColorPopover;

/// A button that shows an opaque colour, and opens a picker for it.
class ColorWell final : public QAbstractButton {
    Q_OBJECT

public:
    /// `name` is for screen readers and the picker.
    explicit ColorWell(const QString& name, QWidget* parent = nullptr);
    ~ColorWell() override;

    QColor color() const { return m_color; }
    /// Without a signal; also while the picker is open.
    void setColor(const QColor& color);
    /// The same, of a colour as the edit stores it.
    void setHex(const std::string& hex);
    QSize sizeHint() const override { return {44, 24}; }

Q_SIGNALS:
    /// By the user, and again and again during a drag.
    void colorPicked(const QColor& color);
    /// A drag is done, a number was typed, or the picker closed.
    void pickEnded();

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void open();

    QColor m_color = Qt::white;
    QPointer<ColorPopover> m_popover;
};

} // namespace orvane
