// What is left of a store when the process is killed in the middle of a save: at every step, one
// after the other, and at any moment of many saves.

#include "FileSystem.h"
#include "JSONMapStore.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <functional>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace orvane {
namespace {

using JSONStore::LoadKind;

int stepsLeft = 0;

class StoreCrashTest : public TemporaryFolder {
protected:
    /// Runs the work in a child that is killed after its `step`th step; whether there was one.
    static bool isKilled(int step, const std::function<void()>& work)
    {
        const pid_t child = ::fork();
        if (child == 0) {
            stepsLeft = step;
            fileStepHook = [](const char*) {
                if (--stepsLeft == 0)
                    ::kill(::getpid(), SIGKILL);
            };
            work();
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
        return WIFSIGNALED(status);
    }

    std::filesystem::path url = folder / "s.json";
};

TEST_F(StoreCrashTest, EveryStepLeavesTheOldStoreOrTheNew)
{
    const char* const absent = nullptr;
    const struct {
        const char* what;
        const char* file;
        const char* backup;
        std::optional<int> old; ///< what the store holds before
        int fewestSteps;
    } cases[] = {
        {"a first save", absent, absent, {}, 6},
        {"a second save", R"({"a":1})", absent, 1, 11},
        {"a later save", R"({"a":1})", R"({"a":0})", 1, 11},
        {"a damaged store with a good backup", R"({"a":1)", R"({"a":0})", 0, 8},
        {"a damaged store with a damaged backup", R"({"a":1)", R"({"a":0)", {}, 1},
    };
    for (const auto& [what, file, backup, old, fewestSteps] : cases) {
        int step = 0;
        bool wasKilled = true;
        while (wasKilled) {
            ++step;
            for (const auto& entry : std::filesystem::directory_iterator(folder))
                std::filesystem::remove(entry.path());
            if (file)
                put("s.json", file);
            if (backup)
                put("s.json.bak", backup);
            wasKilled = isKilled(step, [&] { (void)JSONMapStore<int>(url).set({{"b", 2}}); });
            const std::string where = std::string(what) + ", step " + std::to_string(step);

            // A new start finds the old store or the new one, whole.
            JSONMapStore<int> store(url);
            const bool isNew = store.find("b") == 2;
            EXPECT_EQ(store.find("a"), old) << where;
            // What was damaged is somewhere, byte by byte.
            const bool isDamaged = file && !std::string_view(file).ends_with("}");
            if (isDamaged) {
                EXPECT_TRUE(content("s.json") == file || content("s.json.corrupt") == file)
                    << where << ": " << names();
            }
            // And it can go on, without litter. A damaged one takes a second attempt.
            const bool isGood = store.set({{"c", 3}}) || store.set({{"c", 3}});
            EXPECT_TRUE(isGood) << where;
            EXPECT_EQ(store.find("c"), 3) << where;
            EXPECT_EQ(store.find("a"), old) << where;
            EXPECT_EQ(store.find("b").has_value(), isNew) << where;
            EXPECT_EQ(names().find(".orvane"), std::string::npos) << where << ": " << names();
            EXPECT_EQ(names().find(".moved"), std::string::npos) << where << ": " << names();
        }
        EXPECT_GT(step, fewestSteps) << what;
    }
}

TEST_F(StoreCrashTest, AnyMomentLeavesOneGenerationWhole)
{
    const std::string padding(300'000, 'x');
    const auto generation = [&](int number) {
        const std::string text = std::to_string(number) + padding;
        return std::map<std::string, std::string>{{"a", text}, {"b", text}};
    };
    JSONMapStore<std::string> store(url);
    ASSERT_TRUE(store.set(generation(0)));
    for (int round = 1; round <= 40; ++round) {
        const pid_t child = ::fork();
        if (child == 0) {
            for (int i = 0;; ++i)
                (void)store.set(generation(1000 * round + i));
        }
        ::usleep(unsigned(500 + round * 500));
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);

        using Texts = std::map<std::string, std::string>;
        const auto file = JSONStore::decode<Texts>(url);
        ASSERT_EQ(file.kind, LoadKind::Ok) << round << file.error.message;
        EXPECT_EQ(file.value.at("a"), file.value.at("b"));
        const auto backup = JSONStore::decode<Texts>(JSONStore::backupOf(url));
        ASSERT_NE(backup.kind, LoadKind::Unreadable) << round << backup.error.message;
        EXPECT_TRUE(store.find("a") == file.value.at("a"));
    }
    ASSERT_TRUE(store.set(generation(1)));
    EXPECT_EQ(names(), "s.json s.json.bak");
}

} // namespace
} // namespace orvane
