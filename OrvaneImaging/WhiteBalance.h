#pragma once

namespace orvane::WhiteBalance {

/// The values of the two sliders, whole numbers of -100..100; a positive tint is greener.
struct Neutralising {
    double temperature = 0;
    double tint = 0;

    bool operator==(const Neutralising&) const = default;
};

/// The sliders that turn a colour grey: r, g and b of a pixel that should be neutral, sRGB-encoded
/// on the scale 0..255. A number that is none moves nothing.
Neutralising neutralise(double r, double g, double b);

} // namespace orvane::WhiteBalance
