#pragma once

#include "EditState.h"

#include <QImage>
#include <QPointF>

#include <vector>

namespace orvane {

/// A caption's words, in pixels of a picture.
struct CaptionWords {
    QImage image; ///< null for a caption without text
    QPointF toCentre; ///< from the image's centre to the caption's
};

/// Where captions lie, as the render sets them. Keeps what it has measured last: text takes some
/// milliseconds to set. Main thread only.
class CaptionFrame {
public:
    /// In fractions of a picture of that size, in pixels; empty for a caption without text.
    CGRect rect(const EditState::TextLayer& layer, const CGSize& frame);
    /// The words alone as they are drawn on a picture of that size.
    static CaptionWords words(const EditState::TextLayer& layer, const CGSize& frame);

private:
    struct Measured {
        std::string text;
        std::string font;
        double size;
        CGSize frame;

        bool operator==(const Measured&) const = default;
    };

    std::vector<std::pair<Measured, CGSize>> m_measured; ///< newest last
};

} // namespace orvane
