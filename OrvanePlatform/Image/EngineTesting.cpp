#include "EngineTesting.h"

#include "Bitmap.h"
#include "Filters/CIFilter.h"
#include "Node.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

namespace orvane {

CIImage EngineTesting::photograph(int width, int height, int channels)
{
    const AlphaKind alpha = channels == 4 ? AlphaKind::Straight : AlphaKind::None;
    auto bitmap = std::make_shared<Bitmap>(width, height, channels, SampleType::U8, alpha);
    std::mt19937 random(7);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < channels; ++c) {
                const double wave =
                    128 + 60 * std::sin(x * 0.05 * (c + 1)) + 40 * std::cos(y * 0.09);
                const int edge = (x / 37 + y / 29) % 2 * 25;
                bitmap->row(y)[x * channels + c] =
                    uint8_t(std::clamp(wave + edge + double(random() % 9), 0.0, 255.0));
            }
        }
    }
    return CIImage::withBitmap(bitmap);
}

CIImage EngineTesting::everything(const CIImage& source)
{
    CIImage image = source.oriented(6).transformed(CGAffineTransform::rotation(-0.05));
    image = image.compositedOver(CIFilter::gaussianBlur(source.clampedToExtent(), 21))
                .cropped(image.extent());
    image = CIFilter::exposureAdjust(image, 0.4);
    image = CIFilter::unsharpMask(image, 23, 0.5);
    image = CIFilter::noiseReduction(image, 0.04);
    image = CIFilter::unsharpMask(image, 1.3, 0.8);
    image = CIFilter::bloom(image, 17, 0.3);
    image = CIFilter::lanczosScaleTransform(image, 0.73);
    return CIFilter::vignetteEffect(image, {60, 40}, 90, 0.4, 0.5);
}

PixelRect EngineTesting::pixels(const CIImage& image)
{
    return image.node()->extent.rect;
}

std::vector<uint8_t> EngineTesting::drawn(const CIImage& image, const CIContext& context,
                                          PixelFormat format, const DrawOptions& options)
{
    const PixelRect rect = pixels(image);
    const size_t rowBytes = size_t(rect.width()) * size_t(bytesPerPixel(format));
    std::vector<uint8_t> bytes(rowBytes * size_t(rect.height()));
    EXPECT_TRUE(context.render(image, bytes.data(), rowBytes, rect.cgRect(), format, options));
    return bytes;
}

} // namespace orvane
