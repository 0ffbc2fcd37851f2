#pragma once

#include "Result.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// An entry of any list of things to choose from: crop aspects, looks.
struct LookItem {
    std::string id;
    std::string name;

    bool operator==(const LookItem&) const = default;
};

/// The catalogue of the sliders and crop aspects, "schema.json" among the packaged resources.
namespace Schema {

/// The decoded catalogue. The order of its lists is the order on screen.
struct File {
    /// A slider: its key in the edit, its range and its rest value.
    struct Key {
        std::string key;
        std::string label;
        double min = 0;
        double max = 0;
        double def = 0;

        bool operator==(const Key&) const = default;
    };
    struct Group {
        std::string label;
        std::vector<Key> keys;

        bool operator==(const Group&) const = default;
    };
    using Aspect = LookItem;

    std::vector<Group> schema;
    std::vector<Aspect> aspects;
    /// What a new grade starts from. It need not name every slider: an absent one stands at its
    /// neutral value. The shipped file names those that rest at 0 and no others, because the
    /// history list takes a value that appears for a move away from 0.
    std::map<std::string, double> defaults;

    bool operator==(const File&) const = default;
};

/// Strict: each key of the format is a required read, others are ignored.
Result<File> decoded(std::string_view text);

/// The packaged catalogue, read on first use and kept; an empty one when it cannot be read.
const File& file();

const std::vector<File::Group>& groups();
const std::vector<LookItem>& aspects();

} // namespace Schema

} // namespace orvane
