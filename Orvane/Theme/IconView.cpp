#include "IconView.h"

#include "Icon.h"

#include <QPainter>

namespace orvane {

IconView::IconView(std::string_view name, int side, const QColor& color, QWidget* parent)
    : QWidget(parent)
    , m_name(name)
    , m_color(color)
{
    setFixedSize(side, side);
}

void IconView::setColor(const QColor& color)
{
    m_color = color;
    update();
}

void IconView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    icon(m_name, m_color).paint(&painter, rect());
}

} // namespace orvane
