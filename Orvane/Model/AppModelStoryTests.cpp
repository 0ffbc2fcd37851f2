// One session as a photographer has it, through the model alone: by itself, killed at every step
// that changes a file, and watched for whether it opens an original for writing.

#include "ModelTesting.h"

#include "FileSystem.h"

#include <csignal>
#include <cstdlib>
#include <map>

#include <spawn.h>
#include <sys/inotify.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace orvane {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> originals = {"originals/a.jpg", "originals/b.jpg",
                                            "originals/c.jpg"};

class StoryTest : public ModelTest {
protected:
    void makeOriginals() const
    {
        std::filesystem::create_directories(folder / "originals");
        for (size_t i = 0; i < originals.size(); ++i)
            picture(originals[i], {int(60 * i), 120, 90});
    }
    std::map<std::string, std::string> bytesOfOriginals() const
    {
        std::map<std::string, std::string> bytes;
        for (const std::string& name : originals)
            bytes[name] = content(name);
        return bytes;
    }

    /// Opens three, edits each, takes one change back and saves.
    void editThree()
    {
        open(originals);
        expose(10);
        activate(1);
        clock += 10;
        model->setCurve("master", {{0, 20}, {255, 240}});
        activate(2);
        expose(30);
        expose(99);
        model->undo();
        model->saveWork();
    }
    /// A second version of the third, with an edit of its own, in a collection.
    void duplicateThird()
    {
        model->duplicateImage();
        expose(40);
        model->saveWork();
    }
    std::vector<double> exposures() const
    {
        std::vector<double> values;
        for (const auto& item : model->sessionItems()) {
            const auto& adjust = item.current.adjust;
            values.push_back(adjust.contains("exposure") ? adjust.at("exposure") : 0);
        }
        return values;
    }
};

TEST_F(StoryTest, EveryEditIsFoundAgain)
{
    makeOriginals();
    editThree();
    EXPECT_THAT(exposures(), ElementsAre(10, 0, 30));
    EXPECT_FALSE(model->isDirty());
    EXPECT_TRUE(model->history.value().canRedo());

    model->duplicateImage();
    EXPECT_EQ(imageNames(), "a.jpg, b.jpg, c.jpg, c copy.jpg");
    EXPECT_EQ(model->currentCollectionName.value(), "Untitled");
    EXPECT_TRUE(model->isDirty()); // the copy is not in it yet
    expose(40);
    EXPECT_EQ(desktop.chrome.title, "Untitled");
    EXPECT_EQ(model->saveTitle(), "Update “Untitled”");
    EXPECT_TRUE(model->saveWork());
    EXPECT_TRUE(model->confirmDiscardingWork());
    const auto states = [&] {
        std::vector<EditState> all;
        for (const auto& item : model->sessionItems())
            all.push_back(item.current);
        return all;
    };
    const std::vector<EditState> edits = states();

    restart();
    EXPECT_TRUE(model->images().empty());
    open(originals);
    EXPECT_EQ(states(), std::vector<EditState>(edits.begin(), edits.end() - 1));
    model->loadSources(model->collections.value().at(0));
    EXPECT_EQ(states(), edits);
    EXPECT_FALSE(model->isDirty());
    EXPECT_THAT(desktop.alerts, IsEmpty());
}

// ---- Killed ----

int stepsLeft = 0;

/// The session in a process of its own, which ends at a given step.
class DISABLED_StoryProcess : public StoryTest { };

TEST_F(DISABLED_StoryProcess, DiesAtAStep)
{
    const char* const place = std::getenv("ORVANE_STORY_FOLDER");
    const char* const steps = std::getenv("ORVANE_STORY_STEPS");
    if (!place || !steps)
        GTEST_SKIP() << "started by another test only";
    const auto own = std::exchange(folder, place);
    stores = folder / "support" / "Orvane";
    restart();
    stepsLeft = std::atoi(steps);
    fileStepHook = [](const char*) {
        if (stepsLeft-- == 0)
            ::raise(SIGKILL);
    };
    editThree();
    duplicateThird();
    fileStepHook = nullptr;
    folder = own;
}

/// The status of a process that lives that session in `folder`.
int runSession(const std::filesystem::path& folder, int steps)
{
    ::setenv("ORVANE_STORY_FOLDER", folder.c_str(), 1);
    ::setenv("ORVANE_STORY_STEPS", std::to_string(steps).c_str(), 1);
    const std::string program = std::filesystem::read_symlink("/proc/self/exe");
    std::string filter = "--gtest_filter=DISABLED_StoryProcess.*";
    std::string all = "--gtest_also_run_disabled_tests";
    std::string brief = "--gtest_brief=1";
    std::string name = program;
    char* arguments[] = {name.data(), filter.data(), all.data(), brief.data(), nullptr};
    pid_t child = 0;
    int status = -1;
    if (::posix_spawn(&child, program.c_str(), nullptr, nullptr, arguments, environ) == 0)
        ::waitpid(child, &status, 0);
    return status;
}

TEST_F(StoryTest, AKillAtAnyStepLeavesWholeStores)
{
    makeOriginals();
    const auto before = bytesOfOriginals();
    int kills = 0;
    for (int step = 0; step < 100; ++step) {
        SCOPED_TRACE(step);
        std::filesystem::remove_all(folder / "support");
        const int status = runSession(folder, step);
        if (WIFEXITED(status)) {
            EXPECT_EQ(WEXITSTATUS(status), 0);
            break;
        }
        ASSERT_EQ(WTERMSIG(status), SIGKILL);
        ++kills;

        // What was stored is all of a save or nothing of it.
        restart();
        open(originals);
        const bool isSaved = exposures() == std::vector<double>{10, 0, 30};
        EXPECT_TRUE(isSaved || exposures() == std::vector<double>({0, 0, 0}));
        EXPECT_EQ(image(1).state.curve.size(), isSaved ? 1u : 0u);
        const std::vector<Collection> collections = model->collections;
        if (!collections.empty()) {
            EXPECT_TRUE(isSaved);
            model->loadSources(collections[0]);
            EXPECT_TRUE(exposures() == std::vector<double>({10, 0, 30})
                        || exposures() == std::vector<double>({10, 0, 30, 40}));
        }
        // Work goes on, and nobody is told anything.
        expose(77);
        EXPECT_TRUE(model->saveWork());
        EXPECT_FALSE(model->isDirty());
        EXPECT_THAT(alertMessages(), IsEmpty());
    }
    EXPECT_GE(kills, 15);
    EXPECT_EQ(bytesOfOriginals(), before);
}

// ---- Originals ----

TEST_F(StoryTest, OriginalsAreNeverOpenedForWriting)
{
    using std::filesystem::perms;
    makeOriginals();
    const auto place = folder / "originals";
    for (const std::string& name : originals)
        std::filesystem::permissions(folder / name, perms(0444));
    std::filesystem::permissions(place, perms(0555));
    const auto before = bytesOfOriginals();

    // Permissions do not stop the superuser; this watch sees an opening for writing whoever it is.
    const int watch = ::inotify_init1(IN_NONBLOCK);
    ASSERT_GE(watch, 0);
    ASSERT_GE(::inotify_add_watch(watch, place.c_str(),
                                  IN_CLOSE_WRITE | IN_MODIFY | IN_ATTRIB | IN_CREATE | IN_DELETE
                                      | IN_MOVE),
              0);
    editThree();
    duplicateThird();
    model->makeItPop();
    model->revealOriginal();
    desktop.choices = {{place / "a.jpg"}};
    model->openImage(true);
    model->removeImage(image(0).id);
    restart();
    open(originals);
    model->loadSources(model->collections.value().at(0));

    char event[4096];
    EXPECT_EQ(::read(watch, event, sizeof event), -1) << "something was done to an original";
    EXPECT_EQ(bytesOfOriginals(), before);
    // The watch does see what it is for.
    std::filesystem::permissions(place, perms(0755));
    put("originals/a.jpg", "x");
    EXPECT_GT(::read(watch, event, sizeof event), 0);
    ::close(watch);
}

} // namespace
} // namespace orvane
