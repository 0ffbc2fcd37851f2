#pragma once

#include "EditState.h"
#include "Result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace orvane {

/// A named set of images, by their sources, with the edit of each; never a copy of a picture. Only
/// a collection can hold one source several times.
struct Collection {
    std::string id; ///< a UUID, new with every save
    std::string name; ///< trimmed; no two differ in case alone
    std::vector<std::string> sources; ///< in filmstrip order
    std::vector<EditState> edits; ///< of `sources`, index by index
    double updatedAt = 0; ///< seconds since 2001-01-01 00:00:00 UTC

    bool operator==(const Collection&) const = default;
};

/// The collection of a name, without regard to case; end() without one.
std::vector<Collection>::const_iterator named(const std::vector<Collection>& collections,
                                              const std::string& name);
/// The name itself, or with the first number from 2 on that no collection has: "Untitled 2".
std::string freeName(const std::vector<Collection>& collections, const std::string& name);

/// The file of all collections, "collections.json": a list of records.
class CollectionStore {
public:
    explicit CollectionStore(std::filesystem::path url);

    /// Newest first; none when the file is missing or cannot be read.
    std::vector<Collection> load();

    /// Fails as JSONStore::loadForUpdate() and save() do; a file that cannot be read is never
    /// replaced without a word. A file that load() could not read but this can keeps its
    /// collections beside the given ones; where a name is the same they get another.
    Result<void> save(const std::vector<Collection>& collections);

private:
    std::filesystem::path m_url;
    bool m_isUnread = false; ///< at the last load() the file was there and could not be read
};

} // namespace orvane
