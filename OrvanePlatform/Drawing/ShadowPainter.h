#pragma once

#include "GlyphPainter.h"
#include "PixelRect.h"
#include "TextBlock.h"

#include <vector>

namespace orvane {

/// A shadow's strength over a rectangle of the picture (y downwards). Held at 1/step of the
/// picture's size, on a grid that starts at the picture's corner, so neighbouring rectangles agree.
class ShadowPainter {
public:
    /// placement: where the ink, not its shadow, lies on the picture.
    ShadowPainter(GlyphPainter& ink, const Placement& placement, const TextShadow& shadow,
                  const PixelRect& rect);

    /// Pixels that the shadow reaches beyond the moved ink.
    static int reach(const TextShadow& shadow);

    /// The strength, 0..1 times the shadow's alpha, of row y of the rectangle, from its left edge.
    void row(int y, std::vector<float>& to) const;

private:
    /// The first grid position that linear enlarging reads for a pixel, and how far beyond it.
    struct Between {
        int first;
        float beyond;
    };
    static Between gridPosition(int pixel, int step);

    PixelRect m_rect;
    int m_step;
    float m_alpha;
    PixelRect m_grid; // in steps
    std::vector<Between> m_columns; // within the grid
    std::vector<float> m_strength;
};

} // namespace orvane
