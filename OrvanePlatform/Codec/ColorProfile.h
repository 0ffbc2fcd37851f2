#pragma once

#include "Bitmap.h"
#include "DecoderSupport.h"

#include <memory>
#include <optional>
#include <span>

namespace orvane {

/// An embedded ICC profile, seen as the way from stored samples to linear sRGB: relative
/// colorimetric, unclipped. Source: ICC.1:2010.
class ColorProfile {
public:
    /// Absent when the profile is broken or describes no grey, RGB or CMYK samples.
    static std::optional<ColorProfile> parsed(std::span<const uint8_t> icc);

    /// How many colour samples a pixel of the profile has: 1, 3 or 4.
    int channels() const;
    /// Curves and a matrix, for integer samples. Absent for table profiles, which need converted().
    std::optional<SampleConversion> conversion(SampleType type) const;
    /// The bitmap converted to linear sRGB: half floats for U8, floats for the rest, alpha kept.
    /// The bitmap has this profile's channels (CMYK: 4, with 0 for no ink). Null when it cannot be.
    std::shared_ptr<Bitmap> converted(const Bitmap& bitmap) const;

private:
    struct Handle;
    std::shared_ptr<Bitmap> convertedByLab(const Bitmap& bitmap, int extra) const;
    std::shared_ptr<Bitmap> convertedInFloat(const Bitmap& bitmap, int extra) const;
    explicit ColorProfile(std::shared_ptr<const Handle> handle);
    std::shared_ptr<const Handle> m_handle;
};

/// Gives the decoder's bitmap its colours, by the first that is usable: the embedded profile, what
/// the file says itself, Adobe RGB when the Exif block asks for it, sRGB. Float samples, CMYK and
/// Lab become linear sRGB here. Fails when a second bitmap is needed for that and the two together
/// are more bytes than the budget.
Result<std::shared_ptr<const Bitmap>> applyColor(DecoderOutput& output, bool exifSaysAdobeRgb,
                                                 uint64_t budget = memoryBudget());

} // namespace orvane
