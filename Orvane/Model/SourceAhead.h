#pragma once

#include "SourcePixels.h"

#include <QThreadPool>

#include <memory>
#include <mutex>

namespace orvane {

/// Decodes the picture that is needed next while another is worked at. It holds one at most.
class SourceAhead {
public:
    using Pixels = std::shared_ptr<const SourcePixels>;

    SourceAhead();
    /// Waits for a decoding under way.
    ~SourceAhead();
    SourceAhead(const SourceAhead&) = delete;
    SourceAhead& operator=(const SourceAhead&) = delete;

    /// Begins to decode, and holds the picture until it is taken or something else is asked for.
    /// Null: holds nothing.
    void prepare(const Pixels& pixels);
    /// The picture: held already, in the course of being decoded, or decoded here. Empty when
    /// there is not enough memory.
    CIImage take(const Pixels& pixels);

private:
    std::mutex m_mutex; ///< guards the next two
    Pixels m_wanted;
    CIImage m_held;
    QThreadPool m_pool; ///< of one thread; last, so that it is through before the rest goes
};

} // namespace orvane
