#pragma once

namespace orvane {

/// A blemish to cover.
struct HealSpot {
    double x = 0; ///< centre, fraction of the image's width from the left edge
    double y = 0; ///< centre, fraction of the image's height from the top edge
    double r = 0; ///< radius, fraction of the image's long edge

    bool operator==(const HealSpot&) const = default;
};

} // namespace orvane
