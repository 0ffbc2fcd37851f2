#include "SourceReader.h"

#include "Bitmap.h"
#include "PlaneConversion.h"

#include <gtest/gtest.h>
#include <hwy/targets.h>

#include <cmath>
#include <cstdlib>

namespace orvane {
namespace {

constexpr int width = 997; // no whole number of vectors

/// Every code of the depth, one after another over the samples of all pixels.
Bitmap everyCode(int channels, SampleType type)
{
    const int codes = type == SampleType::U8 ? 256 : 65536;
    const int height = (codes + width - 1) / width + 1;
    Bitmap bitmap(width, height, channels, type, AlphaKind::None);
    for (int i = 0; i < width * height * channels; ++i) {
        void* row = bitmap.row(i / (width * channels));
        if (type == SampleType::U8)
            static_cast<uint8_t*>(row)[i % (width * channels)] = uint8_t(i);
        else
            static_cast<uint16_t*>(row)[i % (width * channels)] = uint16_t(i);
    }
    return bitmap;
}

int storedCode(const Bitmap& bitmap, int x, int row, int c)
{
    const void* samples = bitmap.row(row);
    const int i = x * bitmap.channels() + c;
    return bitmap.type() == SampleType::U8 ? static_cast<const uint8_t*>(samples)[i]
                                           : static_cast<const uint16_t*>(samples)[i];
}

TEST(SourceReader, DecodesEveryCodeAndEncodesItBack)
{
    for (int64_t sets = hwy::SupportedTargets(); sets != 0; sets &= sets - 1) {
        hwy::SetSupportedTargetsForTest(sets & -sets);
        for (const SampleType type : {SampleType::U8, SampleType::U16}) {
            const bool bytes = type == SampleType::U8;
            const Bitmap bitmap = everyCode(3, type);
            const std::vector<float>& table = *srgbDecodingTable(type);
            TileArena arena;
            // Odd edges, and up to the bitmap's last sample.
            const PixelRect rect{5, 0, width, bitmap.height()};
            const TilePlanes planes = readSource(bitmap, rect, arena);
            std::vector<uint8_t> again(size_t(width) * 6);
            for (int y = rect.y0; y < rect.y1; ++y) {
                const int row = bitmap.height() - 1 - y;
                const float* rgb[4] = {planes.row(0, y), planes.row(1, y), planes.row(2, y)};
                narrowRow(rgb, rect.width(), bytes ? PixelFormat::RGB8 : PixelFormat::RGB16,
                          again.data());
                const void* encoded = again.data();
                for (int i = 0; i < rect.width() * 3; ++i) {
                    const int code = storedCode(bitmap, rect.x0 + i / 3, row, i % 3);
                    const float linear = rgb[i % 3][i / 3];
                    ASSERT_NEAR(linear, table[size_t(code)], 5e-7) << code;
                    ASSERT_EQ(linear == 1, code == int(table.size()) - 1) << code;
                    ASSERT_EQ(linear == 0, code == 0) << code;
                    const int back = bytes ? static_cast<const uint8_t*>(encoded)[i]
                                           : static_cast<const uint16_t*>(encoded)[i];
                    ASSERT_EQ(back, code);
                }
            }
        }
    }
    hwy::SetSupportedTargetsForTest(0);
}

TEST(SourceReader, GivesAPixelTheSameBitsWhereverTheRectangleBegins)
{
    for (int channels = 1; channels <= 4; ++channels) {
        Bitmap bitmap(300, 1, channels, SampleType::U8, AlphaKind::Premultiplied);
        for (int i = 0; i < 300 * channels; ++i)
            bitmap.row(0)[i] = uint8_t(i * 73 + i / 256);
        TileArena arena;
        const TilePlanes whole = readSource(bitmap, {0, 0, 300, 1}, arena);
        for (const PixelRect& part : {PixelRect{1, 0, 300, 1}, PixelRect{37, 0, 38, 1},
                                      PixelRect{15, 0, 289, 1}, PixelRect{299, 0, 300, 1}}) {
            const TilePlanes planes = readSource(bitmap, part, arena);
            for (int c = 0; c < planes.channels(); ++c) {
                for (int x = part.x0; x < part.x1; ++x)
                    ASSERT_EQ(*planes.at(c, x, 0), *whole.at(c, x, 0)) << channels << ", " << x;
            }
        }
    }
}

} // namespace
} // namespace orvane
