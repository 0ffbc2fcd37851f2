#include "HexColor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvane {
namespace {

TEST(HexColor, ReadsWhatItFinds)
{
    const struct {
        const char* text;
        const char* written;
    } cases[] = {
        {"#ff8000", "#ff8000"},
        {"ff8000", "#ff8000"},
        {"#FF80aB", "#ff80ab"},
        {"#abc", "#000abc"},
        {"", "#000000"},
        {"#", "#000000"},
        {"##ffffff", "#000000"},
        {"red", "#000000"},
        {"-ff", "#000000"},
        {"0x102030", "#102030"},
        {"#0X102030", "#102030"},
        {" \n102030", "#102030"},
        {"102030 tail", "#102030"},
        {"1020g30", "#001020"},
        {"7f102030", "#102030"},
        {"10000000000000000", "#ffffff"},
        {"ffffffffffffffff00", "#ffffff"},
    };
    for (const auto& [text, written] : cases) {
        const CIColor color = colorFromHex(text);
        EXPECT_EQ(hexFromColor(color), written) << text;
        EXPECT_EQ(color.alpha, 1) << text;
    }
    EXPECT_EQ(colorFromHex("#ff8000"), (CIColor{1, 128 / 255.0, 0, 1}));
}

TEST(HexColor, TruncatesAndHoldsComponents)
{
    EXPECT_EQ(hexFromColor({0.999, 1, 0.0039}), "#feff00");
    EXPECT_EQ(hexFromColor({-0.5, 7, std::nan("")}), "#00ff00");
    EXPECT_EQ(hexFromColor({std::numeric_limits<double>::infinity(), -1e300, 1e300}), "#ff00ff");
}

TEST(HexColor, EveryByteSurvivesTheWayThere)
{
    // Truncation would lose a level wherever byte / 255 * 255 fell short of the byte.
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text = hexFromColor({byte / 255.0, 0, 0});
        EXPECT_EQ(colorFromHex(text).red * 255, byte) << text;
    }
}

} // namespace
} // namespace orvane
