#include "ModelTesting.h"

#include "LookThumbs.h"

#include <limits>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::Pair;

using AdjustingTest = ModelTest;

TEST_F(AdjustingTest, StepsMergeByTheTimeBetweenThem)
{
    using Points = std::vector<EditState::CurvePoint>;
    const struct {
        double pause; ///< before the change, seconds
        std::function<void(AppModel&)> change;
        std::vector<std::string> steps; ///< after it
    } cases[] = {
        {9, [](AppModel& m) { m.setAdjust("exposure", 1); }, {"Original", "Exposure"}},
        {0.5, [](AppModel& m) { m.setAdjust("exposure", 2); }, {"Original", "Exposure"}},
        // The window slides, and does not ask which control moved.
        {0.5,
         [](AppModel& m) {
             m.setCurve("master", Points{{0, 9}});
         },
         {"Original", "Curves"}},
        {0.75,
         [](AppModel& m) { m.setLevels("levelsGamma", 90); },
         {"Original", "Curves", "Levels"}},
        // Nothing changed, no step; and no bridge to the next one.
        {0.5, [](AppModel& m) { m.resetGroup({}); }, {"Original", "Curves", "Levels"}},
        {0.5,
         [](AppModel& m) { m.setAdjust("contrast", 5); },
         {"Original", "Curves", "Levels", "Contrast"}},
        // A commit is a step of its own, and takes in a push that follows at once.
        {0.1,
         [](AppModel& m) { m.resetLevels(); },
         {"Original", "Curves", "Levels", "Contrast", "Levels"}},
        {0.1,
         [](AppModel& m) { m.setAdjust("fade", 8); },
         {"Original", "Curves", "Levels", "Contrast", "Levels"}},
        {0.1,
         [](AppModel& m) { m.undo(); },
         {"Original", "Curves", "Levels", "Contrast", "Levels"}},
        {0.1,
         [](AppModel& m) { m.setAdjust("fade", 2); },
         {"Original", "Curves", "Levels", "Contrast", "Fade"}},
        {0.1,
         [](AppModel& m) { m.jumpHistory(1); },
         {"Original", "Curves", "Levels", "Contrast", "Fade"}},
        {0.1, [](AppModel& m) { m.clearCurves(); }, {"Original", "Curves", "Curves"}},
        {0.1, [](AppModel& m) { m.clearCurves(); }, {"Original", "Curves", "Curves"}},
    };
    open({"a.jpg"});
    int row = 0;
    for (const auto& [pause, change, steps] : cases) {
        clock += pause;
        change(*model);
        EXPECT_EQ(model->historySteps(), steps) << "row " << row++;
    }
    model->undo();
    EXPECT_THAT(model->adjust.value(), ElementsAre(Pair("exposure", 2)));
    model->redo();
    EXPECT_TRUE(model->curve.value().empty());
    model->redo();
    model->jumpHistory(3);
    model->jumpHistory(-1);
    EXPECT_TRUE(model->curve.value().empty());
}

TEST_F(AdjustingTest, HoldsCurvesToTheirScaleAndInOrder)
{
    model->setCurve("g", {{300, -4}, {10, 1}, {200, 7}, {10, 2}});
    const std::vector<EditState::CurvePoint> expected = {{10, 1}, {10, 2}, {200, 7}, {255, 0}};
    EXPECT_THAT(model->curve.value(), ElementsAre(Pair("g", expected)));
}

// A number that no store can hold would make the image one that can never be saved again.
TEST_F(AdjustingTest, TakesNoNumberThatCannotBeStored)
{
    open({"a.jpg"});
    model->applyLook("warm");
    const EditState before = model->editState();
    for (const double value :
         {std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::infinity()}) {
        model->setAdjust("exposure", value);
        model->setLevels("levelsGamma", value);
        model->setCurve("g", {{0, 9}, {value, 5}});
        model->setCurve("g", {{0, 9}, {5, value}});
        model->setLookStrength(value);
    }
    EXPECT_EQ(model->editState(), before);
}

TEST_F(AdjustingTest, FitsLooksToThePictureAsItWasActivated)
{
    open({"a.jpg"});
    const auto fitted = LookThumbs::fitted(*model->geometrySource());
    model->canvasAspect = 3;
    model->canvasFill = std::string("color");
    model->canvasColor = std::string("#ffffff");
    ASSERT_NE(LookThumbs::fitted(*model->geometrySource()), fitted);
    model->applyLook("warm");
    EXPECT_EQ(model->lookRecipes.value(), fitted);
}

TEST_F(AdjustingTest, ResetsGroupsAndLevels)
{
    EXPECT_EQ(model->levels(), EditState::Levels());
    model->setLevels("levelsWhiteIn", 200);
    EXPECT_EQ(model->levels().whiteIn, 200);
    model->resetLevels();
    EXPECT_EQ(model->levels(), EditState::Levels());
    EXPECT_EQ(model->adjust.value().size(), 5u);
    model->adjust = AppModel::AdjustMap{{"exposure", 1}, {"duotoneHue", 2}};
    model->resetGroup({{"duotoneHue", "", 0, 360, 210}, {"tiltWidth", "", 0, 100, 30}});
    EXPECT_THAT(model->adjust.value(),
                ElementsAre(Pair("duotoneHue", 210), Pair("exposure", 1), Pair("tiltWidth", 30)));
}

TEST_F(AdjustingTest, AGradeReplacesSlidersAndCurvesAlone)
{
    open({"a.jpg"});
    EditState state;
    state.adjust = {{"exposure", 50}, {"levelsGamma", 80}};
    state.curve = {{"r", {{0, 9}}}};
    state.crop = {0, 0, 0.5, 0.5};
    state.lights.emplace_back();
    state.lutAmount = 30;
    model->restore(state);
    model->commitHistory();

    auto expected = Schema::file().defaults;
    expected["contrast"] = 7;
    expected["fromTheFuture"] = 1;
    model->applyGrade({{"contrast", 7}, {"fromTheFuture", 1}}, {{"b", {{1, 2}}}});
    state.adjust = expected;
    state.curve = {{"b", {{1, 2}}}};
    EXPECT_EQ(model->editState(), state);
    EXPECT_EQ(model->historySteps().size(), 3u);
}

TEST_F(AdjustingTest, LooksApplyWithAStrength)
{
    model->applyLook("warm");
    model->makeItPop();
    model->setLookStrength(20);
    EXPECT_EQ(model->lookStrength, 100);
    EXPECT_TRUE(model->adjust.value().empty());

    open({"a.jpg"});
    model->setAdjust("exposure", 33);
    model->setCurve("r", {{0, 9}});
    // Without waiting for the background.
    model->applyLook("warm");
    EXPECT_EQ(exposure(), 0);
    EXPECT_EQ(model->adjust.value().at("temperature"), 22);
    EXPECT_TRUE(model->curve.value().empty());
    const size_t steps = model->historySteps().size();
    model->applyLook("warm");
    model->applyLook("unheard of");
    EXPECT_EQ(model->historySteps().size(), steps);

    model->setLookStrength(50);
    EXPECT_EQ(model->adjust.value().at("temperature"), 11);
    EXPECT_EQ(model->lookStrength, 50);
    model->setLookStrength(0);
    EXPECT_EQ(model->adjust.value().at("temperature"), 0);
    EXPECT_EQ(model->historySteps().size(), steps + 2);

    // Undo goes past the look and leaves it in hand.
    for (int i = 0; i < 3; ++i)
        model->undo();
    EXPECT_EQ(exposure(), 33);
    EXPECT_EQ(model->lookStrength, 100);
    EXPECT_TRUE(model->canAdjustLookStrength());
    model->setLookStrength(50);
    EXPECT_EQ(model->adjust.value().at("temperature"), 11);

    model->makeItPop();
    EXPECT_EQ(model->lastLook.value()->id, "pop");
    EXPECT_EQ(model->lookStrength, 100);
    EXPECT_TRUE(model->adjust.value().contains("clarity"));
}

} // namespace
} // namespace orvane
