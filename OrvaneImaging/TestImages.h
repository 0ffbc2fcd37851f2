#pragma once

#include "Bitmap.h"
#include "CIContext.h"
#include "CIImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

/// Small pictures for tests, and single pixels of what is drawn. y points up throughout.
namespace orvane::test {

using Color = std::array<float, 4>; ///< linear, premultiplied

/// A picture whose linear values are exactly those of the function. Opaque pictures carry no alpha.
inline CIImage picture(int width, int height, const std::function<Color(int x, int y)>& color,
                       bool opaque = true)
{
    const int channels = opaque ? 3 : 4;
    auto bitmap = std::make_shared<Bitmap>(width, height, channels, SampleType::F32,
                                           opaque ? AlphaKind::None : AlphaKind::Premultiplied);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<float*>(static_cast<void*>(bitmap->row(height - 1 - y)));
        for (int x = 0; x < width; ++x) {
            const Color c = color(x, y);
            for (int i = 0; i < channels; ++i)
                row[x * channels + i] = c[size_t(i)];
        }
    }
    return CIImage::withBitmap(std::move(bitmap));
}

inline CIImage constant(int width, int height, Color color, bool opaque = true)
{
    return picture(
        width, height, [=](int, int) { return color; }, opaque);
}

inline CIImage grey(int width, int height, float value)
{
    return constant(width, height, {value, value, value, 1});
}

/// Every pixel its own colour: red tells x, green tells y.
inline CIImage coordinates(int width, int height)
{
    return picture(width, height, [](int x, int y) {
        return Color{float(x) / 64, float(y) / 64, 0.25f, 1};
    });
}

inline Color pixel(const CIImage& image, int x, int y)
{
    static const CIContext context;
    Color color{};
    context.render(image, color.data(), sizeof color, {double(x), double(y), 1, 1},
                   PixelFormat::RGBAFloat);
    return color;
}

/// All pixels of (0, 0, width, height), rows from the top.
inline std::vector<Color> pixels(const CIImage& image, int width, int height,
                                 const CIContext& context = CIContext())
{
    std::vector<Color> colors(size_t(width) * size_t(height));
    context.render(image, colors.data(), size_t(width) * sizeof(Color),
                   {0, 0, double(width), double(height)}, PixelFormat::RGBAFloat);
    return colors;
}

/// The colour of any pixel of a picture that is the same everywhere.
inline Color through(const std::function<CIImage(const CIImage&)>& operation, Color color)
{
    return pixel(operation(constant(3, 3, color)), 1, 1);
}

inline void expectNear(const Color& actual, const Color& expected, float tolerance = 2e-5f)
{
    EXPECT_THAT(actual, testing::Pointwise(testing::FloatNear(tolerance), expected));
}

inline void expectExtent(const CIImage& image, const CGRect& expected)
{
    const CGRect e = image.extent();
    EXPECT_TRUE(e == expected) << e.minX() << ", " << e.minY() << ", " << e.width() << " x "
                               << e.height() << (e.isInfinite() ? " infinite" : "");
}

} // namespace orvane::test
