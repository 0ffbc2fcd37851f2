#include "ModelTesting.h"

#include <new>

namespace orvane {
namespace {

using testing::ElementsAre;

class CollectionsTest : public ModelTest {
protected:
    std::string collectionNames() const
    {
        std::string text;
        for (const Collection& each : model->collections.value())
            text += (text.empty() ? "" : ", ") + each.name;
        return text;
    }
    Collection named(const std::string& name) const
    {
        for (const Collection& each : model->collections.value()) {
            if (each.name == name)
                return each;
        }
        return {};
    }
};

TEST_F(CollectionsTest, SavesUnderANameAndReplacesItsNamesake)
{
    EXPECT_FALSE(model->saveCollection("Trip"));
    open({"a.jpg", "b.jpg"});
    EXPECT_FALSE(model->saveCollection(" \n"));
    expose(3);
    EXPECT_TRUE(model->saveCollection("  Trip\n"));
    EXPECT_EQ(model->currentCollectionName.value(), "Trip");
    const Collection first = named("Trip");
    EXPECT_EQ(first.edits.at(0).adjust.at("exposure"), 3);
    EXPECT_EQ(first.updatedAt, clock - 978307200);
    EXPECT_FALSE(model->isDirty());

    clock += 1;
    expose(4);
    EXPECT_TRUE(model->isDirty());
    EXPECT_EQ(model->saveTitle(), "Update “Trip”");
    EXPECT_TRUE(model->saveWork());
    EXPECT_EQ(model->collections.value().size(), 1u);
    EXPECT_NE(named("Trip").id, first.id);
    EXPECT_FALSE(std::filesystem::exists(stores / "edits.json"));
    clock += 1;
    EXPECT_TRUE(model->saveCollection("tRIP"));
    EXPECT_EQ(collectionNames(), "tRIP");
    clock += 1;
    EXPECT_TRUE(model->saveCollection("Ärger"));
    clock += 1;
    EXPECT_TRUE(model->saveCollection("ärger"));
    EXPECT_EQ(collectionNames(), "ärger, tRIP");

    // Removed from a collection: no question, and no edit of its own; but the collection differs.
    expose(9);
    model->removeImage(model->activeImageID);
    EXPECT_TRUE(model->isDirty());
    EXPECT_FALSE(std::filesystem::exists(stores / "edits.json"));
    // An entry that has gone holds nothing that could be lost.
    model->currentCollectionName = std::string("Elsewhere");
    EXPECT_FALSE(model->isDirty());
}

TEST_F(CollectionsTest, AsksWhenAnImageHasNoSource)
{
    const auto informative = [](std::string one, std::string came, std::string it) {
        return "A collection remembers where your images live, not copies of them — and " + one
            + " dropped straight onto the canvas, so Orvane doesn't know where " + came
            + " from. Add " + it + " with the + button (or from Photos) and " + it
            + " will save fine.";
    };
    open({"a.jpg"});
    paste();
    desktop.answers = {1, 0, 0};
    EXPECT_FALSE(model->saveCollection("Trip"));
    EXPECT_TRUE(model->saveCollection("Trip"));
    const Alert question{"1 image can't be saved in a collection",
                         informative("one image was", "it came", "it"),
                         {"Save the Rest", "Cancel"}};
    EXPECT_THAT(desktop.takeAlerts(), ElementsAre(question, question));
    EXPECT_THAT(named("Trip").sources, ElementsAre(source("a.jpg")));

    restart();
    paste();
    paste();
    EXPECT_FALSE(model->saveCollection("Nothing"));
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"2 images can't be saved in a collection",
                                  informative("2 images were", "they came", "them"),
                                  {"Save the Rest", "Cancel"}}));
}

TEST_F(CollectionsTest, OpensWithItsOwnEdits)
{
    open({"a.jpg", "b.jpg"});
    expose(1);
    EXPECT_TRUE(model->saveWork()); // in the store of edits, which the collection must not use
    model->duplicateImage();
    expose(2);
    EXPECT_TRUE(model->saveWork());

    restart();
    const Collection saved = named("Untitled");
    model->loadSources(saved);
    EXPECT_EQ(imageNames(), "a.jpg, a.jpg, b.jpg");
    EXPECT_EQ(image(0).state.adjust.at("exposure"), 1);
    EXPECT_EQ(image(1).state.adjust.at("exposure"), 2);
    EXPECT_EQ(exposure(), 1);
    EXPECT_THAT(model->historySteps(), ElementsAre("Original"));
    EXPECT_EQ(desktop.chrome, (WindowChrome{"Untitled", {}, false}));
    EXPECT_FALSE(model->suppressSavedRestore);

    // Some of the files have gone, or are no pictures any more.
    std::filesystem::remove(folder / "a.jpg");
    model->loadSources(saved);
    EXPECT_EQ(imageNames(), "b.jpg");
    EXPECT_TRUE(model->isDirty());
    put("b.jpg", "no picture");
    model->loadSources(saved);
    EXPECT_EQ(imageNames(), "b.jpg");
    EXPECT_THAT(
        desktop.takeAlerts(),
        ElementsAre(
            Alert{"Some images couldn't be found",
                  "“Untitled” opened without the images that have been moved or deleted since it "
                  "was saved. The rest came back with their edits."},
            Alert{"That collection's images couldn't be found",
                  "“Untitled” refers to images that have been moved or deleted. A collection "
                  "stores your edits, not copies of your images — so it needs the originals to "
                  "reopen."}));
}

TEST_F(CollectionsTest, ReadsAPhotoOfSeveralVersionsOnce)
{
    open({"a.jpg"});
    model->duplicateImage();
    expose(2);
    EXPECT_TRUE(model->saveWork());
    restart();
    model->loadSources(named("Untitled"));
    EXPECT_EQ(image(0).pixels, image(1).pixels);
    EXPECT_EQ(model->sourceImageVersion, 1);
    EXPECT_NE(bytesOf(*image(0).thumb), bytesOf(*image(1).thumb));
    // Loose again, they differ from what their source is stored with.
    desktop.answers = {0};
    model->deleteCollection(named("Untitled"));
    EXPECT_EQ(model->soleDirtyName(), "a.jpg");
}

TEST_F(CollectionsTest, ReadsStoredEditsAgainAfterAnOpeningThatFailed)
{
    open({"a.jpg"});
    EXPECT_TRUE(model->saveCollection("Trip"));
    {
        const auto failing = model->sourceImage.onValueChanged([] { throw std::bad_alloc(); });
        EXPECT_THROW(model->loadSources(named("Trip")), std::bad_alloc);
    }
    EXPECT_FALSE(model->suppressSavedRestore);
}

// Whoever calls holds a copy of the list's entry, which may be stored anew meanwhile.
TEST_F(CollectionsTest, GoesByTheStoredEntryNotByAnOldCopy)
{
    open({"a.jpg"});
    EXPECT_TRUE(model->saveCollection("Trip"));
    const Collection old = named("Trip");
    expose(7);
    desktop.answers = {0};
    EXPECT_TRUE(model->confirmDiscardingWork());
    model->loadSources(old);
    EXPECT_EQ(exposure(), 7);
    EXPECT_FALSE(model->isDirty());
    // An entry of the list itself, which goes with every change of the list.
    model->loadSources(model->collections.value().front());
    EXPECT_EQ(exposure(), 7);

    clock += 1;
    model->renameCollection(old, "Journey");
    EXPECT_EQ(collectionNames(), "Journey");
    EXPECT_EQ(model->currentCollectionName.value(), "Journey");
    const Collection journey = named("Journey");
    EXPECT_TRUE(model->saveWork()); // with another id
    desktop.takeAlerts();

    // One that is not in the list at all.
    const Collection gone{"gone", "Gone", {}, {}, 0};
    model->renameCollection(gone, "Back");
    model->deleteCollection(gone);
    model->deleteCollection(old); // under its old name
    EXPECT_THAT(desktop.takeAlerts(), testing::IsEmpty());
    EXPECT_EQ(collectionNames(), "Journey");
    expose(8);
    EXPECT_TRUE(model->isDirty());
    desktop.answers = {0};
    model->deleteCollection(journey);
    EXPECT_EQ(collectionNames(), "");
    EXPECT_TRUE(model->isDirty());
}

TEST_F(CollectionsTest, AsksAgainWhenThereIsNewWorkBeforeThePhotosCome)
{
    FakePhotos library;
    photos = &library;
    restart();
    const auto bytes = *readFile(picture("p.jpg"), 1'000'000);
    const Collection other{"id", "Other", {"photos:1"}, {EditState()}, 0};
    open({"a.jpg"});
    for (const size_t answer : {2, 1}) { // Cancel, Discard
        model->loadSources(other);
        expose(double(answer));
        desktop.answers = {answer};
        library.completion({{bytes, "one.jpg", "1"}});
        EXPECT_THAT(alertMessages(), ElementsAre("Save your edits to a.jpg?"));
        EXPECT_EQ(imageNames(), answer == 2 ? "a.jpg" : "one.jpg");
        EXPECT_EQ(exposure(), answer == 2 ? 2 : 0);
    }
    // Stored meanwhile, with another image: what opens is what is stored.
    EXPECT_TRUE(model->saveCollection("Other"));
    const Collection old = named("Other");
    model->loadSources(old);
    open({"b.jpg"}, true);
    expose(5);
    desktop.answers = {0};
    library.completion({{bytes, "one.jpg", "1"}});
    library.completion({{bytes, "one.jpg", "1"}});
    EXPECT_THAT(alertMessages(), ElementsAre("Update “Other”?"));
    EXPECT_EQ(imageNames(), "b.jpg, one.jpg");
    EXPECT_EQ(image(1).state.adjust.at("exposure"), 5);
}

TEST_F(CollectionsTest, SurviveAStartThatCannotReadThem)
{
    open({"a.jpg", "b.jpg"});
    EXPECT_TRUE(model->saveCollection("Trip"));
    clock += 1;
    EXPECT_TRUE(model->saveCollection("Home"));
    const std::string good = content("support/Orvane/collections.json");

    // The last save's backup stands in for a damaged file.
    put("support/Orvane/collections.json", "[");
    restart();
    EXPECT_EQ(collectionNames(), "Trip");

    // Out of reach at the start, and back at the first save, which must not replace it.
    put("support/Orvane/collections.json.bak", "[");
    restart();
    EXPECT_EQ(collectionNames(), "");
    put("support/Orvane/collections.json", good);
    open({"b.jpg"});
    clock += 1;
    EXPECT_TRUE(model->saveCollection("trip"));
    EXPECT_EQ(collectionNames(), "trip, Home, Trip 2");
    EXPECT_EQ(named("Trip 2").sources.size(), 2u);
    // Seen by now: what is deleted stays deleted.
    desktop.answers = {0};
    model->deleteCollection(named("Trip 2"));
    EXPECT_EQ(collectionNames(), "trip, Home");
}

// Files first, then photos, in the collection's order within each kind, whatever the library's is.
TEST_F(CollectionsTest, OpensPhotosOfTheLibrary)
{
    FakePhotos library;
    photos = &library;
    restart();
    const auto bytes = *readFile(picture("a.jpg"), 1'000'000);
    Collection mixed{
        "id", "Mixed", {"photos:1", source("a.jpg"), "photos:2", "photos:1", "?:x"}, {}, 0};
    for (const double value : {1, 2, 3, 4, 5}) {
        EditState state;
        state.adjust["exposure"] = value;
        mixed.edits.push_back(state);
    }
    const auto exposures = [&] {
        std::vector<double> values;
        for (const auto& item : model->sessionItems())
            values.push_back(item.current.adjust.at("exposure"));
        return values;
    };
    model->loadSources(mixed);
    EXPECT_THAT(library.asked, ElementsAre("1", "2"));
    EXPECT_TRUE(model->images().empty());
    library.completion({{bytes, "two.jpg", "2"}, {bytes, "one.jpg", "1"}});
    EXPECT_EQ(imageNames(), "a.jpg, one.jpg, two.jpg, one.jpg");
    EXPECT_THAT(exposures(), ElementsAre(2, 1, 3, 4));
    EXPECT_THAT(alertMessages(), ElementsAre("Some images couldn't be found"));

    model->loadSources(mixed);
    library.completion({{bytes, "two.jpg", "2"}});
    EXPECT_THAT(exposures(), ElementsAre(2, 3));
}

TEST_F(CollectionsTest, AsksBeforeAChangedCollectionIsReplaced)
{
    const Alert question{"Update “Trip”?",
                         "This collection has changes that aren't saved to it. Opening something "
                         "else replaces the whole set.",
                         {"Update Collection", "Discard Changes", "Cancel"}};
    open({"a.jpg"});
    EXPECT_TRUE(model->saveCollection("Trip"));
    EXPECT_TRUE(model->confirmDiscardingWork());
    for (const size_t answer : {2, 1, 0}) {
        expose(double(answer) + 1);
        desktop.answers = {answer};
        EXPECT_EQ(model->confirmDiscardingWork(), answer != 2);
        EXPECT_THAT(desktop.takeAlerts(), ElementsAre(question));
        EXPECT_EQ(model->isDirty(), answer != 0);
    }
    EXPECT_EQ(named("Trip").edits.at(0).adjust.at("exposure"), 1);
}

TEST_F(CollectionsTest, RenamesAndDeletes)
{
    open({"a.jpg"});
    EXPECT_TRUE(model->saveCollection("One"));
    clock += 1;
    EXPECT_TRUE(model->saveCollection("Two"));
    clock += 1;
    model->renameCollection(named("One"), "tWO ");
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"A collection named “tWO” already exists"}));
    model->renameCollection(named("Two"), " ");
    model->renameCollection(named("One"), "ONE");
    EXPECT_EQ(collectionNames(), "ONE, Two");
    EXPECT_EQ(model->currentCollectionName.value(), "Two");
    clock += 1;
    model->renameCollection(named("Two"), "Three");
    EXPECT_EQ(model->currentCollectionName.value(), "Three");
    EXPECT_EQ(desktop.chrome.title, "Three");

    const std::string untouched = "Your original photos are untouched, but this collection's "
                                  "grouping and the edits you saved to it will be removed. ";
    desktop.answers = {1, 0, 0};
    model->deleteCollection(named("ONE"));
    model->deleteCollection(named("ONE"));
    EXPECT_EQ(model->currentCollectionName.value(), "Three");
    model->duplicateImage();
    expose(2);
    model->deleteCollection(named("Three"));
    EXPECT_EQ(collectionNames(), "");
    EXPECT_EQ(model->currentCollectionName.value(), "");
    EXPECT_EQ(imageNames(), "a.jpg, a copy.jpg");
    const auto alerts = desktop.takeAlerts();
    ASSERT_EQ(alerts.size(), 3u);
    EXPECT_EQ(alerts[1],
              (Alert{"Delete the collection “ONE”?",
                     untouched + "This can't be undone.",
                     {"Delete", "Cancel"},
                     true}));
    EXPECT_EQ(alerts[2].informative,
              untouched
                  + "It's also holding more than one version of the same photo — those stay open, "
                    "and Orvane will ask you to save them as a new collection.");

    // A store that nobody can read is told of, whatever was asked of it.
    const struct {
        const char* message;
        std::function<void()> act;
    } cases[] = {
        {"Couldn't save the collection “New”", [&] { model->saveCollection("New"); }},
        {"Couldn't rename the collection “N”", [&] { model->renameCollection(named("Old"), "N"); }},
        {"Couldn't delete the collection “Old”",
         [&] {
             desktop.answers = {0};
             model->deleteCollection(named("Old"));
         }},
    };
    EXPECT_TRUE(model->saveCollection("Old"));
    model->currentCollectionName = std::string();
    for (const auto& [message, act] : cases) {
        put("support/Orvane/collections.json", "[");
        put("support/Orvane/collections.json.bak", "[");
        act();
        EXPECT_EQ(alertMessages().back(), message);
        EXPECT_EQ(model->currentCollectionName.value(), "");
    }
}

} // namespace
} // namespace orvane
