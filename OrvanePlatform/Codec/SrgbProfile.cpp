#include "SrgbProfile.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <lcms2.h>

namespace orvane {

// IEC 61966-2-1, sampled. Between 1024 points the straight line is off by at most 1.5 of 65535,
// a two-hundredth of an 8-bit level; the parametric form would need a version 4 profile.
static cmsToneCurve* srgbCurve()
{
    std::array<cmsUInt16Number, 1024> table;
    for (size_t i = 0; i < table.size(); ++i) {
        const double encoded = double(i) / double(table.size() - 1);
        const double linear =
            encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
        table[i] = cmsUInt16Number(std::floor(linear * 65535 + 0.5));
    }
    return cmsBuildTabulatedToneCurve16(nullptr, table.size(), table.data());
}

static void setText(cmsHPROFILE profile, cmsTagSignature tag, const char* text)
{
    cmsMLU* words = cmsMLUalloc(nullptr, 1);
    cmsMLUsetASCII(words, "en", "US", text);
    cmsWriteTag(profile, tag, words);
    cmsMLUfree(words);
}

static std::vector<uint8_t> madeProfile()
{
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE primaries = {{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}};
    cmsToneCurve* curve = srgbCurve();
    cmsToneCurve* curves[3] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsFreeToneCurve(curve);
    cmsSetProfileVersion(profile, 2.1);
    setText(profile, cmsSigProfileDescriptionTag, "sRGB IEC61966-2.1");
    setText(profile, cmsSigCopyrightTag, "No copyright, use freely");

    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    std::vector<uint8_t> bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);

    // The library stamps the header (bytes 24 to 35) with the present time; a fixed one, the
    // standard's year, makes equal pictures equal files.
    const std::array<uint8_t, 12> date = {0x07, 0xCF, 0, 1, 0, 1, 0, 0, 0, 0, 0, 0};
    std::copy(date.begin(), date.end(), bytes.begin() + 24);
    return bytes;
}

const std::vector<uint8_t>& srgbProfile()
{
    static const std::vector<uint8_t> profile = madeProfile();
    return profile;
}

} // namespace orvane
