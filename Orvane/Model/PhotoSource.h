#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// What the session needs of the system photo library. All completions come on the main thread,
/// perhaps before the call returns.
class PhotoSource {
public:
    struct Photo {
        std::vector<uint8_t> data; ///< the encoded file
        std::string name; ///< with the extension
        std::string identifier; ///< in the library; empty when the library gives none
    };
    using Completion = std::function<void(std::vector<Photo>)>;

    virtual ~PhotoSource() = default;

    /// The photos with these identifiers, in any order; one that cannot be loaded is left out.
    virtual void loadFullImages(const std::vector<std::string>& identifiers,
                                Completion completion) = 0;
    /// Lets the user pick photos, in a panel over the window; none when it is cancelled.
    virtual void pickImages(Completion completion) = 0;
};

} // namespace orvane
