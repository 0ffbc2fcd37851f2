#include "ModelTesting.h"

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using SessionTest = ModelTest;

TEST_F(SessionTest, TellsOfFilesThatAreNoPictures)
{
    const auto good = picture("good.jpg");
    put("bad.jpg", "no picture");
    put("worse.png", "");
    const auto bad = folder / "bad.jpg";
    const auto worse = folder / "worse.png";
    const auto gone = folder / "gone.jpg";
    // Larger than any picture, and without a byte of that on the disk.
    const auto huge = picture("huge.jpg");
    std::filesystem::resize_file(huge, size_t(5) << 30);
    const struct {
        std::vector<std::filesystem::path> files;
        const char* message;
        const char* names;
    } cases[] = {
        {{bad}, "Couldn't open that file", "bad.jpg"},
        {{folder}, "Couldn't open that file", nullptr},
        {{huge}, "Couldn't open that file", "huge.jpg"},
        {{bad, gone, worse}, "Couldn't open those files", "bad.jpg, gone.jpg, worse.png"},
        {{good, bad, good, gone}, "2 opened, 2 couldn't be read", "bad.jpg, gone.jpg"},
        {{good}, nullptr, nullptr},
        {{}, nullptr, nullptr},
    };
    for (const auto& [files, message, names] : cases) {
        const auto images = model->readImageFiles(files);
        const auto alerts = desktop.takeAlerts();
        ASSERT_EQ(alerts.size(), message ? 1u : 0u);
        if (message) {
            EXPECT_EQ(alerts[0].message, message);
        }
        if (names) {
            EXPECT_EQ(alerts[0].informative, std::string("Not a readable image: ") + names);
        }
        EXPECT_EQ(images.size(), size_t(std::count(files.begin(), files.end(), good)));
    }
}

TEST_F(SessionTest, AdoptsBesideOrInPlace)
{
    open({"a.jpg", "b.jpg"}, true);
    EXPECT_EQ(model->activeName(), "a.jpg");
    EXPECT_TRUE(image(0).id.starts_with("img_") && image(0).id.size() == 12) << image(0).id;
    EXPECT_EQ(image(0).source, source("a.jpg"));
    EXPECT_EQ(model->imageThumbs().size(), 2u);
    EXPECT_FALSE(model->isDirty());

    activate(1);
    model->healing = true;
    open({"c.jpg"}, true);
    EXPECT_EQ(model->activeName(), "b.jpg");
    EXPECT_TRUE(model->healing);
    open({"d.jpg"}, false);
    EXPECT_EQ(imageNames(), "d.jpg");
    EXPECT_EQ(model->activeName(), "d.jpg");
    EXPECT_FALSE(model->healing);

    // What is no picture is dropped without a word; with nothing left nothing is active.
    model->adoptIntoSession({{.data = {1, 2, 3}, .name = "x", .source = {}}}, false);
    EXPECT_THAT(desktop.alerts, IsEmpty());
    EXPECT_EQ(model->activeImageID.value(), "");
    EXPECT_FALSE(model->sourceImage.value());
    EXPECT_EQ(desktop.chrome.title, "Orvane");
}

TEST_F(SessionTest, KnowsAFileByWhicheverPath)
{
    picture("a.jpg", {200, 0, 0});
    std::filesystem::create_directories(folder / "far" / "inner");
    writePicture(folder / "far" / "a.jpg", {0, 0, 200});
    std::filesystem::create_directory_symlink(folder / "far" / "inner", folder / "link");
    const struct {
        std::filesystem::path path;
        std::string source;
    } cases[] = {
        {folder / "a.jpg", source("a.jpg")},
        {folder / "." / "" / "a.jpg", source("a.jpg")},
        {std::filesystem::relative(folder / "a.jpg"), source("a.jpg")},
        {folder / "far" / ".." / "a.jpg", source("a.jpg")},
        // ".." leads out of what the link points to, not out of where it lies.
        {folder / "link" / ".." / "a.jpg", source("far/a.jpg")},
    };
    for (const auto& [path, expected] : cases) {
        model->adoptIntoSession(model->readImageFiles({path}), false);
        EXPECT_EQ(image(0).source, expected) << path;
        model->removeImage(image(0).id);
        desktop.pasteboardFiles = {path};
        model->pasteImage();
        EXPECT_EQ(image(0).source, expected) << path;
    }
}

TEST_F(SessionTest, LetsGoOfARemovedPicture)
{
    open({"a.jpg", "b.jpg"});
    activate(1);
    activate(0);
    model->duplicateImage();
    waitFor([&] { return !model->isFittingLooks(); });
    const std::weak_ptr<const Node> decoded = model->sourceImage.value()->node();
    const auto removeNext = [&] {
        model->removeImage(image(0).id);
        waitFor([&] { return !model->isFittingLooks(); });
    };
    removeNext();
    EXPECT_FALSE(decoded.expired()); // its copy is on screen
    removeNext();
    EXPECT_EQ(imageNames(), "b.jpg");
    EXPECT_TRUE(decoded.expired());
}

TEST_F(SessionTest, PastesABitmapOrTheFileItCameFrom)
{
    model->pasteImage();
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"Nothing to paste", "The clipboard doesn't hold an image."}));
    paste();
    paste(PastedPicture::Kind::Tiff);
    EXPECT_EQ(model->activeName(), "Pasted 2.tiff");
    EXPECT_FALSE(image(1).source);
    model->removeImage(image(1).id);
    desktop.pasteboardFiles = {picture("a.jpg")};
    paste();
    EXPECT_EQ(image(1).source, source("a.jpg"));
    desktop.pasteboardFiles = {folder / "gone.jpg"};
    paste();
    EXPECT_EQ(imageNames(), "Pasted 1.png, a.jpg, Pasted 3.png");

    // A file manager offers a file and no picture.
    desktop.pasteboardPicture.reset();
    desktop.pasteboardFiles = {picture("b.jpg")};
    model->pasteImage();
    EXPECT_EQ(model->activeName(), "b.jpg");
    EXPECT_EQ(model->pastedCount, 3);
    // What cannot be decoded changes nothing.
    activate(0);
    const Alert nothing{"Nothing to paste", "The clipboard doesn't hold an image."};
    desktop.pasteboardFiles = {folder / "gone.jpg"};
    model->pasteImage();
    desktop.pasteboardPicture = PastedPicture{PastedPicture::Kind::Png, {1, 2, 3}};
    model->pasteImage();
    EXPECT_THAT(desktop.takeAlerts(), ElementsAre(nothing, nothing));
    EXPECT_EQ(imageNames(), "Pasted 1.png, a.jpg, Pasted 3.png, b.jpg");
    EXPECT_EQ(model->activeName(), "Pasted 1.png");
    EXPECT_EQ(model->pastedCount, 3);
}

TEST_F(SessionTest, NamesDuplicatesAndPutsThemBesideTheirOriginal)
{
    open({"a.b.jpg", "none"});
    for (const size_t each : {0, 0, 1, 4}) {
        activate(each);
        model->duplicateImage();
    }
    EXPECT_EQ(imageNames(),
              "a.b.jpg, a.b copy 2.jpg, a.b copy 2 copy.jpg, a.b copy.jpg, none, none copy");
    EXPECT_EQ(model->activeName(), "none copy");

    // A photo's second version needs a collection; a picture without a source does not.
    EXPECT_EQ(model->currentCollectionName.value(), "Untitled");
    EXPECT_THAT(model->collections.value().at(0).sources,
                ElementsAre(source("a.b.jpg"), source("none")));
    restart();
    paste();
    expose(7);
    model->duplicateImage();
    EXPECT_EQ(model->currentCollectionName.value(), "");
    EXPECT_EQ(exposure(), 7);
    EXPECT_FALSE(model->history.value().canUndo());
    EXPECT_EQ(model->saveTitle(), "Save All Edits"); // as its original, it is not stored

    // The next free name.
    restart();
    open({"a.b.jpg"});
    model->duplicateImage();
    EXPECT_EQ(model->currentCollectionName.value(), "Untitled 2");

    // No collection can be made: no copy.
    restart();
    put("support/Orvane/collections.json", "[");
    put("support/Orvane/collections.json.bak", "[");
    open({"a.b.jpg"});
    model->duplicateImage();
    EXPECT_EQ(imageNames(), "a.b.jpg");
    EXPECT_THAT(alertMessages(), ElementsAre("Couldn't make a collection to hold the new version"));
}

TEST_F(SessionTest, RemovesWithTheEditStoredOrAfterAQuestion)
{
    const Alert question{"Remove “Pasted 1.png” with unsaved edits?",
                         "This image was pasted or dropped onto the canvas, so Orvane can't save "
                         "its edits. Removing it discards them.",
                         {"Remove", "Cancel"}};
    open({"a.jpg"});
    paste();
    open({"b.jpg"}, true);
    model->removeImage("nobody");

    // The pasted one asks, once it is edited.
    expose(3);
    const std::string pasted = image(1).id;
    desktop.answers = {1, 0};
    model->removeImage(pasted);
    EXPECT_EQ(imageNames(), "a.jpg, Pasted 1.png, b.jpg");
    model->removeImage(pasted);
    EXPECT_EQ(imageNames(), "a.jpg, b.jpg");
    EXPECT_EQ(model->activeName(), "b.jpg"); // at the same place
    EXPECT_THAT(desktop.takeAlerts(), ElementsAre(question, question));

    // One with a source is stored, the active one with what the fields hold.
    expose(4);
    model->removeImage(model->activeImageID);
    EXPECT_EQ(model->activeName(), "a.jpg"); // the new last
    open({"b.jpg"}, true);
    EXPECT_EQ(image(1).state.adjust.at("exposure"), 4);

    // One that is not active goes without another activation.
    const int version = model->sourceImageVersion;
    model->removeImage(image(1).id);
    EXPECT_EQ(model->sourceImageVersion, version);

    // It stays when it cannot be stored.
    expose(5);
    put("support/Orvane/edits.json", "{");
    put("support/Orvane/edits.json.bak", "{");
    model->removeImage(model->activeImageID);
    EXPECT_THAT(alertMessages(), ElementsAre("Couldn't save “a.jpg” before removing it"));
    EXPECT_EQ(imageNames(), "a.jpg");
    model->removeImage(model->activeImageID);
    EXPECT_EQ(model->sourceImageVersion, version + 1);
    EXPECT_FALSE(model->sourceImage.value());
    EXPECT_TRUE(model->images().empty());
    EXPECT_EQ(desktop.chrome, (WindowChrome{"Orvane", {}, false}));
}

TEST_F(SessionTest, CarriesAStyleOver)
{
    open({"a.jpg", "b.jpg", "c.jpg"});
    EditState state;
    state.adjust = {{"exposure", 9}};
    state.curve = {{"r", {{0, 5}, {255, 250}}}};
    state.lutID = "lut_gone";
    state.lutAmount = 40;
    state.rotation = 3;
    state.flipH = true;
    state.lookStrength = 5;
    model->restore(state);
    model->commitHistory();
    model->applyStyle();
    EXPECT_EQ(model->historySteps().size(), 2u);
    model->copyStyle();
    EXPECT_TRUE(model->hasCopiedStyle);

    EditState styled;
    styled.adjust = state.adjust;
    styled.curve = state.curve;
    styled.lutID = state.lutID;
    styled.lutAmount = state.lutAmount;
    activate(1);
    model->lastLook = Looks::Look{};
    model->applyStyle();
    EXPECT_EQ(model->editState(), styled);
    EXPECT_TRUE(model->lutMissing);
    EXPECT_FALSE(model->canAdjustLookStrength());
    EXPECT_THAT(model->historySteps(), ElementsAre("Original", "Curves"));

    styled.flipV = true;
    model->restore(styled);
    model->applyStyleToAll();
    EXPECT_EQ(model->editState(), styled);
    EXPECT_EQ(image(2).state.adjust, state.adjust);
    for (size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(image(i).history.canUndo()) << i;
}

TEST_F(SessionTest, TakesPhotosFromTheLibrary)
{
    FakePhotos library;
    photos = &library;
    restart();
    const auto bytes = *readFile(picture("p.jpg"), 1'000'000);

    model->addPhotos({"1", "2"});
    EXPECT_THAT(library.asked, ElementsAre("1", "2"));
    library.completion({{bytes, "two.jpg", "2"}, {bytes, "one.jpg", "1"}});
    EXPECT_EQ(imageNames(), "two.jpg, one.jpg");
    EXPECT_EQ(image(0).source, "photos:2");
    model->addPhotos({"3"});
    library.completion({});
    EXPECT_EQ(model->images().size(), 2u);

    model->importFromPhotos();
    library.completion({{bytes, "picked.jpg", ""}});
    EXPECT_EQ(imageNames(), "picked.jpg");
    EXPECT_FALSE(image(0).source);

    // The question comes again when there is new work behind the panel.
    model->importFromPhotos();
    expose(3);
    desktop.answers = {1, 0};
    library.completion({{bytes, "other.jpg", ""}});
    EXPECT_EQ(imageNames(), "picked.jpg");
    EXPECT_EQ(exposure(), 3);
    library.completion({{bytes, "other.jpg", ""}});
    EXPECT_EQ(imageNames(), "other.jpg");

    // Refused: a dirty session that is kept, no window, a model that has gone.
    library.completion = nullptr;
    expose(1);
    desktop.answers = {1};
    model->importFromPhotos();
    EXPECT_FALSE(library.completion);
    model->revertAllEdits();
    desktop.isWindowShown = false;
    model->importFromPhotos();
    EXPECT_FALSE(library.completion);
    model->addPhotos({"1"});
    model.reset();
    library.completion({{bytes, "late.jpg", "1"}});
}

} // namespace
} // namespace orvane
