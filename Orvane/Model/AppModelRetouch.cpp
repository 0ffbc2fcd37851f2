// The retouch brush and the white balance picker.

#include "AppModel.h"

#include "Baker.h"
#include "Finite.h"
#include "WhiteBalance.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvane {

namespace {

/// Within from..from + length - 1, so that a click on the far edge reads the last pixel.
double pixelWithin(double from, double length, double fraction)
{
    return std::max(from, std::min(from + fraction * length, from + length - 1));
}

/// The sRGB bytes of one pixel; y from the top. Absent when nothing can be read.
std::optional<std::array<uint8_t, 4>> pixelAt(const CIImage& image, double nx, double ny)
{
    const CGRect extent = image.extent();
    if (extent.isInfinite() || extent.isEmpty())
        return std::nullopt;
    const CGRect pixel(pixelWithin(extent.minX(), extent.width(), nx),
                       pixelWithin(extent.minY(), extent.height(), 1 - ny), 1, 1);
    std::array<uint8_t, 4> bytes{};
    const bool drawn = Baker::context().render(image, bytes.data(), bytes.size(), pixel,
                                               PixelFormat::RGBA8Premultiplied);
    return drawn ? std::optional(bytes) : std::nullopt;
}

} // namespace

// ---- Retouch ----

void AppModel::toggleHeal()
{
    healing = !healing;
    if (healing)
        pickingWhite = false;
}

void AppModel::healStrokeNative(const std::vector<CGPoint>& points)
{
    if (points.empty() || !areFinite(points))
        return;
    std::vector<HealSpot> spots = ciHealSpots.value();
    for (const CGPoint& point : points)
        spots.push_back({point.x, point.y, healSize / 100});
    ciHealSpots = std::move(spots);
    commitHistory();
}

void AppModel::undoLastHeal()
{
    std::vector<HealSpot> spots = ciHealSpots.value();
    if (spots.empty())
        return;
    spots.pop_back();
    ciHealSpots = std::move(spots);
    commitHistory();
}

void AppModel::clearHealSpots()
{
    if (ciHealSpots.value().empty())
        return;
    ciHealSpots = std::vector<HealSpot>();
    commitHistory();
}

// ---- White balance ----

void AppModel::pickWhiteBalance()
{
    pickingWhite = !pickingWhite;
    if (pickingWhite)
        healing = false;
}

void AppModel::pickWhiteNative(double nx, double ny)
{
    // Before the grade: clicks on one pixel give the same values however often they come.
    const auto image = geometrySource();
    const auto bytes = image ? pixelAt(*image, nx, ny) : std::nullopt;
    if (!bytes)
        return;
    const auto sliders = WhiteBalance::neutralise((*bytes)[0], (*bytes)[1], (*bytes)[2]);
    setAdjust("temperature", sliders.temperature);
    setAdjust("tint", sliders.tint);
    if (pickingWhite)
        pickWhiteBalance();
}

} // namespace orvane
