#include "ModelTesting.h"

#include "LutStore.h"

#include <array>

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SavedLooksTest : public ModelTest {
protected:
    std::string lookNames() const
    {
        std::string text;
        for (const LookItem& look : model->savedLooks())
            text += (text.empty() ? "" : ", ") + look.name;
        return text;
    }
};

TEST_F(SavedLooksTest, KeepAWholeGrade)
{
    open({"a.jpg"});
    model->saveLook(" \n ");
    EXPECT_EQ(lookNames(), "");
    model->setAdjust("exposure", 12);
    model->setAdjust("levelsGamma", 80); // no slider of the catalogue
    model->setCurve("r", {{0, 9}});
    model->rotation = 4;
    model->saveLook("  Evening ");
    const SavedLook look = model->savedLookEntries.value().at(0);
    EXPECT_TRUE(look.id.starts_with("look_") && look.id.size() == 13) << look.id;
    EXPECT_EQ(look.name, "Evening");
    EXPECT_EQ(look.adjust.size(), 59u);
    EXPECT_EQ(look.adjust.at("exposure"), 12);
    EXPECT_EQ(look.adjust.at("duotoneHue"), 210);
    EXPECT_EQ(look.created, clock);

    restart();
    open({"b.jpg"});
    EXPECT_EQ(lookNames(), "Evening");
    model->applySavedLook("look_unknown");
    EXPECT_FALSE(model->history.value().canUndo());
    model->lastLook = Looks::Look{};
    model->setAdjust("contrast", 5);
    model->applySavedLook(look.id);
    EXPECT_EQ(model->adjust.value(), look.adjust);
    EXPECT_EQ(model->curve.value(), look.curve);
    EXPECT_EQ(model->rotation, 0);
    EXPECT_FALSE(model->canAdjustLookStrength());

    // Characters are counted as a reader does: 80 of them, each an "é" of two code points.
    std::string accents;
    for (int i = 0; i < 100; ++i)
        accents += "e\u0301";
    model->saveLook(accents);
    EXPECT_EQ(model->savedLooks()[0].name, accents.substr(0, 80 * 3));
    model->removeSavedLook(look.id);
    EXPECT_EQ(model->savedLooks().size(), 1u);
    restart();
    EXPECT_EQ(model->savedLooks().size(), 1u);
}

TEST_F(SavedLooksTest, HoldAHundredAndReportABrokenLibrary)
{
    for (int i = 0; i <= 100; ++i)
        model->saveLook("look " + std::to_string(i));
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(model->savedLooks().size(), 100u);
        EXPECT_EQ(model->savedLooks().front().name, "look 100");
        EXPECT_EQ(model->savedLooks().back().name, "look 1");
        restart();
    }
    put("support/Orvane/saved-looks.json", "[");
    put("support/Orvane/saved-looks.json.bak", "[");
    model->saveLook("New");
    EXPECT_EQ(model->savedLooks().front().name, "look 100");
    put("support/Orvane/saved-looks.json", "[");
    model->removeSavedLook("any");
    EXPECT_THAT(alertMessages(),
                ElementsAre("Couldn't save the look “New”", "Couldn't remove that look"));
    // The looks in memory outlive the file that was moved aside.
    model->saveLook("New");
    restart();
    EXPECT_EQ(model->savedLooks().size(), 100u);
    EXPECT_TRUE(lookNames().starts_with("New, look 100, look 99,")) << lookNames();

    // Nobody has seen what a file holds that was damaged from the start.
    put("support/Orvane/saved-looks.json", "[");
    put("support/Orvane/saved-looks.json.bak", "[");
    restart();
    model->saveLook("Other");
    model->saveLook("Other");
    EXPECT_EQ(lookNames(), "Other");
}

TEST_F(SavedLooksTest, ComeBackFromTheBackupAtTheStart)
{
    model->saveLook("One");
    model->saveLook("Two");
    put("support/Orvane/saved-looks.json", "[");
    restart();
    EXPECT_EQ(lookNames(), "One");
}

class LutsTest : public ModelTest {
protected:
    /// Inverts the picture.
    const std::string cube = "TITLE \"x\"\nLUT_3D_SIZE 2\n1 1 1\n0 1 1\n1 0 1\n0 0 1\n1 1 0\n0 1 "
                             "0\n1 0 0\n0 0 0\n";
    void import(const std::string& name)
    {
        desktop.choices = {{folder / name}};
        model->importLut();
    }
};

TEST_F(LutsTest, AreImportedIntoTheLibrary)
{
    open({"a.jpg"});
    put("Film Look.cube", cube);
    desktop.choices = {{}};
    model->importLut();
    EXPECT_EQ(model->lutID.value(), "");
    EXPECT_EQ(desktop.openPanels.back().message, "Choose a .cube LUT.");
    EXPECT_EQ(desktop.openPanels.back().prompt, "Load");
    EXPECT_THAT(desktop.openPanels.back().extensions, ElementsAre("cube"));

    model->lutAmount = 20;
    import("Film Look.cube");
    const std::string id = model->lutID;
    EXPECT_TRUE(id.starts_with("lut_") && id.size() == 12) << id;
    EXPECT_EQ(model->lutName.value(), "Film Look");
    EXPECT_EQ(model->lutAmount, 100);
    EXPECT_EQ(model->ciLUT.value(), LUT::fromCube(cube));
    EXPECT_THAT(model->historySteps(), ElementsAre("Original", "LUT"));
    EXPECT_TRUE(model->hasEdits());

    // The thumbnail is drawn with it.
    const auto before = bytesOf(*image(0).thumb);
    model->parkActiveState();
    EXPECT_NE(bytesOf(*image(0).thumb), before);

    // The imported file is not needed again.
    std::filesystem::remove(folder / "Film Look.cube");
    EXPECT_TRUE(model->saveWork());
    restart();
    open({"a.jpg"});
    EXPECT_EQ(model->lutName.value(), "Film Look");
    model->removeLut();
    EXPECT_FALSE(model->ciLUT.value());
    EXPECT_THAT(model->historySteps(), ElementsAre("Original", "LUT removed"));
}

TEST_F(LutsTest, AreMissedWithoutLosingTheEdit)
{
    open({"a.jpg", "b.jpg"});
    put("x.cube", cube);
    import("x.cube");
    const std::string id = model->lutID;
    const auto file = stores / "luts" / (id + ".json");
    const std::string bytes = content("support/Orvane/luts/" + id + ".json");
    activate(1);
    EXPECT_FALSE(model->sessionHasMissingLut());
    EXPECT_FALSE(model->ciLUT.value());

    std::filesystem::remove(file);
    EXPECT_TRUE(model->sessionHasMissingLut());
    activate(0);
    EXPECT_TRUE(model->lutMissing);
    EXPECT_EQ(model->lutName.value(), "");
    EXPECT_EQ(model->lutID.value(), id);
    put("support/Orvane/luts/" + id + ".json", bytes);
    // An equal id does not look at the file again; another image in between does.
    activate(0);
    EXPECT_TRUE(model->lutMissing);
    activate(1);
    EXPECT_FALSE(model->lutMissing);
    activate(0);
    EXPECT_FALSE(model->lutMissing);
    EXPECT_TRUE(model->ciLUT.value());
}

TEST_F(LutsTest, SayWhyTheyWereNotImported)
{
    open({"a.jpg"});
    put("latin.cube", "TITLE \"\xe9\"\nLUT_3D_SIZE 2\n");
    put("line.cube", "LUT_1D_SIZE 2\n0 0 0\n1 1 1\n");
    put("good.cube", cube);
    import("gone.cube");
    import("latin.cube");
    EXPECT_THAT(alertMessages(),
                ElementsAre("Couldn't read “gone.cube”", "Couldn't read “latin.cube”"));
    import("line.cube");
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"That LUT couldn't be read",
                                  "Orvane reads 3D .cube LUTs (LUT_3D_SIZE 2–64). A 1D LUT or a "
                                  "damaged file won't load."}));
    std::filesystem::create_directories(stores);
    put("support/Orvane/luts", "a file where the folder should be");
    import("good.cube");
    EXPECT_THAT(alertMessages(), ElementsAre("Couldn't keep “good”"));
    EXPECT_EQ(model->lutID.value(), "");
    EXPECT_FALSE(model->history.value().canUndo());
}

} // namespace
} // namespace orvane
