#include "ModelTesting.h"

#include <limits>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// An image of the open set: whether a file holds it, and its exposure.
struct Opened {
    bool isFile = true;
    double exposure = 0;
};

class SavingTest : public ModelTest {
protected:
    void openAll(const std::vector<Opened>& images)
    {
        restart();
        std::filesystem::remove_all(stores);
        for (size_t i = 0; i < images.size(); ++i) {
            if (images[i].isFile)
                open({std::string(1, char('a' + i)) + ".jpg"}, true);
            else
                paste();
            activate(i);
            if (images[i].exposure != 0)
                expose(images[i].exposure);
        }
    }
    std::string stored() const
    {
        return std::filesystem::exists(stores / "edits.json") ? content("support/Orvane/edits.json")
                                                              : "";
    }
};

TEST_F(SavingTest, AsksAboutUnsavedWorkInTheseWords)
{
    const char* const allLive = "Your edits aren't saved yet. They live with the image.";
    const struct {
        std::vector<Opened> images;
        const char* title; ///< of the save command
        const char* message; ///< null: no question
        const char* informative;
        std::vector<std::string> buttons;
    } cases[] = {
        {{}, "Save Edits", nullptr, "", {}},
        {{{true, 0}, {false, 0}}, "Save Edits", nullptr, "", {}},
        {{{true, 0}, {true, 5}, {true, 0}},
         "Save Edits",
         "Save your edits to b.jpg?",
         allLive,
         {"Save", "Discard", "Cancel"}},
        {{{true, 4}, {true, 5}},
         "Save All Edits",
         "Save your edits to 2 images?",
         allLive,
         {"Save All", "Discard", "Cancel"}},
        {{{true, 4}, {false, 5}},
         "Save All Edits",
         "Save your edits to 2 images?",
         "1 of these were dropped or pasted onto the canvas, so Orvane can't save it — export "
         "first "
         "to keep that one. The rest will save.",
         {"Save All", "Discard", "Cancel"}},
        {{{true, 0}, {false, 5}},
         "Save Edits",
         "Save your edits to Pasted 1.png?",
         "1 of these were dropped or pasted onto the canvas, so Orvane can't save it — export "
         "first to keep that one. The rest will save.",
         {"Discard", "Cancel"}},
        {{{false, 4}, {false, 5}},
         "Save All Edits",
         "Save your edits to 2 images?",
         "2 of these were dropped or pasted onto the canvas, so Orvane can't save them — export "
         "first to keep those. The rest will save.",
         {"Discard", "Cancel"}},
    };
    for (const auto& [images, title, message, informative, buttons] : cases) {
        SCOPED_TRACE(message ? message : "clean");
        // Every answer: to save, where that is offered, keeps the edits that have a source.
        for (size_t answer = 0; answer < std::max<size_t>(buttons.size(), 1); ++answer) {
            openAll(images);
            EXPECT_EQ(model->saveTitle(), title);
            EXPECT_EQ(model->isDirty(), message != nullptr);
            desktop.answers = {answer};
            const bool mayGo = model->confirmDiscardingWork();
            const auto alerts = desktop.takeAlerts();
            if (!message) {
                EXPECT_TRUE(mayGo);
                EXPECT_TRUE(alerts.empty());
                continue;
            }
            EXPECT_THAT(alerts, ElementsAre(Alert{message, informative, buttons}));
            EXPECT_EQ(mayGo, buttons[answer] != "Cancel");
            EXPECT_EQ(!stored().empty(), buttons[answer].starts_with("Save"));
        }
    }
}

TEST_F(SavingTest, SavesWhatHasASourceAndLeavesTheRestDirty)
{
    openAll({{true, 4}, {false, 5}, {true, 0}});
    EXPECT_TRUE(model->saveWork());
    EXPECT_THAT(stored(), HasSubstr(source("a.jpg")));
    EXPECT_THAT(stored(), testing::Not(HasSubstr(source("c.jpg"))));
    EXPECT_EQ(model->savedImageSources.value(), (std::set<std::string>{source("a.jpg")}));
    EXPECT_EQ(model->soleDirtyName(), "Pasted 1.png");
    EXPECT_EQ(desktop.chrome.isEdited, true);
    // By value: the way back makes it clean.
    activate(1);
    model->restore(EditState());
    EXPECT_FALSE(model->isDirty());
}

TEST_F(SavingTest, StoredEditsComeBack)
{
    openAll({{true, 4}});
    EXPECT_TRUE(model->saveWork());
    restart();
    open({"a.jpg"});
    EXPECT_EQ(exposure(), 4);
    EXPECT_FALSE(model->isDirty());
    EXPECT_THAT(model->historySteps(), ElementsAre("Original"));
    expose(6);
    EXPECT_TRUE(model->saveWork());
    restart();
    open({"a.jpg"});
    EXPECT_EQ(exposure(), 6);
}

TEST_F(SavingTest, StoredEditsComeBackForAnyFileName)
{
    for (const std::string name : {"caf\xe9.jpg", "50%.jpg", "Zürich 日本.jpg", "a\nb\".jpg"}) {
        restart();
        open({name});
        expose(4);
        EXPECT_TRUE(model->saveWork());
        restart();
        open({name});
        EXPECT_EQ(exposure(), 4) << name;
        EXPECT_EQ(model->activeFileURL(), folder / name);
    }
    EXPECT_THAT(desktop.alerts, testing::IsEmpty());
    open({"caf\xe9.jpg"});
    EXPECT_EQ(model->activeName(), "caf\uFFFD.jpg");
}

TEST_F(SavingTest, OneMessageForEachEditThatCannotBeStored)
{
    const std::string lost = "“edits.json” is on disk but couldn't be read, so saving now would "
                             "replace it and lose what it holds. A copy is kept as "
                             "“edits.json.corrupt”.";
    openAll({{true, 1}, {true, 2}, {true, 3}});
    std::filesystem::create_directories(stores);
    put("support/Orvane/edits.json", "{\"a\": broken");
    EXPECT_FALSE(model->saveWork());
    // The damaged store has been moved aside by then: the others have begun a new one.
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"Couldn't save your edits to “a.jpg”", lost}));
    EXPECT_EQ(content("support/Orvane/edits.json.corrupt"), "{\"a\": broken");
    EXPECT_EQ(model->soleDirtyName(), "a.jpg");
    EXPECT_TRUE(model->saveWork());
    EXPECT_FALSE(model->isDirty());
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"})
        EXPECT_THAT(stored(), HasSubstr(source(name)));

    // An edit that no JSON can hold fails alone.
    openAll({{true, 1}, {true, 2}});
    activate(0);
    model->rotation = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(model->saveWork());
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"Couldn't save your edits to “a.jpg”",
                                  "A value of the edit can't be stored (rotation: a number that is "
                                  "not finite cannot be stored)."}));
    EXPECT_EQ(model->soleDirtyName(), "a.jpg");

    // A store that cannot be written: everything stays as it was, and is told.
    openAll({{true, 1}, {true, 2}});
    std::filesystem::remove_all(stores);
    put("support/Orvane", "a file where the folder should be");
    desktop.answers = {0};
    EXPECT_FALSE(model->confirmDiscardingWork());
    EXPECT_EQ(desktop.alerts.front().style, Alert::Style::Plain);
    EXPECT_EQ(desktop.alerts.back().style, Alert::Style::Warning);
    EXPECT_THAT(alertMessages(),
                ElementsAre("Save your edits to 2 images?", "Couldn't save your edits to “a.jpg”",
                            "Couldn't save your edits to “b.jpg”"));
    EXPECT_EQ(model->saveTitle(), "Save All Edits");
    EXPECT_EQ(content("support/Orvane"), "a file where the folder should be");
}

TEST_F(SavingTest, VersionsOfOnePhotoGoIntoACollection)
{
    for (const size_t answer : {1, 0}) {
        openAll({{true, 1}});
        open({"a.jpg"}, true);
        activate(1);
        // With equal edits they are no conflict.
        expose(1);
        EXPECT_TRUE(model->saveAllDirtyImages());
        expose(2);
        desktop.answers = {answer};
        EXPECT_EQ(model->saveAllDirtyImages(), answer == 0);
        EXPECT_THAT(
            desktop.takeAlerts(),
            ElementsAre(Alert{
                "Save these versions as a collection?",
                "This session holds more than one version of the same photo. Edits are kept per "
                "photo, so saving them separately would keep only the last one — a collection "
                "keeps every version.",
                {"Save as Collection", "Cancel"}}));
        EXPECT_EQ(model->isDirty(), answer == 1);
    }
    ASSERT_EQ(model->collections.value().size(), 1u);
    const Collection& made = model->collections.value()[0];
    EXPECT_EQ(made.name, "Untitled");
    EXPECT_THAT(made.sources, ElementsAre(source("a.jpg"), source("a.jpg")));
    EXPECT_EQ(made.edits[0].adjust.at("exposure"), 1);
    EXPECT_EQ(made.edits[1].adjust.at("exposure"), 2);
    EXPECT_EQ(model->saveTitle(), "Update “Untitled”");
    EXPECT_EQ(desktop.chrome, (WindowChrome{"Untitled", {}, false}));
}

TEST_F(SavingTest, KnowsWhetherThePictureIsEdited)
{
    const struct {
        const char* what;
        std::function<void(AppModel&)> change;
        bool isEdit;
    } cases[] = {
        {"nothing", [](AppModel&) {}, false},
        {"at rest",
         [](AppModel& m) {
             m.adjust = {{"sharpenRadius", 1}};
         },
         false},
        {"hardly moved",
         [](AppModel& m) {
             m.adjust = {{"exposure", 0.001}};
         },
         false},
        {"moved",
         [](AppModel& m) {
             m.adjust = {{"sharpenRadius", 0.9}};
         },
         true},
        {"not in the catalogue",
         [](AppModel& m) {
             m.adjust = {{"fromTheFuture", 50}};
         },
         false},
        {"levels at rest",
         [](AppModel& m) {
             m.adjust = {{"levelsWhiteIn", 255}};
         },
         false},
        {"levels",
         [](AppModel& m) {
             m.adjust = {{"levelsGamma", 50}};
         },
         true},
        {"crop", [](AppModel& m) { m.crop = CGRect(0, 0, 1, 0.9); }, true},
        {"rotation", [](AppModel& m) { m.rotation = -0.002; }, true},
        {"hardly turned", [](AppModel& m) { m.rotation = 0.001; }, false},
        {"flip", [](AppModel& m) { m.flipV = true; }, true},
        {"identity",
         [](AppModel& m) {
             m.curve = {{"r", {{0, 0}, {255, 255}}}};
         },
         false},
        {"curve",
         [](AppModel& m) {
             m.curve = {{"r", {{0, 0}, {9, 9}, {255, 255}}}};
         },
         true},
        {"spot",
         [](AppModel& m) {
             m.ciHealSpots = {{0.1, 0.1, 0.1}};
         },
         true},
        {"light", [](AppModel& m) { m.lights = {EditState::Light()}; }, true},
        {"text", [](AppModel& m) { m.texts = {EditState::TextLayer()}; }, true},
        {"canvas", [](AppModel& m) { m.canvasAspect = 1; }, true},
        {"fill alone", [](AppModel& m) { m.canvasFill = std::string("color"); }, false},
        {"aspect", [](AppModel& m) { m.aspectId = std::string("1:1"); }, true},
        {"LUT", [](AppModel& m) { m.lutID = std::string("lut_gone"); }, true},
        {"strength", [](AppModel& m) { m.lookStrength = 3; }, false},
    };
    openAll({{true, 0}});
    for (const auto& [what, change, isEdit] : cases) {
        model->restore(EditState());
        change(*model);
        EXPECT_EQ(model->hasEdits(), isEdit) << what;
    }
    model->lastLook = Looks::Look{};
    model->revertAllEdits();
    EXPECT_FALSE(model->hasEdits());
    EXPECT_FALSE(model->canAdjustLookStrength());
}

} // namespace
} // namespace orvane
