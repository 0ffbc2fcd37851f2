#include "SourceAhead.h"

#include <utility>

namespace orvane {

SourceAhead::SourceAhead()
{
    m_pool.setMaxThreadCount(1);
}

SourceAhead::~SourceAhead()
{
    prepare(nullptr);
    m_pool.clear();
    m_pool.waitForDone();
}

void SourceAhead::prepare(const Pixels& pixels)
{
    {
        const std::lock_guard lock(m_mutex);
        m_wanted = pixels;
        m_held = CIImage();
    }
    if (!pixels)
        return;
    m_pool.start([this, pixels] {
        {
            const std::lock_guard lock(m_mutex);
            if (m_wanted != pixels)
                return;
        }
        CIImage image = pixels->image();
        const std::lock_guard lock(m_mutex);
        if (m_wanted == pixels)
            m_held = std::move(image);
    });
}

CIImage SourceAhead::take(const Pixels& pixels)
{
    // The pixels themselves see to it that two who ask at once share one picture.
    CIImage image = pixels->image();
    const std::lock_guard lock(m_mutex);
    if (m_wanted == pixels) {
        m_wanted.reset();
        m_held = CIImage();
    }
    return image;
}

} // namespace orvane
