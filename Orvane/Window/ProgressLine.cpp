#include "ProgressLine.h"

#include "DevicePixels.h"
#include "Theme.h"

#include <QPainter>

namespace orvane {

namespace {

constexpr int fullRange = 1000; ///< finer than the pixels of any line

} // namespace

ProgressLine::ProgressLine(const QString& name, QWidget* parent)
    : QProgressBar(parent)
{
    setAccessibleName(name);
    setRange(0, fullRange);
    setTextVisible(false);
}

void ProgressLine::setFraction(double fraction)
{
    setValue(int(std::lround(std::clamp(fraction, 0.0, 1.0) * fullRange)));
}

void ProgressLine::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QRectF line = DevicePixels::aligned(painter, rect());
    const double radius = line.height() / 2;
    painter.setBrush(Theme::hover);
    painter.drawRoundedRect(line, radius, radius);
    // From the first pixel on it is as long as it is high: a shorter one would lose its ends.
    const double share = double(value()) / fullRange;
    if (share <= 0)
        return;
    line.setWidth(std::max(line.height(), line.width() * share));
    painter.setBrush(Theme::text);
    painter.drawRoundedRect(line, radius, radius);
}

} // namespace orvane
