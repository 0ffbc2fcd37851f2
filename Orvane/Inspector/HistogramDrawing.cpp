#include "HistogramDrawing.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

constexpr int bins = 256;

/// By the root of the count: one spike, say of a clipped sky, must not flatten all the rest.
QPainterPath area(const std::vector<double>& channel, const QRectF& frame)
{
    QPainterPath path(frame.bottomLeft());
    for (int i = 0; i < bins; ++i) {
        const double height = std::sqrt(std::clamp(channel[size_t(i)], 0.0, 1.0));
        path.lineTo(frame.left() + frame.width() * i / (bins - 1),
                    frame.bottom() - frame.height() * height);
    }
    path.lineTo(frame.bottomRight());
    path.closeSubpath();
    return path;
}

} // namespace

void drawHistogram(QPainter& painter, const QRectF& frame, const Histogram& histogram,
                   double opacity)
{
    // The three add up to white.
    const std::pair<const std::vector<double>&, QColor> channels[] = {
        {histogram.r, {0xe8, 0x30, 0x30}},
        {histogram.g, {0x17, 0xb8, 0x2a}},
        {histogram.b, {0x20, 0x37, 0xc5}}};
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    painter.setOpacity(opacity);
    painter.setPen(Qt::NoPen);
    for (const auto& [channel, color] : channels) {
        if (channel.size() != size_t(bins))
            continue;
        painter.setBrush(color);
        painter.drawPath(area(channel, frame));
    }
    painter.restore();
}

} // namespace orvane
