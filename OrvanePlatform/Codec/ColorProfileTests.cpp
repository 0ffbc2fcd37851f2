#include "ColorProfile.h"

#include "ColorSpaces.h"
#include "PictureDecoder.h"
#include "TestPictures.h"

#include <cmath>

#include <gtest/gtest.h>
#include <lcms2.h>
#include <png.h>
#include <tiffio.h>

namespace orvane {
namespace {

using namespace test;

File saved(cmsHPROFILE profile)
{
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    File bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    return bytes;
}

File rgbProfile(const Primaries& p, double gamma)
{
    const cmsCIExyY white = {p.white.x, p.white.y, 1};
    const cmsCIExyYTRIPLE triple = {
        {p.red.x, p.red.y, 1}, {p.green.x, p.green.y, 1}, {p.blue.x, p.blue.y, 1}};
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    const double srgb[] = {2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
    if (gamma == 0)
        curve = cmsBuildParametricToneCurve(nullptr, 4, srgb);
    cmsToneCurve* curves[] = {curve, curve, curve};
    return saved(cmsCreateRGBProfile(&white, &triple, curves));
}

File greyProfile(double gamma)
{
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    return saved(cmsCreateGrayProfile(cmsD50_xyY(), curve));
}

/// A profile that is nothing but a table: of sRGB, or of inks that multiply.
File tableProfile(bool isInks)
{
    cmsHPROFILE profile = cmsCreateProfilePlaceholder(nullptr);
    cmsSetProfileVersion(profile, 2.1);
    cmsSetDeviceClass(profile, isInks ? cmsSigOutputClass : cmsSigInputClass);
    cmsSetColorSpace(profile, isInks ? cmsSigCmykData : cmsSigRgbData);
    cmsSetPCS(profile, cmsSigLabData);
    struct Context {
        cmsHTRANSFORM toLab;
        bool isInks;
    } context = {nullptr, isInks};
    cmsHPROFILE srgb = cmsCreate_sRGBProfile();
    cmsHPROFILE lab = cmsCreateLab2Profile(nullptr);
    context.toLab =
        cmsCreateTransform(srgb, TYPE_RGB_16, lab, TYPE_LabV2_16, INTENT_RELATIVE_COLORIMETRIC, 0);
    cmsPipeline* pipeline = cmsPipelineAlloc(nullptr, isInks ? 4 : 3, 3);
    cmsStage* table = cmsStageAllocCLut16bit(nullptr, isInks ? 9 : 33, isInks ? 4 : 3, 3, nullptr);
    cmsStageSampleCLut16bit(
        table,
        [](const cmsUInt16Number* in, cmsUInt16Number* out, void* cargo) -> cmsInt32Number {
            const auto& c = *static_cast<Context*>(cargo);
            cmsUInt16Number rgb[3];
            for (int i = 0; i < 3; ++i)
                rgb[i] = c.isInks ? cmsUInt16Number((65535.0 - in[i]) * (65535.0 - in[3]) / 65535.0)
                                  : in[i];
            cmsDoTransform(c.toLab, rgb, out, 1);
            return 1;
        },
        &context, 0);
    cmsPipelineInsertStage(pipeline, cmsAT_END, table);
    cmsWriteTag(profile, cmsSigAToB0Tag, pipeline);
    cmsWriteTag(profile, cmsSigMediaWhitePointTag, cmsD50_XYZ());
    return saved(profile);
}

/// A picture of one colour in 8 bits, or in 16, with the profile.
Result<DecodedPicture> uniform(const File& icc, std::array<double, 4> samples, int bits = 8,
                               int count = 3, int photometric = 2)
{
    const double highest = bits == 8 ? 255 : 65535;
    return decodePicture(tiff(
        {.photometric = photometric,
         .samples = count,
         .bits = bits,
         .describe =
             [&](TIFF* t) {
                 if (!icc.empty())
                     TIFFSetField(t, TIFFTAG_ICCPROFILE, uint32_t(icc.size()), icc.data());
             },
         .sample = [&](int c, int, int) { return std::round(samples[size_t(c)] * highest); }}));
}

void expectPixel(const Result<DecodedPicture>& picture, std::array<double, 3> expected,
                 double tolerance)
{
    ASSERT_TRUE(picture) << picture.error().message;
    const auto pixel = linearPixel(*picture->bitmap, 3, 2);
    for (size_t c = 0; c < 3; ++c)
        EXPECT_NEAR(pixel[c], expected[c], tolerance) << "channel " << c;
}

// Linear sRGB of the pure colours of the wide spaces, from the published primaries, all of D65.
constexpr std::array<double, 3> p3Red = {1.2249, -0.0420, -0.0197};
constexpr std::array<double, 3> p3Green = {-0.2247, 1.0419, -0.0786};
constexpr std::array<double, 3> adobeGreen = {-0.3984, 1.0, -0.0429};
constexpr std::array<double, 3> rec2020Green = {-0.5876, 1.1329, -0.1006};

TEST(ColorProfile, wideGamutsComeOutUnclipped)
{
    const File p3 = rgbProfile(displayP3Primaries, 0);
    const File adobe = rgbProfile(adobeRgbPrimaries, 2.19921875);
    for (const int bits : {8, 16}) {
        expectPixel(uniform(p3, {1, 0, 0}, bits), p3Red, 0.0006);
        expectPixel(uniform(p3, {0, 1, 0}, bits), p3Green, 0.0006);
        expectPixel(uniform(adobe, {0, 1, 0}, bits), adobeGreen, 0.0006);
        expectPixel(uniform(rgbProfile(rec2020Primaries, 0), {0, 1, 0}, bits), rec2020Green,
                    0.0006);
        const double grey = std::pow(bits == 8 ? 128 / 255.0 : 0.5, 2.19921875);
        expectPixel(uniform(adobe, {0.5, 0.5, 0.5}, bits), {grey, grey, grey}, 0.0003);
    }
    // The same by way of a JPEG's chunks and a WebP's.
    for (const File& file : {jpeg({.icc = p3}), webp(false, p3)}) {
        const auto picture = decodePicture(file);
        ASSERT_TRUE(picture);
        EXPECT_TRUE(picture->bitmap->conversion.matrix);
        EXPECT_FALSE(picture->bitmap->conversion.curves[0]);
    }
}

TEST(ColorProfile, sRgbUnderAnyNameTakesTheFastPath)
{
    // Rounded colorants and a curve in 1024 steps, as the oldest sRGB profiles have them.
    std::vector<cmsUInt16Number> steps;
    for (int i = 0; i < 1024; ++i)
        steps.push_back(cmsUInt16Number(std::lround(srgbToLinear(i / 1023.0) * 65535)));
    cmsToneCurve* curve = cmsBuildTabulatedToneCurve16(nullptr, 1024, steps.data());
    cmsToneCurve* curves[] = {curve, curve, curve};
    const cmsCIExyY white = {0.3127, 0.3290, 1};
    const cmsCIExyYTRIPLE rounded = {{0.6400, 0.3300, 1}, {0.3000, 0.6000, 1}, {0.1501, 0.0600, 1}};
    for (const File& icc : {File(), rgbProfile(srgbPrimaries, 0), saved(cmsCreate_sRGBProfile()),
                            saved(cmsCreateRGBProfile(&white, &rounded, curves))}) {
        const auto picture = uniform(icc, {0.5, 0.2, 0.1});
        ASSERT_TRUE(picture);
        EXPECT_FALSE(picture->bitmap->conversion.matrix);
        for (const auto& table : picture->bitmap->conversion.curves)
            EXPECT_FALSE(table);
    }
}

TEST(ColorProfile, greyAndMixedProfiles)
{
    const double middle = 128 / 255.0;
    const double expected = std::pow(middle, 1.8);
    const std::array<double, 3> grey = {expected, expected, expected};
    expectPixel(uniform(greyProfile(1.8), {middle}, 8, 1, 1), grey, 1e-4);
    expectPixel(uniform(greyProfile(1.8), {middle, middle, middle}), grey, 1e-4);
    expectPixel(uniform(rgbProfile(adobeRgbPrimaries, 1.8), {middle}, 8, 1, 1), grey, 1e-4);
}

TEST(ColorProfile, tableProfilesAndInksBecomeFloats)
{
    const File table = tableProfile(false);
    const std::array<double, 3> expected = {srgbToLinear(0.8), srgbToLinear(0.4),
                                            srgbToLinear(0.2)};
    expectPixel(uniform(table, {0.8, 0.4, 0.2}, 8), expected, 0.004);
    expectPixel(uniform(table, {0.8, 0.4, 0.2}, 16), expected, 0.004);
    EXPECT_EQ(uniform(table, {0, 0, 0}, 8)->bitmap->type(), SampleType::F16);
    EXPECT_EQ(uniform(table, {0, 0, 0}, 16)->bitmap->type(), SampleType::F32);

    const File inks = tableProfile(true);
    const std::array<double, 3> mixed = {srgbToLinear(0.375), srgbToLinear(0.75),
                                         srgbToLinear(0.75)};
    expectPixel(uniform(inks, {0.5, 0, 0, 0.25}, 8, 4, 5), mixed, 0.006);
    expectPixel(uniform(inks, {0.5, 0, 0, 0.25}, 16, 4, 5), mixed, 0.006);

    // A JPEG of inks, stored either way round: the pixel's red is 1 - cyan, less what black takes.
    for (const bool inverted : {false, true}) {
        const auto picture = decodePicture(jpeg({.channels = 4, .isInverted = inverted}));
        ASSERT_TRUE(picture);
        const auto pixel = linearPixel(*picture->bitmap, pictureWidth / 2, 0);
        const double black = sampleOf(3, pictureWidth / 2, 0);
        EXPECT_NEAR(pixel[1], srgbToLinear(1 - black), 0.02) << inverted;
        EXPECT_NEAR(pixel[0], srgbToLinear((1 - sampleOf(0, pictureWidth / 2, 0)) * (1 - black)),
                    0.02);
    }
}

TEST(ColorProfile, alphaSurvivesATable)
{
    const File table = tableProfile(false);
    for (const int bits : {8, 16}) {
        const double highest = bits == 8 ? 255 : 65535;
        const auto picture = decodePicture(
            tiff({.samples = 4,
                  .bits = bits,
                  .extraSample = 2,
                  .describe =
                      [&](TIFF* t) {
                          TIFFSetField(t, TIFFTAG_ICCPROFILE, uint32_t(table.size()), table.data());
                      },
                  .sample = [&](int, int, int) { return std::round(0.4 * highest); }}));
        ASSERT_TRUE(picture);
        const auto pixel = linearPixel(*picture->bitmap, 0, 0);
        EXPECT_NEAR(pixel[0], srgbToLinear(0.4), 0.004);
        EXPECT_NEAR(pixel[3], 0.4, 0.001);
    }
}

TEST(ColorProfile, brokenProfilesCountAsNone)
{
    File noTags = rgbProfile(displayP3Primaries, 0);
    noTags[131] = 0;
    File cut = rgbProfile(displayP3Primaries, 0);
    cut.resize(cut.size() / 2);
    for (const File& icc : {noTags, cut, File(3000, 0xff), File(10, 0)})
        expectPixel(uniform(icc, {1, 0, 0}), {1, 0, 0}, 1e-6);
}

TEST(ColorProfile, aConversionAsksForTheMemoryOfBothPictures)
{
    struct Case {
        SampleType type;
        SampleModel model;
        File icc;
        uint64_t bytes; ///< of 10 x 10 pixels, before and after
    };
    for (const Case& c : {Case{SampleType::U8, SampleModel::Color, tableProfile(false), 900},
                          Case{SampleType::U16, SampleModel::Color, tableProfile(false), 1800},
                          Case{SampleType::F32, SampleModel::Color, tableProfile(false), 2400},
                          Case{SampleType::U8, SampleModel::Cmyk, tableProfile(true), 1000},
                          Case{SampleType::U8, SampleModel::Color, {}, 0}}) {
        for (const uint64_t missing : {0, 1}) {
            if (missing > c.bytes)
                continue;
            DecoderOutput output;
            output.model = c.model;
            output.icc = c.icc;
            output.bitmap = std::make_shared<Bitmap>(10, 10, c.model == SampleModel::Cmyk ? 4 : 3,
                                                     c.type, AlphaKind::None);
            std::fill_n(output.bitmap->row(0), output.bitmap->byteSize(), uint8_t(0));
            const auto result = applyColor(output, false, c.bytes - missing);
            EXPECT_EQ(result.ok() ? "" : result.error().message,
                      missing == 0 ? ""
                                   : "This picture is 10 × 10 pixels, which is more than this "
                                     "computer's memory can hold.");
        }
    }
}

TEST(ColorProfile, exifAndPngHints)
{
    struct Case {
        int colorSpace;
        bool isR03;
        bool isAdobe;
    };
    for (const Case c : {Case{1, false, false},
                         {2, false, true},
                         {0xffff, true, true},
                         {0xffff, false, false},
                         {1, true, false}}) {
        const auto picture = decodePicture(jpeg({.exif = exifBlock(1, c.colorSpace, c.isR03)}));
        ASSERT_TRUE(picture);
        EXPECT_EQ(picture->bitmap->conversion.matrix.has_value(), c.isAdobe);
        EXPECT_EQ(bool(picture->bitmap->conversion.curves[0]), c.isAdobe);
    }
    const auto described = [](double gamma, const Primaries& p) {
        return png({2, 8, false, [&](png_structp writer, png_infop info) {
                        png_set_gAMA(writer, info, gamma);
                        png_set_cHRM(writer, info, p.white.x, p.white.y, p.red.x, p.red.y,
                                     p.green.x, p.green.y, p.blue.x, p.blue.y);
                    }});
    };
    const auto usual = decodePicture(described(0.45455, srgbPrimaries));
    ASSERT_TRUE(usual);
    EXPECT_FALSE(usual->bitmap->conversion.matrix || usual->bitmap->conversion.curves[0]);
    // A profile that is none leaves gAMA and cHRM their say.
    for (const File& profile : {File(), File(600, 0x20), File(size_t(17) << 20, 0)}) {
        File chunk = {'p', 0, 0};
        const File packed = deflated(profile);
        chunk.insert(chunk.end(), packed.begin(), packed.end());
        const auto linear = decodePicture(pngWith(
            described(1.0, rec2020Primaries),
            profile.empty() ? std::vector<File>() : std::vector<File>{pngChunk("iCCP", chunk)}));
        ASSERT_TRUE(linear);
        ASSERT_TRUE(linear->bitmap->conversion.matrix && linear->bitmap->conversion.curves[0]);
        EXPECT_NEAR(double((*linear->bitmap->conversion.matrix)[1]), rec2020Green[0], 0.001);
        EXPECT_NEAR(double((*linear->bitmap->conversion.curves[0])[51]), 0.2, 1e-6);
    }
    File chunk = {'p', 0, 0};
    const File packed = deflated(rgbProfile(displayP3Primaries, 0));
    chunk.insert(chunk.end(), packed.begin(), packed.end());
    const auto both =
        decodePicture(pngWith(described(1.0, rec2020Primaries), {pngChunk("iCCP", chunk)}));
    ASSERT_TRUE(both && both->bitmap->conversion.matrix);
    EXPECT_LT(std::abs(double((*both->bitmap->conversion.matrix)[1])), 0.3);
}

TEST(ColorProfile, codedColoursOfHeif)
{
    struct Case {
        const char* name;
        std::array<double, 3> coded;
        int bits, primaries, transfer;
        std::array<double, 3> expected;
        double tolerance;
    };
    // 203 cd/m2 is a PQ signal of 0.5807 and an HLG signal of 0.75 (ITU-R BT.2408).
    const Case cases[] = {
        {"sRGB", {0.5, 0.5, 0.5}, 8, 1, 13, {0.214, 0.214, 0.214}, 0.01},
        {"Display P3", {1, 0, 0}, 8, 12, 13, p3Red, 0.03},
        {"BT.2020, 10 bits", {0, 1, 0}, 10, 9, 8, rec2020Green, 0.03},
        {"BT.709", {0.5, 0.5, 0.5}, 10, 1, 1, {0.2597, 0.2597, 0.2597}, 0.01},
        {"PQ", {0.5807, 0.5807, 0.5807}, 10, 9, 16, {1, 1, 1}, 0.05},
        {"HLG", {0.75, 0.75, 0.75}, 10, 9, 18, {1, 1, 1}, 0.05},
    };
    for (const bool isAvif : {false, true}) {
        // libheif 1.15 cannot write 10 bits of AVIF.
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.name) + (isAvif ? " avif" : " heic"));
            const File file = heif(c.coded,
                                   {.isAvif = isAvif,
                                    .bits = c.bits > 8 && isAvif ? 12 : c.bits,
                                    .primaries = c.primaries,
                                    .transfer = c.transfer});
            if (file.empty())
                GTEST_SKIP() << "libheif has no encoder here";
            const auto picture = decodePicture(file);
            ASSERT_TRUE(picture) << picture.error().message;
            EXPECT_EQ(picture->format, isAvif ? PictureFormat::Avif : PictureFormat::Heif);
            EXPECT_EQ(picture->bitmap->type(), c.bits > 8 ? SampleType::U16 : SampleType::U8);
            expectPixel(picture, c.expected, c.tolerance);
        }
    }
    // A profile that is none leaves the codes their say.
    const auto coded =
        decodePicture(heif({1, 0, 0}, {.primaries = 12, .transfer = 13, .icc = File(500, 0x20)}));
    expectPixel(coded, p3Red, 0.03);
    // The container's turn is done already, so the Exif block's must not be done again.
    const auto turned = decodePicture(
        heif({1, 0, 0},
             {.orientation = 6, .icc = rgbProfile(displayP3Primaries, 0), .exif = exifBlock(6)}));
    expectPixel(turned, p3Red, 0.03);
    EXPECT_EQ(turned->bitmap->width(), 64);
    EXPECT_EQ(turned->orientation, 1);
    EXPECT_EQ(turned->properties.exif, exifBlock(1));
}

} // namespace
} // namespace orvane
