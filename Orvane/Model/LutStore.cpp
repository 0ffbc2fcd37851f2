#include "LutStore.h"

#include "AtomicFile.h"
#include "JSONCoding.h"

#include <algorithm>

namespace orvane {

template <> struct JSONRecord<LutStore::Entry> {
    static void fields(auto& field, auto& entry)
    {
        field("id", entry.id);
        field("name", entry.name);
        field("dimension", entry.dimension);
        field("rgb", entry.rgb);
    }
};

namespace {

namespace fs = std::filesystem;

/// Several times the largest table in the fullest digits.
constexpr size_t largestFile = size_t(64) << 20;
/// Tables of 64 take 4 MB each.
constexpr size_t mostKept = 8;

std::optional<LutStore::Loaded> read(const fs::path& file)
{
    const Result<std::string> text = readTextFile(file, largestFile);
    if (!text)
        return std::nullopt;
    const Result<LutStore::Entry> entry = decodedText<LutStore::Entry>(*text);
    if (!entry)
        return std::nullopt;
    const std::optional<LUT> table = LUT::fromRGB(entry->dimension, entry->rgb);
    if (!table)
        return std::nullopt;
    return LutStore::Loaded{entry->name, *table};
}

} // namespace

LutStore::Entry LutStore::Entry::of(std::string id, std::string name, const LUT& table)
{
    Entry entry{std::move(id), std::move(name), table.dimension(), {}};
    const std::vector<float>& rgba = table.rgba();
    entry.rgb.reserve(rgba.size() / 4 * 3);
    for (size_t i = 0; i + 3 < rgba.size(); i += 4)
        entry.rgb.insert(entry.rgb.end(), {rgba[i], rgba[i + 1], rgba[i + 2]});
    return entry;
}

LutStore::LutStore(fs::path folder)
    : m_folder(std::move(folder))
{
}

fs::path LutStore::file(const std::string& id) const
{
    std::string name = id + ".json";
    std::replace(name.begin(), name.end(), '/', '_');
    return m_folder / name;
}

Result<void> LutStore::save(const Entry& entry) const
{
    const Result<std::string> text = encoded(entry);
    if (!text)
        return text.error();
    // When this fails, the write fails and says why.
    std::error_code ignored;
    fs::create_directories(m_folder, ignored);
    removeAbandonedTemporaries(m_folder);
    m_kept.erase(entry.id);
    return writeFile(file(entry.id), *text);
}

std::optional<LutStore::Loaded> LutStore::load(const std::string& id) const
{
    // A zero byte would end the name early and open another file.
    if (id.find('\0') != id.npos)
        return std::nullopt;
    const fs::path path = file(id);
    const std::optional<FileIdentity> identity = FileIdentity::of(path);
    if (!identity)
        return std::nullopt;
    const auto kept = m_kept.find(id);
    if (kept != m_kept.end() && kept->second.identity == identity)
        return kept->second.loaded;

    std::optional<Loaded> loaded = read(path);
    if (m_kept.size() >= mostKept)
        m_kept.clear();
    if (identity->isSettled())
        m_kept.insert_or_assign(id, Kept{*identity, loaded});
    return loaded;
}

std::optional<LUT> LutStore::table(const std::string& id) const
{
    const std::optional<Loaded> loaded = load(id);
    return loaded ? std::optional(loaded->table) : std::nullopt;
}

} // namespace orvane
