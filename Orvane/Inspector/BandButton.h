#pragma once

#include <QAbstractButton>
#include <QColor>

namespace orvane {

/// A circle in the colour of a band of hues: with a ring while it is chosen, and with a dot under
/// it while something in it was changed.
class BandButton final : public QAbstractButton {
    Q_OBJECT

public:
    BandButton(const QString& name, const QColor& color, QWidget* parent = nullptr);

    void setEdited(bool edited);
    QSize sizeHint() const override { return {28, 34}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor m_color;
    bool m_isEdited = false;
};

} // namespace orvane
