#include "CropRatio.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <vector>

namespace orvane::CropRatio {

namespace {

std::optional<double> number(std::string_view text)
{
    double value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && rest == end ? std::optional(value) : std::nullopt;
}

/// The pieces between colons that are numbers.
std::vector<double> numbers(std::string_view id)
{
    std::vector<double> found;
    for (size_t from = 0; from <= id.size();) {
        const size_t to = std::min(id.find(':', from), id.size());
        if (const auto value = number(id.substr(from, to - from)))
            found.push_back(*value);
        from = to + 1;
    }
    return found;
}

bool isDrawn(const CGSize& frame)
{
    return frame.width > 0 && frame.height > 0;
}

/// Within 0..most, where most may fall below 0 by a rounding.
double held(double value, double most)
{
    return std::max(0.0, std::min(value, most));
}

} // namespace

std::optional<double> pixelRatio(std::string_view id, const std::optional<CGSize>& frame)
{
    const std::vector<double> sides = numbers(id);
    if (sides.size() != 2 || !(sides[1] > 0))
        return std::nullopt;
    const double ratio = sides[0] / sides[1];
    if (!(ratio > 0) || !std::isfinite(ratio))
        return std::nullopt;
    if (!frame || !isDrawn(*frame))
        return ratio;
    return frame->height <= frame->width ? std::max(ratio, 1 / ratio) : std::min(ratio, 1 / ratio);
}

CGRect fit(const CGRect& crop, const std::optional<double>& toPixelRatio, const CGSize& frame)
{
    if (!toPixelRatio || !isDrawn(frame))
        return crop;
    double width = crop.width() * frame.width;
    double height = width / *toPixelRatio;
    if (height > frame.height) {
        height = frame.height;
        width = frame.height * *toPixelRatio;
    }
    if (width > frame.width) {
        width = frame.width;
        height = frame.width / *toPixelRatio;
    }
    const double x = held(crop.midX() * frame.width - width / 2, frame.width - width);
    const double y = held(crop.midY() * frame.height - height / 2, frame.height - height);
    return {x / frame.width, y / frame.height, width / frame.width, height / frame.height};
}

} // namespace orvane::CropRatio
