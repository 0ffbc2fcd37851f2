#pragma once

#include "EditImage.h"
#include "Looks.h"

#include <map>
#include <string>
#include <vector>

namespace orvane {

/// The looks fitted to one picture, and what each makes of it.
struct LookThumbs {
    std::vector<Looks::Look> recipes;
    std::map<std::string, Thumbnail> previews; ///< by the look's id; none where drawing failed

    /// Long edge of a preview, in pixels; what is measured is a copy of the same size.
    static constexpr int edge = 150;

    /// The recipes alone, fitted to a framed picture.
    static std::vector<Looks::Look> fitted(const CIImage& framed);
    /// Recipes and previews; a cancelled call comes back early, without all of them.
    static LookThumbs drawn(const CIImage& framed, const CancellationToken& token);
};

} // namespace orvane
