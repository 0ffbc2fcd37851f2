#include "FieldWatch.h"

#include <utility>

namespace orvane {

FieldWatch::FieldWatch(std::function<void()> refresh)
    : m_refresh(std::move(refresh))
{
}

void FieldWatch::refresh()
{
    m_isDue = false;
    m_refresh();
}

void FieldWatch::schedule()
{
    if (std::exchange(m_isDue, true))
        return;
    QMetaObject::invokeMethod(
        &m_receiver,
        [this] {
            if (m_isDue)
                refresh();
        },
        Qt::QueuedConnection);
}

} // namespace orvane
