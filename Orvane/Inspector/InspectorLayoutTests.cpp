#include "InspectorLayout.h"

#include "CanvasSection.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace orvane {
namespace {

std::string outline(const std::vector<AppModel::AdjustGroup>& catalogue)
{
    std::string text;
    for (const InspectorHeading& heading : inspectorLayout(catalogue)) {
        text += heading.title.toStdString() + ":";
        for (const InspectorSection& section : heading.sections)
            text += " " + section.name.toStdString() + ",";
        text += "\n";
    }
    return text;
}

TEST(InspectorLayout, FilesEachGroupOfTheCatalogueUnderItsHeading)
{
    EXPECT_EQ(outline(Schema::groups()),
              "Frame: Crop, Canvas, Geometry,\n"
              "Style: Looks, Effects, Duotone,\n"
              "Light & Colour: Light, Color, Curves, Levels, Color Grading, Color Mixer,\n"
              "Detail: Detail,\n"
              "On the Image: Retouch, Relight, Tilt-Shift, Text,\n");
}

TEST(InspectorLayout, WhatItDoesNotKnowComesLastAndTheMixerNeverDoes)
{
    const AppModel::AdjustKey key{"k", "K", 0, 1, 0};
    const std::string text =
        outline({{"New", {key}}, {"Light", {key}}, {"Color Mixer Hue", {key}}});
    EXPECT_TRUE(text.ends_with("More: New,\n")) << text;
    EXPECT_NE(text.find("Light & Colour: Light, Color Mixer,\n"), std::string::npos) << text;
    EXPECT_EQ(outline({}).find("Mixer"), std::string::npos);
}

TEST(CanvasSection, AShapeIsChosenWithinAThousandth)
{
    struct Row {
        double ratio;
        const char* shape;
    };
    const Row rows[] = {{0, "off"},        {0.8001, "4x5"}, {0.802, "off"}, {1, "1x1"},
                        {1.77777, "16x9"}, {-3, "off"},     {0.563, "9x16"}};
    for (const Row& row : rows)
        EXPECT_EQ(CanvasSection::shapeOf(row.ratio), row.shape) << row.ratio;
}

} // namespace
} // namespace orvane
