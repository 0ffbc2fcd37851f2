#pragma once

#include "FileIdentity.h"
#include "LUT.h"
#include "Result.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// The library of imported LUTs: a folder with one "{id}.json" each, to which an edit refers by its
/// lutID, so that no edit depends on the file that was imported. An edit can outlive its LUT.
///
/// For one thread. The tables read last are kept as long as their files stay untouched, so that
/// asking for one again costs a look at the file only.
class LutStore {
public:
    /// The stored form of a LUT.
    struct Entry {
        std::string id; ///< "lut_" and eight characters
        std::string name; ///< of the imported file, without its extension
        int dimension = 0; ///< the edge of the cube, 2..64
        std::vector<float> rgb; ///< dimension^3 triples, in the order of the LUT's table

        /// The entry of a table, whose alpha is dropped.
        static Entry of(std::string id, std::string name, const LUT& table);

        bool operator==(const Entry&) const = default;
    };
    struct Loaded {
        std::string name;
        LUT table;
    };

    explicit LutStore(std::filesystem::path folder);

    /// Makes the folder when it is not there.
    Result<void> save(const Entry& entry) const;

    /// Absent for every reason alike: no such file, no such record, no such table.
    std::optional<Loaded> load(const std::string& id) const;
    std::optional<LUT> table(const std::string& id) const;

    /// "{id}.json" in the folder, with "_" for each "/" of the id.
    std::filesystem::path file(const std::string& id) const;

private:
    struct Kept {
        FileIdentity identity;
        std::optional<Loaded> loaded;
    };

    std::filesystem::path m_folder;
    mutable std::map<std::string, Kept> m_kept; ///< by id
};

} // namespace orvane
