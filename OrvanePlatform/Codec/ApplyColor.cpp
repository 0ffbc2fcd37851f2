#include "ColorProfile.h"
#include "ColorSpaces.h"

#include <cmath>

namespace orvane {

namespace {

/// Without a profile, inks only multiply: red is what cyan and black let through.
template <class Sample> void multiplyInks(const Sample* inks, Sample* rgb, int width)
{
    constexpr uint64_t highest = (uint64_t(1) << (8 * sizeof(Sample))) - 1;
    for (int x = 0; x < width; ++x, inks += 4, rgb += 3)
        for (int c = 0; c < 3; ++c)
            rgb[c] = Sample(((highest - inks[c]) * (highest - inks[3]) + highest / 2) / highest);
}

std::shared_ptr<Bitmap> colorFromInks(const Bitmap& inks)
{
    auto rgb =
        std::make_shared<Bitmap>(inks.width(), inks.height(), 3, inks.type(), AlphaKind::None);
    for (int y = 0; y < inks.height(); ++y) {
        if (inks.type() == SampleType::U8)
            multiplyInks(inks.row(y), rgb->row(y), inks.width());
        else
            multiplyInks(reinterpret_cast<const uint16_t*>(inks.row(y)),
                         reinterpret_cast<uint16_t*>(rgb->row(y)), inks.width());
    }
    return rgb;
}

/// CIE 15: Lab of D50 to linear sRGB, one pixel of F32 in place.
void colorFromLab(float* pixel)
{
    const double fy = (double(pixel[0]) + 16) / 116;
    const double f[3] = {fy + double(pixel[1]) / 500, fy, fy - double(pixel[2]) / 200};
    constexpr double white[3] = {0.9642, 1.0, 0.8249};
    double xyz[3];
    for (int i = 0; i < 3; ++i)
        xyz[i] = white[i] * (f[i] > 6.0 / 29 ? f[i] * f[i] * f[i] : (f[i] - 4.0 / 29) * 108 / 841);
    const Matrix3& m = srgbFromXyzD50();
    for (size_t c = 0; c < 3; ++c)
        pixel[c] = float(m[c * 3] * xyz[0] + m[c * 3 + 1] * xyz[1] + m[c * 3 + 2] * xyz[2]);
}

enum class FloatCoding { Encoded, Linear };

/// Float samples to linear sRGB in place; encoded ones may lie beyond 0..1, as in an untagged file.
/// What is not finite becomes 0.
void decodeFloats(Bitmap& bitmap, FloatCoding coding, bool adobeRgb)
{
    const std::optional<std::array<float, 9>> matrix = adobeRgb && bitmap.channels() >= 3
        ? adobeRgbConversion(SampleType::U8).matrix
        : std::nullopt;
    const auto decoded = [&](float v) {
        if (!std::isfinite(v))
            return 0.0f;
        if (coding == FloatCoding::Linear)
            return v;
        const double linear = adobeRgb ? std::copysign(std::pow(std::abs(double(v)), 2.19921875), v)
                                       : srgbToLinear(double(v));
        return std::isfinite(float(linear)) ? float(linear) : 0.0f;
    };
    const int channels = bitmap.channels();
    const int colors = channels >= 3 ? 3 : 1;
    forEachBand(bitmap.height(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            auto* pixel = reinterpret_cast<float*>(bitmap.row(y));
            for (int x = 0; x < bitmap.width(); ++x, pixel += channels) {
                for (int c = 0; c < colors; ++c)
                    pixel[c] = decoded(pixel[c]);
                if (channels > colors && !std::isfinite(pixel[colors]))
                    pixel[colors] = 0;
                if (matrix) {
                    const float in[3] = {pixel[0], pixel[1], pixel[2]};
                    for (size_t c = 0; c < 3; ++c)
                        pixel[c] = (*matrix)[c * 3] * in[0] + (*matrix)[c * 3 + 1] * in[1]
                            + (*matrix)[c * 3 + 2] * in[2];
                }
            }
        }
    });
}

void labToColor(Bitmap& bitmap)
{
    forEachBand(bitmap.height(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            auto* pixel = reinterpret_cast<float*>(bitmap.row(y));
            for (int x = 0; x < bitmap.width(); ++x, pixel += bitmap.channels())
                colorFromLab(pixel);
        }
    });
}

/// Whether the bitmap and what it is converted to fit the budget together.
/// colorFromInks() makes a smaller one than is counted here.
Result<void> checkConversion(const Bitmap& bitmap, int colors, uint64_t budget)
{
    const int converted = 3 + bitmap.channels() - colors;
    const size_t both = size_t(bitmap.channels()) * sampleSize(bitmap.type())
        + size_t(converted) * (bitmap.type() == SampleType::U8 ? 2 : 4);
    return checkMemory(uint64_t(bitmap.width()), uint64_t(bitmap.height()), both, budget);
}

/// CMYK and floats, which never stay as they are stored.
Result<std::shared_ptr<const Bitmap>> colorFromRare(std::shared_ptr<Bitmap> bitmap,
                                                    const ColorProfile* profile, bool adobeRgb,
                                                    uint64_t budget)
{
    const bool inks = bitmap->type() != SampleType::F32;
    if (inks || profile)
        if (auto fits = checkConversion(*bitmap,
                                        inks                          ? 4
                                            : bitmap->channels() >= 3 ? 3
                                                                      : 1,
                                        budget);
            !fits)
            return fits.error();
    if (auto converted = profile ? profile->converted(*bitmap) : nullptr)
        return std::shared_ptr<const Bitmap>(std::move(converted));
    if (inks)
        return std::shared_ptr<const Bitmap>(colorFromInks(*bitmap));
    decodeFloats(*bitmap, FloatCoding::Encoded, adobeRgb);
    return std::shared_ptr<const Bitmap>(std::move(bitmap));
}

} // namespace

Result<std::shared_ptr<const Bitmap>> applyColor(DecoderOutput& output, bool exifSaysAdobeRgb,
                                                 uint64_t budget)
{
    std::shared_ptr<Bitmap> bitmap = std::move(output.bitmap);
    if (output.model == SampleModel::Lab) {
        labToColor(*bitmap);
        decodeFloats(*bitmap, FloatCoding::Linear, false);
        return std::shared_ptr<const Bitmap>(std::move(bitmap));
    }
    const bool inks = output.model == SampleModel::Cmyk;
    const int colors = inks ? 4 : bitmap->channels() >= 3 ? 3 : 1;
    const auto profile = ColorProfile::parsed(output.icc);
    const bool matches = profile && profile->channels() == colors;
    if (inks || bitmap->type() == SampleType::F32)
        return colorFromRare(std::move(bitmap), matches ? &*profile : nullptr, exifSaysAdobeRgb,
                             budget);
    // Grey samples with an RGB profile, and the reverse, take its curves.
    if (profile && profile->channels() != 4) {
        if (auto conversion = profile->conversion(bitmap->type())) {
            bitmap->conversion = std::move(*conversion);
            if (!matches)
                bitmap->conversion.matrix.reset();
            return std::shared_ptr<const Bitmap>(std::move(bitmap));
        }
        if (matches) {
            if (auto fits = checkConversion(*bitmap, colors, budget); !fits)
                return fits.error();
            if (auto converted = profile->converted(*bitmap))
                return std::shared_ptr<const Bitmap>(std::move(converted));
        }
    }
    if (output.described)
        bitmap->conversion = std::move(*output.described);
    else if (exifSaysAdobeRgb)
        bitmap->conversion = adobeRgbConversion(bitmap->type());
    return std::shared_ptr<const Bitmap>(std::move(bitmap));
}

} // namespace orvane
