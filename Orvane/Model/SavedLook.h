#pragma once

#include "EditState.h"
#include "Result.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace orvane {

/// A grade that a person has named: sliders and curves. Crop, lights and LUT are no part of it.
struct SavedLook {
    std::string id; ///< "look_" and eight characters
    std::string name; ///< trimmed, at most 80 characters
    Adjustments::AdjustMap adjust; ///< every slider of the catalogue, at rest or not
    std::map<std::string, std::vector<EditState::CurvePoint>> curve; ///< by channel, as in an edit
    double created = 0; ///< seconds since 1970

    bool operator==(const SavedLook&) const = default;
};

/// The file of the saved looks, "saved-looks.json": a list of records, newest first.
class LooksStore {
public:
    static constexpr size_t mostLooks = 100;

    explicit LooksStore(std::filesystem::path url);

    /// None when the file is missing. When it cannot be read, what was last read or saved here;
    /// that also after the file has been moved aside, until a save puts a new one in its place.
    std::vector<SavedLook> load();

    /// Keeps the first hundred. Fails as JSONStore::loadForUpdate() and save() do; a file that
    /// cannot be read is never replaced without a word.
    Result<void> save(std::vector<SavedLook> looks);

    /// Takes the look of an id out of the file and answers the others.
    Result<std::vector<SavedLook>> remove(const std::string& id);

private:
    std::filesystem::path m_url;
    std::vector<SavedLook> m_known; ///< as last read or saved
    bool m_isDamaged = false; ///< the file could not be read, and nothing has replaced it yet
};

} // namespace orvane
