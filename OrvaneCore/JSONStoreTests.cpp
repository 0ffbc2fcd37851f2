#include "JSONStore.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>

namespace orvane {
namespace {

using JSONStore::LoadKind;
using testing::HasSubstr;
using Numbers = std::map<std::string, int>;

class JSONStoreTest : public TemporaryFolder {
protected:
    std::filesystem::path url = folder / "s.json";
};

TEST_F(JSONStoreTest, LoadsWhatThereIs)
{
    const char* const good = R"({"a":1})";
    const char* const older = R"({"a":0})";
    const struct {
        const char* file; ///< null: absent
        const char* backup;
        LoadKind kind;
        Numbers value;
    } cases[] = {
        {nullptr, nullptr, LoadKind::Missing, {}},     {nullptr, good, LoadKind::Missing, {}},
        {good, nullptr, LoadKind::Ok, {{"a", 1}}},     {good, "{", LoadKind::Ok, {{"a", 1}}},
        {"{", older, LoadKind::Recovered, {{"a", 0}}}, {"", older, LoadKind::Recovered, {{"a", 0}}},
        {"", nullptr, LoadKind::Unreadable, {}},       {"{", "{", LoadKind::Unreadable, {}},
    };
    for (const auto& [file, backup, kind, value] : cases) {
        if (file)
            put("s.json", file);
        if (backup)
            put("s.json.bak", backup);
        const std::string before = names();
        const auto loaded = JSONStore::load<Numbers>(url);
        EXPECT_EQ(loaded.kind, kind);
        EXPECT_EQ(loaded.value, value);
        EXPECT_EQ(kind == LoadKind::Unreadable, !loaded.error.message.empty());
        EXPECT_EQ(names(), before);
        std::filesystem::remove(url);
        std::filesystem::remove(folder / "s.json.bak");
    }
}

} // namespace
} // namespace orvane
