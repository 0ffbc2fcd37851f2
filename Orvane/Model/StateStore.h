#pragma once

#include "EditStateJSON.h"
#include "JSONMapStore.h"

#include <filesystem>
#include <future>
#include <map>
#include <optional>
#include <string>

namespace orvane {

/// The edits that are kept from run to run, "edits.json": one edit a source (SourceKey.h). Entries
/// stay when their file has gone.
///
/// A large store takes half a second to read; that begins in the background at once, so that it is
/// over before the first image is opened. Where it cannot, or fails for want of memory, the first
/// call reads. All calls come from one thread.
class StateStore {
public:
    explicit StateStore(std::filesystem::path url);

    /// Absent, too, when the store cannot be read.
    std::optional<EditState> state(const std::string& source);

    /// Stores edits by source, in one write; the others stay. Makes the folder when it is not
    /// there. Fails as JSONMapStore::set() does, and then nothing is stored.
    Result<void> save(const std::map<std::string, EditState>& states);

private:
    using Store = JSONMapStore<EditState>;
    /// The store, when it has been read.
    Store& store();

    std::filesystem::path m_url;
    std::future<Store> m_reading; ///< valid until the first call, if there is a thread
    std::optional<Store> m_store;
};

} // namespace orvane
