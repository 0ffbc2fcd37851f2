// The whole road: a picture file in, an edit, a finished file out. What is checked here is what a
// photographer would notice: the right colours, the right depth, the right way up, nothing lost.

#include "BakeChain.h"
#include "PictureDecoder.h"
#include "PictureEncoder.h"

#include <gtest/gtest.h>
#include <lcms2.h>
#include <png.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>

namespace orvane {
namespace {

namespace fs = std::filesystem;

class Road : public testing::Test {
protected:
    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "orvane-road-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        m_folder = pattern;
    }
    void TearDown() override { fs::remove_all(m_folder); }

    fs::path in(const std::string& name) const { return m_folder / name; }

    /// An RGB PNG of 16 or 8 bits whose samples (0..1) the function gives; with a profile if named.
    void writePng(const fs::path& path, int width, int height, int bits, cmsHPROFILE profile,
                  const std::function<double(int x, int y, int c)>& sample)
    {
        std::FILE* file = std::fopen(path.c_str(), "wb");
        ASSERT_NE(file, nullptr);
        png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
        png_infop info = png_create_info_struct(png);
        png_init_io(png, file);
        png_set_IHDR(png, info, png_uint_32(width), png_uint_32(height), bits, PNG_COLOR_TYPE_RGB,
                     PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        if (profile) {
            cmsUInt32Number size = 0;
            cmsSaveProfileToMem(profile, nullptr, &size);
            std::vector<uint8_t> bytes(size);
            cmsSaveProfileToMem(profile, bytes.data(), &size);
            png_set_iCCP(png, info, "test", 0, bytes.data(), size);
        }
        png_write_info(png, info);
        std::vector<uint8_t> row(size_t(width) * 3 * size_t(bits / 8));
        for (int y = 0; y < height; ++y) {
            for (int i = 0; i < width * 3; ++i) {
                const double value = sample(i / 3, y, i % 3);
                const auto whole = unsigned(std::lround(value * (bits == 8 ? 255 : 65535)));
                if (bits == 8) {
                    row[size_t(i)] = uint8_t(whole);
                } else {
                    row[size_t(i) * 2] = uint8_t(whole >> 8);
                    row[size_t(i) * 2 + 1] = uint8_t(whole);
                }
            }
            png_write_row(png, row.data());
        }
        png_write_end(png, info);
        png_destroy_write_struct(&png, &info);
        std::fclose(file);
    }

    static CIImage opened(const fs::path& path)
    {
        const Result<DecodedPicture> picture = decodePictureFile(path);
        EXPECT_TRUE(picture.ok()) << (picture ? "" : picture.error().message);
        return picture ? imageFromPicture(*picture) : CIImage();
    }

    fs::path exported(const fs::path& source, const EditState& state, const ExportOptions& options)
    {
        const fs::path target = in("out." + std::string(info(options.format).ext));
        const Result<void> written =
            exportFile(finishedImage(opened(source), state, {}), options, target);
        EXPECT_TRUE(written.ok()) << (written ? "" : written.error().message);
        return target;
    }

    /// A pixel of a file as encoded sRGB of 0..255, y from the top.
    static std::array<double, 3> encodedPixel(const fs::path& path, int x, int y)
    {
        const CIImage image = opened(path);
        uint16_t rgba[4] = {};
        const CGRect bounds(x, image.extent().height() - 1 - y, 1, 1);
        EXPECT_TRUE(Baker::context().render(image, rgba, 8, bounds, PixelFormat::RGBA16));
        return {rgba[0] / 257.0, rgba[1] / 257.0, rgba[2] / 257.0};
    }

private:
    fs::path m_folder;
};

cmsHPROFILE matrixProfile(const cmsCIExyYTRIPLE& primaries, double gamma)
{
    const cmsCIExyY d65{0.3127, 0.3290, 1};
    cmsToneCurve* curve = cmsBuildGamma(nullptr, gamma);
    cmsToneCurve* const curves[] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&d65, &primaries, curves);
    cmsFreeToneCurve(curve);
    return profile;
}

TEST_F(Road, WideGamutSourcesComeOutInTheRightColours)
{
    // An sRGB orange, (0.8, 0.3, 0.1) linear, as each space stores it, and the file's own red,
    // which lies beyond sRGB and must come out as the strongest red there is.
    const struct {
        const char* name;
        cmsCIExyYTRIPLE primaries;
        double gamma;
    } spaces[] = {
        {"display-p3", {{0.680, 0.320, 1}, {0.265, 0.690, 1}, {0.150, 0.060, 1}}, 2.2},
        {"adobe-rgb", {{0.640, 0.330, 1}, {0.210, 0.710, 1}, {0.150, 0.060, 1}}, 2.19921875},
    };
    cmsHPROFILE linear = matrixProfile({{0.64, 0.33, 1}, {0.30, 0.60, 1}, {0.15, 0.06, 1}}, 1.0);
    for (const auto& space : spaces) {
        cmsHPROFILE profile = matrixProfile(space.primaries, space.gamma);
        cmsHTRANSFORM toSpace =
            cmsCreateTransform(linear, TYPE_RGB_DBL, profile, TYPE_RGB_DBL,
                               INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE);
        const double orange[] = {0.8, 0.3, 0.1};
        double stored[3];
        cmsDoTransform(toSpace, orange, stored, 1);
        const fs::path source = in(std::string(space.name) + ".png");
        writePng(source, 16, 16, 8, profile,
                 [&](int x, int, int c) { return x < 8 ? stored[c] : double(c == 0); });
        cmsDeleteTransform(toSpace);
        cmsCloseProfile(profile);

        for (const ExportFormatInfo& format : exportFormats) {
            ExportOptions options;
            options.format = format.format;
            options.quality = 1;
            const fs::path out = exported(source, EditState(), options);
            const auto pixel = encodedPixel(out, 2, 5);
            // 230.5, 148.9, 88.5; an 8-bit source is worth a level or so, lossy coding another two.
            const double tolerance = format.lossy ? 4 : 1.5;
            for (int c = 0; c < 3; ++c) {
                const double expected = 255 * (1.055 * std::pow(orange[c], 1 / 2.4) - 0.055);
                EXPECT_NEAR(pixel[size_t(c)], expected, tolerance)
                    << space.name << " " << format.ext;
            }
            const auto red = encodedPixel(out, 13, 5);
            EXPECT_GT(red[0], 250) << space.name << " " << format.ext;
        }
    }
    cmsCloseProfile(linear);
}

TEST_F(Road, SixteenBitsStaySixteen)
{
    const fs::path source = in("deep.png");
    writePng(source, 2000, 4, 16, nullptr, [](int x, int, int) { return 0.2 + x / 20000.0; });
    EditState state;
    state.adjust["exposure"] = 10;
    ExportOptions options;
    for (const ExportFormat format : {ExportFormat::png, ExportFormat::tiff}) {
        options.format = format;
        options.png16 = true;
        const CIImage image = opened(exported(source, state, options));
        std::vector<uint16_t> row(2000 * 4);
        ASSERT_TRUE(Baker::context().render(image, row.data(), 2000 * 8, {0, 1, 2000, 1},
                                            PixelFormat::RGBA16));
        std::set<uint16_t> levels;
        for (size_t i = 0; i < row.size(); i += 4)
            levels.insert(row[i]);
        // A tenth of the range: 26 levels in 8 bits.
        EXPECT_GT(levels.size(), 1900u) << info(format).ext;
    }
}

TEST_F(Road, FramingAndSizeFollowTheEdit)
{
    // Left half dark, right half light; the upper rows of it in red.
    const fs::path source = in("frame.png");
    writePng(source, 400, 200, 8, nullptr, [](int x, int y, int c) {
        return (x < 200 ? 0.2 : 0.8) * (y < 100 && c > 0 ? 0.0 : 1.0);
    });
    EditState state;
    state.flipH = true;
    state.crop = CGRect(0, 0.5, 1, 0.5);
    state.canvasAspect = 1;
    state.canvasFill = "color";
    state.canvasColor = "#00ff00";
    ExportOptions options;
    options.format = ExportFormat::png;
    options.longEdge = 200;
    const fs::path out = exported(source, state, options);
    EXPECT_EQ(opened(out).extent(), CGRect(0, 0, 200, 200));
    // The light half is now on the left, below the red rows that the crop took.
    EXPECT_NEAR(encodedPixel(out, 40, 100)[1], 204, 1);
    EXPECT_NEAR(encodedPixel(out, 160, 100)[1], 51, 1);
    EXPECT_NEAR(encodedPixel(out, 40, 20)[1], 255, 1);
    EXPECT_NEAR(encodedPixel(out, 40, 20)[0], 0, 1);
    // Never enlarged.
    options.longEdge = 5000;
    EXPECT_EQ(opened(exported(source, EditState(), options)).extent(), CGRect(0, 0, 400, 200));
}

TEST_F(Road, SourcesStayUntouchedAndTargetsWhole)
{
    const fs::path source = in("source.png");
    writePng(source, 64, 48, 8, nullptr,
             [](int x, int y, int c) { return (x + y + c) % 50 / 50.0; });
    const auto bytesOf = [](const fs::path& path) {
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), {});
    };
    const std::string before = bytesOf(source);
    const auto written = fs::last_write_time(source);
    ExportOptions options;
    exported(source, EditState(), options);
    EXPECT_EQ(bytesOf(source), before);
    EXPECT_EQ(fs::last_write_time(source), written);

    // A cancelled export leaves the old file, and nothing beside it.
    const fs::path target = in("old.jpg");
    std::ofstream(target) << "old";
    CancellationToken token;
    token.cancel();
    const CIImage image = finishedImage(opened(source), EditState(), {});
    EXPECT_FALSE(exportFile(image, options, target, {.cancellation = &token}).ok());
    EXPECT_EQ(bytesOf(target), "old");
    const auto count = std::distance(fs::directory_iterator(in("")), fs::directory_iterator());
    EXPECT_EQ(count, 3); // the source, out.jpg, old.jpg
    const Result<void> nowhere = exportFile(image, options, in("missing") / "a.jpg");
    ASSERT_FALSE(nowhere.ok());
    EXPECT_FALSE(nowhere.error().message.empty());
    EXPECT_FALSE(exportFile(CIImage::withColor({1, 0, 0, 1}), options, in("endless.jpg")).ok());
    EXPECT_FALSE(fs::exists(in("endless.jpg")));
}

} // namespace
} // namespace orvane
