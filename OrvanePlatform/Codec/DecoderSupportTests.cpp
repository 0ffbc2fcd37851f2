#include "DecoderSupport.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(PictureSize, refusesBeforeAllocating)
{
    struct Case {
        uint64_t width, height;
        size_t bytesPerPixel, fileBytes;
        double pixelsPerByte;
        std::string message;
    };
    const Case cases[] = {
        {65535, 1, 4, 100, 256, ""},
        {6000, 4000, 4, 20000000, 256, ""},
        {0, 10, 4, 1000, 256, sentence::damaged},
        {65536, 1, 4, 1000, 256,
         "This picture is 65536 × 1 pixels; Orvane opens pictures of up to 65535 pixels a side."},
        {65535, 65535, 4, size_t(1) << 40, 256,
         "This picture is 65535 × 65535 pixels; Orvane opens pictures of up to 1000 megapixels."},
        {20000, 20000, 4, 2048, 256, sentence::endsEarly},
        {30000, 30000, size_t(1) << 20, size_t(1) << 30, 256,
         "This picture is 30000 × 30000 pixels, which is more than this computer's memory can "
         "hold."},
    };
    for (const Case& c : cases) {
        const auto result =
            checkPictureSize(c.width, c.height, c.bytesPerPixel, c.fileBytes, c.pixelsPerByte);
        EXPECT_EQ(result.ok() ? "" : result.error().message, c.message) << c.width;
    }
}

TEST(ByteReader, readsZeroBeyondTheEnd)
{
    const uint8_t bytes[] = {1, 2, 3, 4};
    const ByteReader little(bytes, false);
    const ByteReader big(bytes, true);
    EXPECT_EQ(little.u32(0), 0x04030201u);
    EXPECT_EQ(big.u32(0), 0x01020304u);
    EXPECT_EQ(big.u32(1), 0u);
    EXPECT_EQ(big.number(UINT64_MAX, 4), 0u);
    EXPECT_EQ(big.range(2, UINT64_MAX).size(), 2u);
    EXPECT_TRUE(big.range(UINT64_MAX, 4).empty());
}

TEST(Unpremultiply, everyIntegerAndFloatDepth)
{
    Bitmap eight(2, 1, 4, SampleType::U8, AlphaKind::Straight);
    const uint8_t eightIn[] = {64, 128, 200, 128, 9, 9, 9, 0};
    std::copy(std::begin(eightIn), std::end(eightIn), eight.row(0));
    unpremultiply(eight);
    EXPECT_EQ(std::vector<uint8_t>(eight.row(0), eight.row(0) + 8),
              (std::vector<uint8_t>{128, 255, 255, 128, 0, 0, 0, 0}));

    Bitmap sixteen(1, 1, 2, SampleType::U16, AlphaKind::Straight);
    auto* samples = reinterpret_cast<uint16_t*>(sixteen.row(0));
    samples[0] = 100;
    samples[1] = 32768;
    unpremultiply(sixteen);
    EXPECT_EQ(samples[0], 200);

    Bitmap real(1, 1, 2, SampleType::F32, AlphaKind::Straight);
    auto* values = reinterpret_cast<float*>(real.row(0));
    values[0] = 1.0f;
    values[1] = 0.25f;
    unpremultiply(real);
    EXPECT_EQ(values[0], 4.0f);
}

} // namespace
} // namespace orvane
