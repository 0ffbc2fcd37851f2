#include "JSONStore.h"

#include "JSONMapStore.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <cmath>
#include <new>

#include <sys/stat.h>

namespace orvane {

namespace {
struct Spot {
    double x = 0;
    double y = 0;

    bool operator==(const Spot&) const = default;
};

/// What there is never enough memory for.
struct Vast { };
} // namespace

template <> struct JSONRecord<Vast> {
    static void fields(auto&, auto&) { throw std::bad_alloc(); }
};

template <> struct JSONRecord<Spot> {
    static void fields(auto& field, auto& spot)
    {
        field("x", spot.x);
        field("y", spot.y);
    }
};

namespace {

using JSONStore::LoadKind;
using testing::HasSubstr;
using Numbers = std::map<std::string, int>;
using Spots = std::vector<Spot>;

class JSONStoreTest : public TemporaryFolder {
protected:
    void clear() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            std::filesystem::remove_all(entry.path());
    }
    /// Null means no such file.
    void putAll(const char* file, const char* backup, const char* mark = nullptr) const
    {
        clear();
        if (file)
            put("s.json", file);
        if (backup)
            put("s.json.bak", backup);
        if (mark)
            put("s.json.moved", mark);
    }

    std::filesystem::path url = folder / "s.json";
    static constexpr const char* good = R"({"a":1})";
    static constexpr const char* older = R"({"a":0})";
    static constexpr const char* next = R"({"a":2})";
};

TEST_F(JSONStoreTest, LoadsWhatThereIsAndNeverWrites)
{
    const struct {
        const char* file;
        const char* backup;
        const char* mark;
        LoadKind kind;
        Numbers value;
    } cases[] = {
        {nullptr, nullptr, nullptr, LoadKind::Missing, {}},
        {nullptr, good, nullptr, LoadKind::Missing, {}},
        {good, nullptr, nullptr, LoadKind::Ok, {{"a", 1}}},
        {good, "{", nullptr, LoadKind::Ok, {{"a", 1}}},
        {"{", older, nullptr, LoadKind::Recovered, {{"a", 0}}},
        {"", older, nullptr, LoadKind::Recovered, {{"a", 0}}},
        {"", nullptr, nullptr, LoadKind::Unreadable, {}},
        {"{", "{", nullptr, LoadKind::Unreadable, {}},
        // While a recovery has not come to its end.
        {nullptr, older, "", LoadKind::Recovered, {{"a", 0}}},
        {nullptr, "{", "", LoadKind::Missing, {}},
        {good, older, "", LoadKind::Ok, {{"a", 1}}},
    };
    for (const auto& [file, backup, mark, kind, value] : cases) {
        putAll(file, backup, mark);
        const std::string before = names();
        const auto loaded = JSONStore::load<Numbers>(url);
        EXPECT_EQ(loaded.kind, kind);
        EXPECT_EQ(loaded.value, value);
        EXPECT_EQ(kind == LoadKind::Unreadable, !loaded.error.message.empty());
        EXPECT_EQ(names(), before);
    }
    putAll("{", older);
    EXPECT_EQ(JSONStore::decode<Numbers>(url).kind, LoadKind::Unreadable);
}

TEST_F(JSONStoreTest, UpdatesNeverReplaceWhatNobodyCanRead)
{
    const struct {
        const char* file;
        const char* backup;
        std::string between; ///< the files after loadForUpdate(), when it did not fail
        std::string after; ///< after save(), or after the failure
        const char* finalBackup;
    } cases[] = {
        {nullptr, nullptr, "", "s.json", nullptr},
        {nullptr, older, "s.json.bak", "s.json s.json.bak", older},
        {good, older, "s.json s.json.bak", "s.json s.json.bak", good},
        {good, "{", "s.json s.json.bak", "s.json s.json.bak", good},
        {"{1", older, "s.json.bak s.json.corrupt s.json.moved", "s.json s.json.bak s.json.corrupt",
         older},
        {"{1", nullptr, "", "s.json.corrupt", nullptr},
        {"{1", "{2", "", "s.json.bak s.json.corrupt", "{2"},
    };
    for (const auto& [file, backup, between, after, finalBackup] : cases) {
        putAll(file, backup);
        const bool isDamaged = file && std::string_view(file) == "{1";
        if (isDamaged)
            put("s.json.corrupt", "damaged long ago");
        const auto value = JSONStore::loadForUpdate<Numbers>(url, {});
        if (value) {
            EXPECT_EQ(names(), between);
            ASSERT_TRUE(JSONStore::save(Numbers{{"a", 2}}, url));
            EXPECT_EQ(content("s.json"), next);
        } else {
            EXPECT_EQ(value.error().message,
                      "“s.json” is on disk but couldn't be read, so saving now would replace it "
                      "and lose what it holds. A copy is kept as “s.json.corrupt”.");
        }
        EXPECT_EQ(names(), after);
        if (finalBackup) {
            EXPECT_EQ(content("s.json.bak"), finalBackup);
        }
        if (isDamaged) {
            EXPECT_EQ(content("s.json.corrupt"), "{1");
        }
        // The next attempt succeeds in any case.
        ASSERT_TRUE(JSONStore::loadForUpdate<Numbers>(url, {}));
        EXPECT_TRUE(JSONStore::save(Numbers{{"a", 3}}, url));
    }
}

TEST_F(JSONStoreTest, ABackupIsAsPrivateAsItsStore)
{
    putAll(good, nullptr);
    ASSERT_EQ(::chmod(url.c_str(), 0600), 0);
    ASSERT_TRUE(JSONStore::save(Numbers{{"a", 2}}, url));
    for (const char* name : {"s.json", "s.json.bak"})
        EXPECT_EQ(unsigned(std::filesystem::status(folder / name).permissions()), 0600u) << name;
}

TEST_F(JSONStoreTest, AValueThatCannotBeEncodedTouchesNothing)
{
    putAll(good, nullptr);
    const auto saved = JSONStore::save(Spots{{0, 0}, {1, std::nan("")}}, url);
    EXPECT_THAT(saved.error().message, HasSubstr("[1].y: a number that is not finite"));
    EXPECT_EQ(names(), "s.json");
    EXPECT_EQ(content("s.json"), good);
}

const char* vastText = nullptr;

TEST_F(JSONStoreTest, AWantOfMemoryIsNoDamage)
{
    const JSONStore::Reading<Numbers> reading = [](std::string&& text) {
        if (text == vastText)
            throw std::bad_alloc();
        return JSONStore::decodedStore<Numbers>(std::move(text));
    };
    const struct {
        const char* what;
        const char* file;
        const char* backup;
        const char* mark;
        const char* vast;
    } cases[] = {
        {"the store", good, older, nullptr, good},
        {"the backup of a damaged store", "{", older, nullptr, older},
        {"the backup of a store that is aside", nullptr, older, "", older},
    };
    for (const auto& [what, file, backup, mark, vast] : cases) {
        putAll(file, backup, mark);
        vastText = vast;
        const std::string before = names();
        const auto loaded = JSONStore::load<Numbers>(url, reading);
        EXPECT_EQ(loaded.kind, LoadKind::Unreadable) << what;
        const auto base = JSONStore::loadForUpdate<Numbers>(url, {}, reading);
        ASSERT_FALSE(base) << what;
        EXPECT_THAT(base.error().message, HasSubstr("There is not enough memory to read")) << what;
        EXPECT_EQ(names(), before) << what;
    }

    constexpr const char* objects = R"({"a":{}})";
    putAll(objects, older);
    JSONMapStore<Vast> store(url);
    EXPECT_FALSE(store.find("a"));
    const Result<void> failures[] = {JSONStore::save(Vast(), url), store.set({{"a", {}}}),
                                     store.set({})};
    for (const Result<void>& failure : failures) {
        ASSERT_FALSE(failure);
        EXPECT_EQ(failure.error().message, "There is not enough memory to read or write “s.json”.");
    }
    EXPECT_EQ(content("s.json") + content("s.json.bak"), std::string(objects) + older);
    EXPECT_EQ(names(), "s.json s.json.bak");
}

TEST_F(JSONStoreTest, BrokenStoresAreSetAsideWhole)
{
    const std::string many(10'000'000, 'x');
    const auto spots = [](const char* last) {
        return std::string(R"({"a":[{"x":1,"y":2},)") + last + "]}";
    };
    const struct {
        const char* what;
        std::string text;
    } cases[] = {
        {"empty", ""},
        {"truncated", R"({"a":[{"x":1,"y":2})"},
        {"another kind at the top", "[]"},
        {"another kind", R"({"a":{"x":1,"y":2}})"},
        {"another kind deep inside", spots(R"({"x":1,"y":"2"})")},
        {"null for a number", spots(R"({"x":1,"y":null})")},
        {"true for a number", spots(R"({"x":true,"y":2})")},
        {"one missing key deep inside", spots(R"({"x":1})")},
        {"NaN", spots(R"({"x":NaN,"y":2})")},
        {"infinity", spots(R"({"x":1e999,"y":2})")},
        {"one long text", "\"" + many + "\""},
        {"one long text without an end", "{\"" + many},
        {"a long text where a list belongs", "{\"a\":\"" + many + "\"}"},
        {"10,000 levels", "{\"a\":" + std::string(10'000, '[') + std::string(10'000, ']') + "}"},
        {"10,000,000 levels", "{\"a\":" + std::string(10'000'000, '[')},
        {"a hidden nest", spots("{\"x\":1,\"y\":2,\"z\":") + std::string(300, '[')},
        {"invalid UTF-8", "{\"caf\xe9\":[]}"},
        {"half a character", R"({"\ud83d":[]})"},
        {"a key twice", R"({"a":[],"b":[],"a":[]})"},
        {"a key twice, written differently", R"({"a":[],"\u0061":[]})"},
        {"a key twice deep inside", spots(R"({"x":1,"y":2,"x":3})")},
        {"zero bytes", std::string(4096, '\0')},
        {"something after the end", R"({"a":[]}{)"},
        {"a comma too many", R"({"a":[],})"},
    };
    for (const auto& [what, text] : cases) {
        clear();
        put("s.json", text);
        const auto loaded = JSONStore::load<std::map<std::string, Spots>>(url);
        ASSERT_EQ(loaded.kind, LoadKind::Unreadable) << what;
        EXPECT_LT(loaded.error.message.size(), 200u) << what;
        EXPECT_TRUE(isUTF8(loaded.error.message)) << what;

        JSONMapStore<Spots> store(url);
        EXPECT_EQ(store.find("a"), std::nullopt) << what;
        EXPECT_FALSE(store.set({{"b", {}}})) << what;
        EXPECT_EQ(names(), "s.json.corrupt") << what;
        EXPECT_TRUE(content("s.json.corrupt") == text) << what;
        EXPECT_TRUE(store.set({{"b", {}}})) << what;
    }
}

TEST_F(JSONStoreTest, SizeAloneBreaksNothing)
{
    using Texts = std::map<std::string, std::string>;
    const Texts large{{"a", std::string(10'000'000, '"')}};
    ASSERT_TRUE(JSONStore::save(large, url));
    EXPECT_TRUE(JSONStore::load<Texts>(url).value == large);
}

} // namespace
} // namespace orvane
