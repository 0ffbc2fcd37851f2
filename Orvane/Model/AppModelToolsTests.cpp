#include "ModelTesting.h"

#include "CropRatio.h"

#include <cmath>
#include <functional>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ToolsTest : public ModelTest {
protected:
    const EditState::Light& light(size_t index) const { return model->lights.value().at(index); }
    const EditState::TextLayer& text(size_t index) const { return model->texts.value().at(index); }
};

TEST_F(ToolsTest, EachGestureIsOneStep)
{
    open({"a.jpg"});
    AppModel& m = *model;
    std::vector<std::string> expected = {"Original"};
    // What does nothing stands beside what does, so that a step too many shows up.
    const auto adds = [&](const std::vector<std::string>& steps) {
        expected.insert(expected.end(), steps.begin(), steps.end());
        EXPECT_EQ(m.historySteps(), expected);
        clock += 10;
    };
    m.setCropNative({0, 0, 0.5, 0.5});
    m.setCropNative({0, 0, 0.5, 0.5});
    m.setAspect("1:1");
    m.setAspect("free");
    adds({"Crop", "Crop", "Edit"});
    m.flip("h");
    m.flip("h");
    m.flip("v");
    m.setCanvasShape("4x5");
    m.setCanvasShape("5x4");
    adds({"Flip", "Flip", "Flip", "Canvas", "Canvas off"});
    EXPECT_TRUE(m.flipV && !m.flipH);

    for (const double x : {0.5, 0.25, 0.25}) {
        m.enterCrop();
        m.setCropNative({0, 0, 1, 1});
        m.setAspect("4:5");
        m.setCropNative({x, 0.5, 0.5, 0.5});
        m.finishCrop();
    }
    adds({"Crop", "Crop"});

    m.enterRelight();
    m.addLightAt("brush", 0, 1);
    m.appendStroke(light(1).id, {{0, 0}, {1, 1}});
    m.appendStroke(light(1).id, {});
    m.appendStroke("l_none", {{0, 0}});
    adds({"Relight", "Relight", "Relight"});
    for (int i = 0; i < 9; ++i, clock += 0.5) {
        m.updateLight(light(0).id, "x", 0.1 * i);
        m.updateLight(light(0).id, "y", 0.2);
    }
    m.updateLight(light(0).id, "strokes", 7);
    m.updateLight("l_none", "x", 7);
    m.setLightInverted(light(0).id, true);
    m.deleteLight(light(0).id);
    m.clearLights();
    m.clearLights();
    adds({"Relight", "Relight", "Relight", "Relight"});

    m.healStrokeNative({{0, 0}, {1, 1}, {0.5, 0.5}});
    m.healStrokeNative({});
    m.undoLastHeal();
    EXPECT_THAT(m.ciHealSpots.value(), ElementsAre(HealSpot{0, 0, 0.04}, HealSpot{1, 1, 0.04}));
    m.clearHealSpots();
    m.clearHealSpots();
    m.undoLastHeal();
    adds({"Retouch", "Retouch", "Retouch"});

    m.addText();
    clock += 10;
    const std::string id = text(0).id;
    for (const char* typed : {"O", "Or", "Orv"}) {
        m.setText(id, typed);
        clock += 0.5;
    }
    m.setTextSize(id, 0.3);
    m.setTextColor(id, "#ff0000");
    adds({"Text added", "Text"});
    m.setTextFont(id, "Inter");
    m.setTextShadow(id, false);
    m.setTextPosition(id, 0, 1);
    m.moveText(id, true);
    m.moveText(id, false);
    m.setText("t_none", "x");
    m.deleteText("t_none");
    EXPECT_EQ(text(0), (EditState::TextLayer{id, "Orv", 0, 1, 0.3, "#ff0000", "Inter", false}));
    m.deleteText(id);
    adds({"Text", "Text", "Text", "Text"});
}

TEST_F(ToolsTest, ACropKeepsItsRatioWhateverTheFrame)
{
    // Rotation makes the frame larger, and may make it stand where the picture lies.
    for (const CGSize size : {CGSize{3000, 2000}, CGSize{2000, 2100}}) {
        for (const double rotation : {0.0, -15.0, 7.5}) {
            for (const CGRect crop : {CGRect(0, 0, 1, 1), CGRect(0.7, 0.9, 0.3, 0.1)}) {
                for (const char* id : {"1:1", "4:5", "16:9"}) {
                    model->sourceImage =
                        CIImage::withColor({}).cropped({0, 0, size.width, size.height});
                    model->rotation = rotation;
                    model->flipH = !model->flipH;
                    model->canvasAspect = 0;
                    model->crop = crop;
                    model->setAspect(id);
                    const CGSize got = model->geometrySource()->extent().size;
                    const double ratio = *CropRatio::pixelRatio(id, got);
                    EXPECT_LE(std::abs(got.width - got.height * ratio), 2)
                        << id << ": " << got.width << " x " << got.height;
                    const CGRect held = model->crop;
                    EXPECT_TRUE(CGRect(-1e-9, -1e-9, 1 + 2e-9, 1 + 2e-9).contains(held));
                    // A canvas round it changes nothing about it.
                    model->canvasAspect = 1;
                    model->setAspect(id);
                    EXPECT_LT(std::abs(model->crop.value().height() - held.height()), 1e-9);
                }
            }
        }
    }
    // Without a picture there is no frame to fit into.
    model->sourceImage = std::nullopt;
    model->crop = CGRect(0, 0, 1, 1);
    model->setAspect("16:9");
    EXPECT_EQ(model->crop, CGRect(0, 0, 1, 1));
}

TEST_F(ToolsTest, TakesNoNumberThatNoStoreCanHold)
{
    AppModel& m = *model;
    m.addLightAt("radial", 0.5, 0.5);
    m.addText();
    const std::string light = m.lights.value()[0].id;
    const std::string text = m.texts.value()[0].id;
    const EditState before = m.editState();
    for (const double wrong : {std::nan(""), std::numeric_limits<double>::infinity()}) {
        m.addLightAt("radial", wrong, 0.5);
        m.updateLight(light, "radius", wrong);
        m.appendStroke(light, {{0.5, 0.5}, {0.5, wrong}});
        m.healStrokeNative({{wrong, 0.5}});
        m.setCropNative({0, 0, wrong, 1});
        m.setTextSize(text, wrong);
        m.setTextPosition(text, 0.5, wrong);
        EXPECT_EQ(m.editState(), before);
    }
}

TEST_F(ToolsTest, CancellingPutsBackWhatWas)
{
    open({"a.jpg"});
    model->setCropNative({0.2, 0.2, 0.3, 0.3});
    model->addLightAt("gradient", 0.5, 0.25);
    model->exitRelight();
    const EditState before = model->editState();
    const auto history = model->history.value();
    const std::string first = light(0).id;

    model->enterCrop();
    model->setAspect("1:1");
    model->setCropNative({0, 0, 1, 1});
    model->cancelCrop();
    EXPECT_EQ(model->editState(), before);
    EXPECT_EQ(model->history, history);
    EXPECT_FALSE(model->cropMode);

    const std::vector<std::function<void()>> changes = {
        [&] { model->addLightAt("eraser", 0, 0); },
        [&] { model->updateLight(first, "radius", 1.5); },
        [&] { model->setLightInverted(first, true); },
        [&] {
            model->appendStroke(first, {{0, 0}});
        },
        [&] { model->deleteLight(first); },
        [&] { model->clearLights(); },
        [&] { model->undo(); },
        [&] { model->selectLight("l_other"); },
    };
    for (const auto& change : changes) {
        clock += 10;
        model->enterRelight();
        change();
        model->cancelRelight();
        EXPECT_EQ(model->editState(), before);
        EXPECT_EQ(model->history, history);
        EXPECT_FALSE(model->relightMode || model->relightSession.value());
        EXPECT_EQ(model->selectedLightID.value(), "");
    }

    // The light that the tool opens with is part of what is cancelled.
    model->clearLights();
    model->enterRelight();
    EXPECT_EQ(model->selectedLightID.value(), light(0).id);
    const size_t steps = model->historySteps().size();
    model->cancelRelight();
    EXPECT_TRUE(model->lights.value().empty());
    EXPECT_EQ(model->historySteps().size(), steps - 1);
}

TEST_F(ToolsTest, UndoWithinAToolLeavesItWhole)
{
    open({"a.jpg"});
    const CGRect cropped(0.2, 0.2, 0.3, 0.3);
    model->setCropNative(cropped);
    model->enterCrop();
    model->setCropNative({0, 0, 0.9, 0.9});
    model->undo();
    EXPECT_EQ(model->crop, CGRect(0, 0, 1, 1));
    // What undo has put back is no change of the tool's: redo can still be reached.
    model->finishCrop();
    EXPECT_TRUE(model->history.value().canRedo());
    model->redo();
    EXPECT_EQ(model->crop, cropped);

    model->enterCrop();
    model->undo();
    model->cancelCrop();
    EXPECT_EQ(model->crop, cropped);
    model->redo();
    EXPECT_EQ(model->crop, cropped);

    // A cancelled tool keeps a history whose lights are those at the start.
    model->enterRelight();
    model->undo();
    model->cancelRelight();
    model->redo();
    EXPECT_EQ(model->lights.value().size(), 1u);
}

TEST_F(ToolsTest, AToolNeverReachesIntoAnotherImage)
{
    open({"a.jpg", "b.jpg"});
    model->enterRelight();
    model->enterCrop();
    model->setCropNative({0, 0, 0.5, 0.5});
    activate(1);
    EXPECT_EQ(model->editState(), image(1).state);
    // Placed without entering: there is nothing to go back to.
    model->addLightAt("brush", 0, 0);
    model->cancelRelight();
    EXPECT_EQ(model->lights.value().size(), 1u);
    EXPECT_THAT(model->historySteps(), ElementsAre("Original", "Relight"));

    model->enterCrop();
    model->setCropNative({0.5, 0.5, 0.5, 0.5});
    model->enterRelight();
    activate(0);
    model->cancelCrop();
    EXPECT_EQ(model->crop, CGRect(0, 0, 0.5, 0.5));
    EXPECT_THAT(model->historySteps(), ElementsAre("Original", "Relight", "Crop"));
}

TEST_F(ToolsTest, LightsAndTextsAreMadeAndSelected)
{
    const struct {
        const char* kind;
        EditState::Light made;
    } kinds[] = {
        {"radial", {"", "radial", "", 28, 0, 0, 0, 0.24, 0.6, false, 0.2, 0.7, 0, {}}},
        {"gradient", {"", "linear", "", 28, 0, 0, 0, 0.3, 0.5, false, 0.2, 0.7, 90, {}}},
        {"brush", {"", "brush", "paint", 28, 0, 0, 0, 0.06, 0.6, false, 0.2, 0.7, 0, {}}},
        {"eraser", {"", "brush", "erase", 28, 0, 0, 0, 0.06, 0.6, false, 0.2, 0.7, 0, {}}},
        {"lantern", {"", "radial", "", 28, 0, 0, 0, 0.24, 0.6, false, 0.2, 0.7, 0, {}}},
    };
    for (auto [kind, expected] : kinds) {
        model->addLightAt(kind, 0.2, 0.7);
        expected.id = model->selectedLightID.value();
        EXPECT_EQ(model->lights.value().back(), expected) << kind;
        EXPECT_THAT(expected.id, testing::MatchesRegex("l_[0-9a-f]{6}"));
    }
    const std::string last = light(4).id;
    model->deleteLight(light(0).id);
    EXPECT_EQ(model->selectedLightID.value(), last);
    model->deleteLight(last);
    EXPECT_EQ(model->selectedLightID.value(), light(2).id);

    model->addText();
    EXPECT_EQ(
        text(0),
        (EditState::TextLayer{text(0).id, "Your text", 0.5, 0.85, 0.06, "#ffffff", "", true}));
    model->addText();
    const std::string lower = text(0).id;
    EXPECT_EQ(model->selectedTextID.value(), text(1).id);
    model->moveText(lower, true);
    EXPECT_EQ(model->textLayerNumber(lower), 2);
    EXPECT_EQ(model->textLayerNumber("t_none"), 1);
    model->undo();
    model->undo();
    EXPECT_EQ(model->selectedTextID.value(), lower);
    model->selectText("t_none");
    EXPECT_EQ(model->selectedTextID.value(), lower);
    model->selectText("");
    model->deleteText(lower);
    EXPECT_EQ(model->selectedTextID.value(), "");

    const auto& fonts = AppModel::textFonts();
    EXPECT_EQ(fonts.front(), (LookItem{"", "System"}));
    ASSERT_GT(fonts.size(), 1u);
    for (size_t i = 1; i < fonts.size(); ++i)
        EXPECT_LT(fonts[i - 1].id, fonts[i].name);
}

TEST_F(ToolsTest, ThePickerReadsThePictureBeforeItsGrade)
{
    const auto colour = [](int r, int g, int b) {
        return CIImage::withColor({r / 255.0, g / 255.0, b / 255.0, 1});
    };
    // Two colours side by side over a third.
    const CIImage sourceImage = colour(120, 110, 100)
                                    .cropped({0, 32, 50, 32})
                                    .compositedOver(colour(100, 100, 121).cropped({50, 32, 50, 32}))
                                    .compositedOver(colour(9, 19, 9).cropped({0, 0, 100, 64}));
    const std::vector<double> ofLeft = {-24, 0};
    const std::vector<double> ofRight = {25, 35};
    const std::vector<double> ofLower = {0, -33};

    model->toggleHeal();
    model->pickWhiteBalance();
    EXPECT_FALSE(model->healing);
    model->pickWhiteNative(0.5, 0.5);
    EXPECT_TRUE(model->pickingWhite);
    EXPECT_THAT(model->adjust.value(), IsEmpty());

    model->sourceImage = sourceImage;
    const struct {
        double nx, ny;
        bool flipped;
        CGRect crop;
        std::vector<double> expected;
    } cases[] = {
        {0.25, 0.25, false, {0, 0, 1, 1}, ofLeft},
        {0.25, 0.25, false, {0, 0, 1, 1}, ofLeft}, // once more, now with a grade
        {0.25, 0.25, true, {0, 0, 1, 1}, ofRight},
        {0.25, 0.75, false, {0, 0, 1, 1}, ofLower},
        {0.25, 0.25, false, {0.5, 0, 0.5, 1}, ofRight},
        // The very edges belong to their last pixels.
        {0, 0, false, {0, 0, 1, 1}, ofLeft},
        {1, 0, false, {0, 0, 1, 1}, ofRight},
        {1, 1, false, {0, 0, 1, 1}, ofLower},
    };
    for (const auto& [nx, ny, flipped, crop, expected] : cases) {
        clock += 10;
        model->flipH = flipped;
        model->crop = crop;
        model->setAdjust("exposure", nx);
        clock += 10;
        const auto before = model->historySteps().size();
        model->pickWhiteNative(nx, ny);
        const auto& adjust = model->adjust.value();
        EXPECT_EQ((std::vector{adjust.at("temperature"), adjust.at("tint")}), expected)
            << nx << ", " << ny;
        EXPECT_LE(model->historySteps().size(), before + 1);
        EXPECT_FALSE(model->pickingWhite);
    }
    model->pickWhiteBalance();
    model->toggleHeal();
    EXPECT_FALSE(model->pickingWhite);
    model->toggleHeal();
    EXPECT_FALSE(model->healing);
}

TEST_F(ToolsTest, WhatTheToolsMadeIsDrawnAndComesBackToTheBit)
{
    open({"a.jpg"});
    std::vector<CGPoint> stroke;
    for (int i = 0; i < 200; ++i)
        stroke.push_back({i / 199.0, std::sin(i) / 2 + 0.5});
    model->healStrokeNative(stroke);
    EXPECT_THAT(model->historySteps(), ElementsAre("Original", "Retouch"));
    EXPECT_EQ(model->ciHealSpots.value().size(), 200u);
    for (const char* kind : {"radial", "gradient", "brush", "eraser"}) {
        model->addLightAt(kind, 1, 0);
        const std::string id = model->selectedLightID;
        for (const char* amount : {"brightness", "warmth", "contrast", "saturation"})
            model->updateLight(id, amount, -100);
        model->updateLight(id, "radius", 1.5);
        model->appendStroke(id, stroke);
    }
    for (const char* words :
         {"", " \n", "👩‍👩‍👧‍👦🇨🇭 é\nعربي", "\"\\"}) {
        model->addText();
        model->setText(model->selectedTextID, words);
        model->setTextSize(model->selectedTextID, 0.3);
    }
    model->setCropNative({0.99, 0.99, 0.01, 0.01});
    model->setCanvasShape("16x9");
    model->flip("v");
    model->parkActiveState();
    ASSERT_TRUE(image(0).thumb);
    EXPECT_GT(image(0).thumb->width, image(0).thumb->height);

    const EditState made = model->editState();
    ASSERT_TRUE(model->saveWork());
    restart();
    open({"a.jpg"});
    EXPECT_EQ(model->editState(), made);
}

} // namespace
} // namespace orvane
