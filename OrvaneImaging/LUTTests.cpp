#include "LUT.h"

#include <gtest/gtest.h>

#include <string>

namespace orvane {
namespace {

const std::string eight = "0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n";
const std::string seven = "0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n";
const std::string size2 = "LUT_3D_SIZE 2\n";

TEST(LUT, ReadsOrRefusesCubeFiles)
{
    const struct {
        const char* what;
        std::string text;
        bool accepted;
    } cases[] = {
        {"plain", size2 + eight, true},
        {"empty", "", false},
        {"no size", eight, false},
        {"one line short", size2 + seven, false},
        {"one line over", size2 + eight + "0 0 0\n", false},
        {"lower case keywords", "title \"x\"\ndomain_min 0 0 0\nlut_3d_size 2\n" + eight, true},
        {"domain of three numbers is no entry", size2 + "DOMAIN_MAX 1 1 1\n" + eight, true},
        {"comment of three numbers is no entry", size2 + "# 1 2 3\n  #1 2 3\n" + eight, true},
        {"size after a tab", "LUT_3D_SIZE\t2\n" + eight, false},
        {"several spaces", "  LUT_3D_SIZE   2  \n" + eight, true},
        {"later size wins", "LUT_3D_SIZE 3\n" + eight + size2, true},
        {"later bad size wins", size2 + eight + "LUT_3D_SIZE x\n", false},
        {"size 1", "LUT_3D_SIZE 1\n0 0 0\n", false},
        {"size 65", "LUT_3D_SIZE 65\n" + eight, false},
        {"negative size", "LUT_3D_SIZE -2\n" + eight, false},
        {"one-dimensional at the end", size2 + eight + "LUT_1D_SIZE 2\n", false},
        {"unknown keyword", size2 + "LUT_IN_VIDEO_RANGE\n" + eight, true},
        {"words beside numbers", size2 + seven + "1 a 1 b 1 c\n", true},
        {"four numbers", size2 + seven + "1 1 1 1\n", false},
        {"tabs between numbers", size2 + seven + "1\t1\t1\n", false},
        {"tabs around", size2 + seven + "\t1 1 1\t\n", true},
        {"signs, exponents, tiny numbers", size2 + seven + "+1 -1e-2 1e-60\n", true},
        {"point at either end", size2 + seven + ".5 1. -0.\n", true},
        {"spaces around", size2 + seven + "  1   1 1  \n", true},
        {"no line break at the end", size2 + seven + "1 1 1", true},
        {"cut off", size2 + seven + "1 1 1.0 -", true},
        {"two and an end", size2 + seven + "1 1 ", false},
        {"a sign alone", size2 + seven + "1 - 1\n", false},
        {"number next to a word", size2 + seven + "1 1 1.5x\n", false},
        {"points", size2 + seven + "1 1 1.5.5\n", false},
        {"decimal comma", size2 + seven + "0,5 1 1\n", false},
        {"not finite", size2 + seven + "1 nan inf\n", false},
        {"not finite and one over", size2 + eight + "1 nan inf\n", false},
        {"four, one not a number", size2 + seven + "1 1 1 nan\n", false},
        {"too large for a float", size2 + seven + "1 1 1e39\n", false},
        {"too large for a double", size2 + seven + "1 1 1e999\n", false},
        {"too small for a double", size2 + seven + "1 1 1e-999\n", true},
        {"carriage returns", "LUT_3D_SIZE 2\r\n" + seven + "1 1 1\r\n", true},
        {"other line breaks",
         "LUT_3D_SIZE 2\xc2\x85" + seven + "\xe2\x80\xa8" + "1 1 1\xe2\x80\xa9", true},
    };
    for (const auto& c : cases)
        EXPECT_EQ(LUT::fromCube(c.text).has_value(), c.accepted) << c.what;
}

TEST(LUT, KeepsTheOrderAndTheValuesOfTheFile)
{
    const auto lut = LUT::fromCube(size2 + "-0.5 0.25 1.5\n" + seven);
    ASSERT_TRUE(lut);
    EXPECT_EQ(lut->dimension(), 2);
    ASSERT_EQ(lut->rgba().size(), 32u);
    const std::vector<float> start(lut->rgba().begin(), lut->rgba().begin() + 12);
    EXPECT_EQ(start, (std::vector<float>{-0.5f, 0.25f, 1.5f, 1, 0, 0, 0, 1, 1, 0, 0, 1}));
    EXPECT_EQ(lut->cubeData().size(), 128u);
}

TEST(LUT, RoundsPlainDecimalsAsOthers)
{
    // The same number in the plain form and with an exponent, which is read another way.
    for (const std::string number : {"0.1", "0.333333", "-0.7071068", "0.000001", "123456789012345",
                                     "0.99999999999999", "16777217", "0.12345678901234567890"}) {
        const auto plain = LUT::fromCube(size2 + number + " 0 0\n" + seven);
        const auto other = LUT::fromCube(size2 + number + "e0 0 0\n" + seven);
        ASSERT_TRUE(plain && other) << number;
        EXPECT_EQ(plain->rgba()[0], other->rgba()[0]) << number;
        EXPECT_NE(plain->rgba()[0], 0) << number;
    }
}

TEST(LUT, IsEqualByContent)
{
    const std::vector<float> rgb(24, 0.5f);
    EXPECT_EQ(LUT::fromRGB(2, rgb), LUT::fromRGB(2, rgb));
    EXPECT_NE(LUT::fromRGB(2, rgb), LUT::fromCube(size2 + eight));
    EXPECT_FALSE(LUT::fromRGB(2, std::vector<float>(23)));
    EXPECT_FALSE(LUT::fromRGB(1, std::vector<float>(3)));
}

} // namespace
} // namespace orvane
