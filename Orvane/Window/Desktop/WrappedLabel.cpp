#include "WrappedLabel.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

/// What is comfortable to read: some sixty letters.
constexpr int preferredWidth = 380;

} // namespace

WrappedLabel::WrappedLabel(const QString& text, QWidget* parent)
    : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setText(text);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Minimum);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

QSizeF WrappedLabel::lay(double width, QPainter* painter) const
{
    QTextLayout layout(QString(text()).replace('\n', QChar(QChar::LineSeparator)), font());
    QTextOption option(Qt::Alignment(alignment() & Qt::AlignHorizontal_Mask));
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    double height = 0;
    double widest = 0;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        line.setPosition({0, height});
        // Whole units, so that each base line falls on the same part of a pixel.
        height += std::ceil(line.height());
        widest = std::max(widest, line.naturalTextWidth());
    }
    layout.endLayout();
    if (painter)
        layout.draw(painter, {0, 0});
    return {widest, height};
}

int WrappedLabel::heightForWidth(int width) const
{
    return int(lay(std::max(1, width), nullptr).height());
}

QSize WrappedLabel::sizeHint() const
{
    const QSizeF used = lay(preferredWidth, nullptr);
    return {int(std::ceil(used.width())), int(used.height())};
}

QSize WrappedLabel::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 12, fontMetrics().height()};
}

void WrappedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    lay(width(), &painter);
}

} // namespace orvane
