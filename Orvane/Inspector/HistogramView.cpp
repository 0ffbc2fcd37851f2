#include "HistogramView.h"

#include "DevicePixels.h"
#include "HistogramDrawing.h"
#include "Theme.h"

namespace orvane {

namespace {

constexpr int margin = 12;
constexpr int titleHeight = 16;

} // namespace

HistogramView::HistogramView(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFixedSize(sizeHint());
    setAccessibleName(tr("Histogram of the displayed image"));
    Theme::makeSecondary(*this);
}

void HistogramView::setHistogram(const Histogram& histogram)
{
    if (histogram == m_histogram)
        return;
    m_histogram = histogram;
    update();
}

void HistogramView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0, 0, 0, 217)); // 85 %
    painter.drawRoundedRect(rect(), Theme::radius, Theme::radius);

    painter.setPen(Theme::secondaryText);
    const QRect inner = rect().adjusted(margin, margin - 4, -margin, -margin);
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignTop, tr("Histogram"));
    if (m_histogram == Histogram()) {
        painter.drawText(inner, Qt::AlignCenter, tr("Open an image."));
        return;
    }
    const QRectF frame =
        DevicePixels::aligned(painter, QRectF(inner).adjusted(0, titleHeight + 4, 0, 0));
    drawHistogram(painter, frame, m_histogram, 0.8);
    DevicePixels::horizontalLine(painter, frame.bottom(), frame.left(), frame.right(),
                                 Theme::hover);
}

} // namespace orvane
