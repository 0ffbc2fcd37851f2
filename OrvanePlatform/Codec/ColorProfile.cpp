#include "ColorProfile.h"

#include "ColorSpaces.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <lcms2.h>

namespace orvane {

struct ColorProfile::Handle {
    cmsContext context = nullptr; ///< one each: lcms2's default context is shared by all threads
    cmsHPROFILE profile = nullptr;
    int channels = 0;
    bool isTable = false;

    Handle() = default;
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle()
    {
        if (profile)
            cmsCloseProfile(profile);
        if (context)
            cmsDeleteContext(context);
    }
};

namespace {

/// The curve as stored: lcms2 itself would round a table's values to 16 bits on the way, which is
/// a twentieth of an 8-bit level in the shadows.
TransferFunction curveFunction(const cmsToneCurve* curve)
{
    if (cmsGetToneCurveParametricType(curve) != 0)
        return [curve](double v) { return double(cmsEvalToneCurveFloat(curve, float(v))); };
    const cmsUInt16Number* entries = cmsGetToneCurveEstimatedTable(curve);
    const size_t last = cmsGetToneCurveEstimatedTableEntries(curve) - 1;
    return [entries, last](double v) {
        const double position = v * double(last);
        const size_t below = std::min(size_t(std::max(position, 0.0)), last);
        const size_t above = std::min(below + 1, last);
        const double share = position - double(below);
        return (entries[below] + (entries[above] - double(entries[below])) * share) / 65535.0;
    };
}

template <class T> const T* readTag(cmsHPROFILE profile, cmsTagSignature tag)
{
    return static_cast<const T*>(cmsReadTag(profile, tag));
}

bool isUsable(const cmsToneCurve* curve)
{
    if (!curve || cmsGetToneCurveEstimatedTableEntries(curve) < 2)
        return false;
    const TransferFunction function = curveFunction(curve);
    for (int i = 0; i <= 255; ++i) {
        const double value = function(i / 255.0);
        if (!(value >= -0.5 && value <= 16))
            return false;
    }
    return true;
}

std::optional<SampleConversion> greyConversion(cmsHPROFILE profile, SampleType type)
{
    const auto* curve = readTag<cmsToneCurve>(profile, cmsSigGrayTRCTag);
    if (!isUsable(curve))
        return std::nullopt;
    TransferFunction toY = curveFunction(curve);
    if (cmsGetPCS(profile) == cmsSigLabData) {
        // The curve gives L*/100 there.
        toY = [lightness = toY](double v) {
            const double f = (lightness(v) * 100 + 16) / 116;
            return f > 6.0 / 29 ? f * f * f : (f - 4.0 / 29) * 108 / 841;
        };
    }
    return conversionFrom({toY, toY, toY}, {1, 0, 0, 0, 1, 0, 0, 0, 1}, type);
}

std::optional<SampleConversion> matrixConversion(cmsHPROFILE profile, SampleType type)
{
    const auto* red = readTag<cmsCIEXYZ>(profile, cmsSigRedColorantTag);
    const auto* green = readTag<cmsCIEXYZ>(profile, cmsSigGreenColorantTag);
    const auto* blue = readTag<cmsCIEXYZ>(profile, cmsSigBlueColorantTag);
    const std::array<const cmsToneCurve*, 3> curves = {
        readTag<cmsToneCurve>(profile, cmsSigRedTRCTag),
        readTag<cmsToneCurve>(profile, cmsSigGreenTRCTag),
        readTag<cmsToneCurve>(profile, cmsSigBlueTRCTag)};
    if (!red || !green || !blue)
        return std::nullopt;
    for (const cmsToneCurve* curve : curves)
        if (!isUsable(curve))
            return std::nullopt;
    const Matrix3 toXyz = {red->X,  green->X, blue->X,  red->Y, green->Y,
                           blue->Y, red->Z,   green->Z, blue->Z};
    if (!inverse(toXyz))
        return std::nullopt;
    return conversionFrom(
        {curveFunction(curves[0]), curveFunction(curves[1]), curveFunction(curves[2])},
        multiplied(srgbFromXyzD50(), toXyz), type);
}

struct TransformDeleter {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, TransformDeleter>;

cmsUInt32Number inputFormat(const Bitmap& bitmap, int colors)
{
    const int space = colors == 1 ? PT_GRAY : colors == 3 ? PT_RGB : PT_CMYK;
    const bool isFloat = bitmap.type() == SampleType::F32 || bitmap.type() == SampleType::F16;
    return cmsUInt32Number(COLORSPACE_SH(space) | FLOAT_SH(isFloat ? 1 : 0)
                           | EXTRA_SH(bitmap.channels() - colors) | CHANNELS_SH(colors)
                           | BYTES_SH(int(sampleSize(bitmap.type()))));
}

/// What is not finite becomes 0.
void scrub(Bitmap& bitmap, int y)
{
    auto* const values = reinterpret_cast<float*>(bitmap.row(y));
    for (int i = 0; i < bitmap.width() * bitmap.channels(); ++i)
        values[i] = std::isfinite(values[i]) ? values[i] : 0.0f;
}

/// Rounded to nearest; beyond the range of binary16 it is the largest number, below it 0.
uint16_t halfFromFloat(float value)
{
    uint32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    const uint16_t sign = uint16_t(bits >> 16 & 0x8000);
    bits &= 0x7fffffff;
    if (bits >= 0x477ff000)
        return sign | 0x7bff;
    if (bits < 0x38800000) // subnormal there: multiples of 2^-24
        return uint16_t(sign | uint16_t(std::lround(std::abs(value) * 0x1p24f)));
    return uint16_t(sign | uint16_t((bits - 0x38000000 + 0x1000) >> 13));
}

/// A row of Lab in ICC's 16-bit coding to linear sRGB in half floats; alpha goes along.
void halvesFromLab(const uint16_t* lab, uint16_t* target, int width, int channels)
{
    const Matrix3& matrix = srgbFromXyzD50();
    std::array<float, 9> m;
    std::transform(matrix.begin(), matrix.end(), m.begin(), [](double v) { return float(v); });
    const auto cubed = [](float f) {
        return f > 6.0f / 29 ? f * f * f : (f - 4.0f / 29) * (108.0f / 841);
    };
    for (int x = 0; x < width; ++x, lab += channels, target += channels) {
        const float fy = (float(lab[0]) * (100.0f / 65535) + 16) / 116;
        const float xx = 0.9642f * cubed(fy + (float(lab[1]) / 257 - 128) / 500);
        const float yy = cubed(fy);
        const float zz = 0.8249f * cubed(fy - (float(lab[2]) / 257 - 128) / 200);
        for (size_t c = 0; c < 3; ++c)
            target[c] = halfFromFloat(m[c * 3] * xx + m[c * 3 + 1] * yy + m[c * 3 + 2] * zz);
        if (channels == 4)
            target[3] = halfFromFloat(float(lab[3]) / 65535);
    }
}

} // namespace

ColorProfile::ColorProfile(std::shared_ptr<const Handle> handle)
    : m_handle(std::move(handle))
{
}

std::optional<ColorProfile> ColorProfile::parsed(std::span<const uint8_t> icc)
{
    if (icc.size() < 128 || icc.size() > largestProfileBytes)
        return std::nullopt;
    auto handle = std::make_shared<Handle>();
    handle->context = cmsCreateContext(nullptr, nullptr);
    if (!handle->context)
        return std::nullopt;
    cmsSetLogErrorHandlerTHR(handle->context, [](cmsContext, cmsUInt32Number, const char*) {});
    handle->profile =
        cmsOpenProfileFromMemTHR(handle->context, icc.data(), cmsUInt32Number(icc.size()));
    if (!handle->profile)
        return std::nullopt;
    switch (cmsGetColorSpace(handle->profile)) {
    case cmsSigGrayData:
        handle->channels = 1;
        break;
    case cmsSigRgbData:
        handle->channels = 3;
        break;
    case cmsSigCmykData:
        handle->channels = 4;
        break;
    default:
        return std::nullopt;
    }
    handle->isTable = handle->channels == 4;
    for (cmsTagSignature tag : {cmsSigAToB0Tag, cmsSigAToB1Tag, cmsSigDToB0Tag, cmsSigDToB1Tag})
        handle->isTable = handle->isTable || cmsIsTag(handle->profile, tag);
    return ColorProfile(std::move(handle));
}

int ColorProfile::channels() const
{
    return m_handle->channels;
}

std::optional<SampleConversion> ColorProfile::conversion(SampleType type) const
{
    if (m_handle->isTable)
        return std::nullopt;
    return channels() == 1 ? greyConversion(m_handle->profile, type)
                           : matrixConversion(m_handle->profile, type);
}

std::shared_ptr<Bitmap> ColorProfile::converted(const Bitmap& bitmap) const
{
    const int extra = bitmap.channels() - channels();
    if (extra < 0 || extra > 1)
        return nullptr;
    return bitmap.type() == SampleType::U8 ? convertedByLab(bitmap, extra)
                                           : convertedInFloat(bitmap, extra);
}

/// lcms2 is fast in integers only, where it would clip to sRGB's gamut; but Lab holds every colour.
/// 8-bit samples therefore go to 16-bit Lab there and on from it here: seven times
/// as fast (a CMYK picture of 4 megapixels in 0.26 s, two threads).
std::shared_ptr<Bitmap> ColorProfile::convertedByLab(const Bitmap& bitmap, int extra) const
{
    const cmsContext context = m_handle->context;
    const cmsHPROFILE lab = cmsCreateLab4ProfileTHR(context, nullptr);
    if (!lab)
        return nullptr;
    const int outputChannels = 3 + extra;
    const cmsUInt32Number labFormat =
        cmsUInt32Number(COLORSPACE_SH(PT_Lab) | CHANNELS_SH(3) | BYTES_SH(2) | EXTRA_SH(extra));
    // Without its one-pixel cache a transform may run on several threads at once.
    const Transform transform(cmsCreateTransformTHR(
        context, m_handle->profile, inputFormat(bitmap, channels()), lab, labFormat,
        INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOCACHE | (extra ? cmsFLAGS_COPY_ALPHA : 0)));
    cmsCloseProfile(lab);
    if (!transform)
        return nullptr;
    auto result =
        std::make_shared<Bitmap>(bitmap.width(), bitmap.height(), outputChannels, SampleType::F16,
                                 extra ? AlphaKind::Straight : AlphaKind::None);
    // The row of Lab lies where the row of halves is to be: each pixel is read before it is
    // written.
    forEachBand(bitmap.height(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            auto* const row = reinterpret_cast<uint16_t*>(result->row(y));
            cmsDoTransform(transform.get(), bitmap.row(y), row, cmsUInt32Number(bitmap.width()));
            halvesFromLab(row, row, bitmap.width(), outputChannels);
        }
    });
    return result;
}

std::shared_ptr<Bitmap> ColorProfile::convertedInFloat(const Bitmap& bitmap, int extra) const
{
    auto result =
        std::make_shared<Bitmap>(bitmap.width(), bitmap.height(), 3 + extra, SampleType::F32,
                                 extra ? AlphaKind::Straight : AlphaKind::None);
    const cmsContext context = m_handle->context;
    const cmsCIExyY white = {whiteD65.x, whiteD65.y, 1};
    const cmsCIExyYTRIPLE primaries = {{srgbPrimaries.red.x, srgbPrimaries.red.y, 1},
                                       {srgbPrimaries.green.x, srgbPrimaries.green.y, 1},
                                       {srgbPrimaries.blue.x, srgbPrimaries.blue.y, 1}};
    const std::unique_ptr<cmsToneCurve, void (*)(cmsToneCurve*)> linear(cmsBuildGamma(context, 1.0),
                                                                        cmsFreeToneCurve);
    cmsToneCurve* const curves[] = {linear.get(), linear.get(), linear.get()};
    const cmsHPROFILE target = cmsCreateRGBProfileTHR(context, &white, &primaries, curves);
    if (!target)
        return nullptr;

    const Transform transform(
        cmsCreateTransformTHR(context, m_handle->profile, inputFormat(bitmap, channels()), target,
                              inputFormat(*result, 3), INTENT_RELATIVE_COLORIMETRIC,
                              cmsFLAGS_NOCACHE | (extra ? cmsFLAGS_COPY_ALPHA : 0)));
    cmsCloseProfile(target);
    if (!transform)
        return nullptr;
    forEachBand(bitmap.height(), [&](int first, int end) {
        for (int y = first; y < end; ++y) {
            cmsDoTransform(transform.get(), bitmap.row(y), result->row(y),
                           cmsUInt32Number(bitmap.width()));
            scrub(*result, y);
        }
    });
    return result;
}

} // namespace orvane
