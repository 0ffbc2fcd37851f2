#pragma once

#include <QColor>
#include <QWidget>

#include <string_view>

namespace orvane {

/// An icon that is looked at and not pressed, drawn for the scale of the screen that it is on.
class IconView final : public QWidget {
    Q_OBJECT

public:
    /// By its name in the table of icons, `side` view points wide and high.
    IconView(std::string_view name, int side, const QColor& color, QWidget* parent = nullptr);

    void setColor(const QColor& color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::string_view m_name;
    QColor m_color;
};

} // namespace orvane
