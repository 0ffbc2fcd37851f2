#include "FoldClip.h"

#include <QEvent>

#include <cmath>

namespace orvane {

FoldClip::FoldClip(QWidget* content)
    : m_content(content)
{
    content->setParent(this);
    content->show();
}

void FoldClip::setShare(double share)
{
    if (share == m_share)
        return;
    m_share = share;
    updateGeometry();
}

int FoldClip::fullHeight(int width) const
{
    return m_content->hasHeightForWidth() ? m_content->heightForWidth(width)
                                          : m_content->sizeHint().height();
}

int FoldClip::heightForWidth(int width) const
{
    return int(std::lround(fullHeight(width) * m_share));
}

QSize FoldClip::sizeHint() const
{
    const QSize full = m_content->sizeHint();
    return {full.width(), int(std::lround(full.height() * m_share))};
}

QSize FoldClip::minimumSizeHint() const
{
    return {m_content->minimumSizeHint().width(), 0};
}

bool FoldClip::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest) {
        place();
        updateGeometry();
    }
    return QWidget::event(event);
}

void FoldClip::resizeEvent(QResizeEvent*)
{
    place();
}

void FoldClip::place()
{
    m_content->setGeometry(0, 0, width(), fullHeight(width()));
}

} // namespace orvane
