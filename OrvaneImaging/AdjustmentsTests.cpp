#include "Adjustments.h"

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(Adjustments, ReadsEachKeyIntoAFieldOfItsOwn)
{
    std::vector<std::string> keys = {
        "exposure",
        "contrast",
        "highlights",
        "shadows",
        "whites",
        "blacks",
        "temperature",
        "tint",
        "vibrance",
        "saturation",
        "perspectiveV",
        "perspectiveH",
        "lensDistortion",
        "lensFringe",
        "texture",
        "clarity",
        "dehaze",
        "sharpening",
        "sharpenRadius",
        "sharpenThreshold",
        "noiseReduction",
        "colorNoiseReduction",
        "levelsBlackIn",
        "levelsWhiteIn",
        "levelsGamma",
        "levelsBlackOut",
        "levelsWhiteOut",
        "shadowTint",
        "highlightTint",
        "vignette",
        "vignetteMidpoint",
        "fade",
        "grain",
        "bloom",
        "halation",
        "tiltShift",
        "tiltCenter",
        "tiltWidth",
        "duotone",
        "duotoneHue",
    };
    for (const char* prefix : {"hue", "sat", "lum"}) {
        for (const char* band :
             {"Red", "Orange", "Yellow", "Green", "Aqua", "Blue", "Purple", "Magenta"})
            keys.push_back(std::string(prefix) + band);
    }
    ASSERT_EQ(keys.size(), 64u);
    std::vector<Adjustments> seen = {Adjustments()};
    for (const std::string& key : keys) {
        const Adjustments read({{key, 1234.5}}); // far off every scale: nothing is clamped
        EXPECT_FALSE(read.isIdentity()) << key;
        for (const Adjustments& other : seen)
            EXPECT_NE(read, other) << key;
        seen.push_back(read);
    }
    EXPECT_EQ(Adjustments({{"levelsGamma", 1234.5}}).levelsGamma, 1234.5);
    EXPECT_EQ(Adjustments({{"lumAqua", -3}}).mixerLum[4], -3);
    EXPECT_TRUE(Adjustments({{"lutAmount", 5}, {"Exposure", 5}}).isIdentity());
}

TEST(Adjustments, IsIdentityOnlyWithEveryFieldAtItsDefault)
{
    Adjustments a;
    EXPECT_TRUE(a.isIdentity());
    a.lut = LUT::fromRGB(2, std::vector<float>(24));
    a.lutAmount = 0;
    EXPECT_FALSE(a.isIdentity());
    a = {};
    a.curve.erase("g");
    EXPECT_FALSE(a.isIdentity());
    a = {};
    a.lights.emplace_back();
    EXPECT_FALSE(a.isIdentity());
}

} // namespace
} // namespace orvane
