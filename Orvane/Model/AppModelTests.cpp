#include "ModelTesting.h"

#include "Bitmap.h"
#include "Geometry.h"
#include "LookThumbs.h"

#include <algorithm>
#include <cstdlib>

namespace orvane {
namespace {

using testing::ElementsAre;

// Every field of an edit has an observer of its own, and only those hear of an edit whose fields
// differ.
TEST_F(ModelTest, RestoringTellsOnlyTheFieldsThatDiffer)
{
    open({"a.jpg"});
    AppModel& m = *model;
    std::vector<std::string> told;
    const auto watch = [&](const char* name, auto& field) {
        return field.onValueChanged([&told, name] { told.push_back(name); });
    };
    const auto watches = std::make_tuple(
        watch("adjust", m.adjust), watch("curve", m.curve), watch("lights", m.lights),
        watch("healSpots", m.ciHealSpots), watch("crop", m.crop), watch("rotation", m.rotation),
        watch("flipH", m.flipH), watch("flipV", m.flipV), watch("aspectId", m.aspectId),
        watch("lookStrength", m.lookStrength), watch("lutID", m.lutID),
        watch("lutAmount", m.lutAmount), watch("canvasAspect", m.canvasAspect),
        watch("canvasFill", m.canvasFill), watch("canvasColor", m.canvasColor),
        watch("texts", m.texts));

    const struct {
        const char* field;
        std::function<void(EditState&)> change;
    } cases[] = {
        {"adjust", [](EditState& s) { s.adjust["exposure"] = 1; }},
        {"curve",
         [](EditState& s) {
             s.curve["r"] = {{0, 9}};
         }},
        {"lights", [](EditState& s) { s.lights.emplace_back(); }},
        {"healSpots",
         [](EditState& s) {
             s.healSpots = {{0.1, 0.2, 0.3}};
         }},
        {"crop",
         [](EditState& s) {
             s.crop = {0, 0, 0.5, 1};
         }},
        {"rotation", [](EditState& s) { s.rotation = 2; }},
        {"flipH", [](EditState& s) { s.flipH = true; }},
        {"flipV", [](EditState& s) { s.flipV = true; }},
        {"aspectId", [](EditState& s) { s.aspectId = "3:2"; }},
        {"lookStrength", [](EditState& s) { s.lookStrength = 20; }},
        {"lutID", [](EditState& s) { s.lutID = "lut_none"; }},
        {"lutAmount", [](EditState& s) { s.lutAmount = 30; }},
        {"canvasAspect", [](EditState& s) { s.canvasAspect = 1; }},
        {"canvasFill", [](EditState& s) { s.canvasFill = "color"; }},
        {"canvasColor", [](EditState& s) { s.canvasColor = "#123456"; }},
        {"texts", [](EditState& s) { s.texts.emplace_back(); }},
    };
    EditState state = m.editState();
    for (const auto& [field, change] : cases) {
        change(state);
        m.restore(state);
        EXPECT_THAT(told, ElementsAre(field));
        EXPECT_EQ(m.editState(), state) << field;
        told.clear();
        m.restore(state);
        EXPECT_TRUE(told.empty()) << field;
    }
}

TEST_F(ModelTest, ActivatingParksOneEditAndBringsTheOther)
{
    EXPECT_EQ(model->activeName(), "this image");
    open({"a.jpg", "b.jpg"});
    expose(10);
    model->lastLook = Looks::Look{"x", "X", "", {}};
    model->healing = true;
    const std::string a = image(0).id;
    const Thumbnail before = image(0).thumb;
    const int version = model->sourceImageVersion;

    activate(1);
    EXPECT_EQ(model->activeName(), "b.jpg");
    EXPECT_EQ(exposure(), 0);
    EXPECT_EQ(image(0).state.adjust.at("exposure"), 10);
    EXPECT_NE(bytesOf(*image(0).thumb), bytesOf(*before));
    EXPECT_EQ(model->sourceImageVersion, version + 1);
    EXPECT_FALSE(model->history.value().canUndo());
    EXPECT_FALSE(model->lastLook.value());
    EXPECT_FALSE(model->healing);
    EXPECT_TRUE(model->sourceImage.value()->isSame(image(1).pixels->image()));

    // Without parking, what the fields hold is dropped.
    expose(50);
    model->activate(model->activeImageID, false);
    EXPECT_EQ(exposure(), 0);
    model->activate("nobody", true);
    EXPECT_EQ(model->activeName(), "b.jpg");
    model->activate(a, true);
    EXPECT_EQ(exposure(), 10);
    EXPECT_TRUE(model->history.value().canUndo());
}

TEST_F(ModelTest, AnActivationFinishesTheToolInUse)
{
    open({"a.jpg", "b.jpg"});
    model->cropMode = true;
    model->cropSession = ModalSession<CropSnapshot>({model->crop.value(), "free"});
    model->crop = CGRect(0, 0, 0.5, 0.5);
    activate(1);
    EXPECT_FALSE(model->cropMode);
    EXPECT_EQ(image(0).history.undoStack().size(), 2u);
    activate(0);
    EXPECT_THAT(model->historySteps(), ElementsAre("Original", "Crop"));

    // Left as it was entered: no step.
    model->cropMode = true;
    model->cropSession = ModalSession<CropSnapshot>({model->crop.value(), "free"});
    model->endActiveTool();
    EXPECT_EQ(model->historySteps().size(), 2u);
    EXPECT_FALSE(model->cropSession.value());

    model->relightMode = true;
    model->selectedLightID = std::string("l_1");
    model->resetTools();
    EXPECT_FALSE(model->relightMode);
    EXPECT_EQ(model->selectedLightID.value(), "");
}

TEST_F(ModelTest, SelectsTheLastTextWhenTheSelectedOneGoes)
{
    open({"a.jpg"});
    EditState state;
    state.texts.resize(2);
    state.texts[0].id = "t_1";
    state.texts[1].id = "t_2";
    model->restore(state);
    EXPECT_EQ(model->selectedTextID.value(), "t_2");
    model->selectedTextID = std::string("t_1");
    model->restore(state);
    EXPECT_EQ(model->selectedTextID.value(), "t_1");
    state.texts.erase(state.texts.begin());
    model->restore(state);
    EXPECT_EQ(model->selectedTextID.value(), "t_2");
    model->restore(EditState());
    EXPECT_EQ(model->selectedTextID.value(), "");
}

TEST_F(ModelTest, OpensFilesThroughThePanel)
{
    desktop.choices = {{picture("a.jpg"), picture("b.png")}, {picture("c.jpg")}, {}};
    model->openImage(false);
    EXPECT_EQ(imageNames(), "a.jpg, b.png");
    EXPECT_EQ(desktop.chrome, (WindowChrome{"a.jpg", folder / "a.jpg", false}));
    model->openImage(true);
    EXPECT_EQ(imageNames(), "a.jpg, b.png, c.jpg");
    EXPECT_EQ(model->activeName(), "a.jpg");
    model->openImage(false);
    EXPECT_EQ(imageNames(), "a.jpg, b.png, c.jpg");

    ASSERT_EQ(desktop.openPanels.size(), 3u);
    EXPECT_EQ(desktop.openPanels[0].message, "Choose an image to edit.");
    EXPECT_EQ(desktop.openPanels[0].prompt, "Open");
    EXPECT_EQ(desktop.openPanels[1].message, "Choose images to add.");
    EXPECT_EQ(desktop.openPanels[1].prompt, "Add");
    EXPECT_TRUE(desktop.openPanels[1].allowsSeveral);
    EXPECT_EQ(desktop.openPanels[1].extensions.size(), 11u);

    // Work that would be lost is asked about before the panel.
    expose(5);
    desktop.answers = {2};
    model->openImage(false);
    EXPECT_EQ(desktop.openPanels.size(), 3u);
}

TEST_F(ModelTest, KnowsTheFileOfTheActiveImage)
{
    EXPECT_FALSE(model->activeFileURL());
    open({"a.jpg"});
    EXPECT_EQ(model->activeFileURL(), folder / "a.jpg");
    model->revealOriginal();
    EXPECT_THAT(desktop.revealed, ElementsAre(folder / "a.jpg"));
    std::filesystem::remove(folder / "a.jpg");
    EXPECT_FALSE(model->activeFileURL());
    model->revealOriginal();
    EXPECT_EQ(desktop.revealed.size(), 1u);
    paste();
    EXPECT_FALSE(model->activeFileURL());
}

// The picture of an image that is not looked at is let go, and comes back when it is.
TEST_F(ModelTest, DecodesAgainWhatWasLetGo)
{
    writePicture(folder / "a.png", {200, 10, 10}, EncodedFormat::Png, 300, 200);
    const auto bytes = readFile(folder / "a.png", 1'000'000);
    auto decoded = SourcePixels::decoded(*bytes);
    ASSERT_TRUE(decoded);
    const auto pixels = decoded->pixels;
    EXPECT_TRUE(pixels->image().isSame(decoded->image));
    const std::weak_ptr<const Node> node = decoded->image.node();
    decoded->image = {};
    EXPECT_TRUE(node.expired());
    const CIImage again = pixels->image();
    EXPECT_EQ(again.extent(), CGRect(0, 0, 300, 200));
    EXPECT_EQ(pixels->thumbBase().extent(), CGRect(0, 0, 64, 43));
    const auto drawn = Baker::cgImage(pixels->thumbBase());
    ASSERT_TRUE(drawn);
    EXPECT_NEAR(bytesOf(*drawn)[2], 200, 1); // blue, green, red
    EXPECT_NEAR(bytesOf(*drawn)[1], 10, 1);
    EXPECT_FALSE(SourcePixels::decoded({1, 2, 3}));
}

// The quick way down gives the picture of the long one, its edges included.
TEST_F(ModelTest, ReducesLargeImagesByAveragingFirst)
{
    auto bitmap = std::make_shared<Bitmap>(1501, 1000, 3, SampleType::U8, AlphaKind::None);
    unsigned noise = 1;
    for (int y = 0; y < bitmap->height(); ++y) {
        for (int i = 0; i < bitmap->width() * 3; ++i) {
            noise = noise * 1664525 + 1013904223;
            bitmap->row(y)[i] = uint8_t(i / 3 * 200 / bitmap->width() + int(noise >> 27));
        }
    }
    const CIImage image = CIImage::withBitmap(bitmap);
    const auto quick = Baker::cgImage(reducedCopy(image, 64));
    const auto slow = Baker::cgImage(Geometry::resized(image, 64));
    ASSERT_TRUE(quick && slow);
    ASSERT_EQ(quick->width, 64);
    ASSERT_EQ(quick->height, slow->height);
    int largest = 0;
    for (int y = 0; y < slow->height; ++y) {
        for (int x = 0; x < slow->width * 4; ++x) {
            const auto pixel = [&](const CGImage& drawn) {
                return int(drawn.pixels.data()[size_t(y) * drawn.rowBytes + size_t(x)]);
            };
            largest = std::max(largest, std::abs(pixel(*quick) - pixel(*slow)));
        }
    }
    EXPECT_LE(largest, 3);
    EXPECT_EQ(reducedCopy(image, 5000).extent(), image.extent());
}

TEST_F(ModelTest, FitsLooksToTheActiveImageInTheBackground)
{
    picture("a.jpg", {245, 240, 235});
    picture("b.jpg", {20, 40, 90});
    open({"a.jpg", "b.jpg"});
    waitFor([&] { return !model->isFittingLooks(); });
    const auto ofTheFirst = model->lookRecipes.value();
    activate(1);
    EXPECT_TRUE(model->lookPreviews.value().empty()); // those of another picture
    waitFor([&] { return !model->isFittingLooks(); });
    EXPECT_FALSE(model->lookRecipes.value() == ofTheFirst);
    EXPECT_EQ(model->looks.value().size(), 10u);
    EXPECT_EQ(model->lookRecipes.value(), LookThumbs::fitted(*model->geometrySource()));
    EXPECT_EQ(model->lookPreviews.value().size(), 10u);
    EXPECT_EQ(model->lookPreviews.value().at("mono")->width, 96);

    // A model that goes while it works takes the work with it.
    activate(0);
    model.reset();
    QCoreApplication::processEvents();
    restart();
    EXPECT_TRUE(model->looks.value().empty());
}

} // namespace
} // namespace orvane
