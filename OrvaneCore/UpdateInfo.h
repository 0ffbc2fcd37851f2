#pragma once

#include <string>

namespace orvane {

/// A newer version of the program that is offered.
struct UpdateInfo {
    std::string version;
    std::string downloadURL; ///< https, with a host
    std::string notes; ///< may be empty

    bool operator==(const UpdateInfo&) const = default;
};

} // namespace orvane
