#pragma once

#include "Planner.h"

#include <vector>

namespace orvane {

/// Some rows of one pass, over its whole width.
struct ScheduledRows {
    int pass = -1;
    PixelRect rect; ///< in the units of the pass's target
};

/// In which order the rows of all passes are drawn, and how much of each stored image is in memory
/// at once.
///
/// Rows are drawn as they are asked for, from the top: before some rows of a pass, those that it
/// reads of stored images. So a picture goes through a chain of passes in bands, each stored image
/// is a window of rows that moves down with its readers, and what was just drawn is read while it
/// is still in the processor's cache. A reader that jumps about, such as a quarter turn of a stored
/// image, makes the window as high as it needs: in the worst case the whole image.
struct Schedule {
    /// Steps side by side may be under way at the same time.
    static constexpr size_t stepsAtOnce = 3;

    struct Image {
        int rows = 0; ///< at most this many are alive at once; 0: not drawn
        int lastStep = -1; ///< after this step nobody reads it
        int lastDrawn = -1; ///< after this step it is complete
    };
    std::vector<ScheduledRows> steps;
    std::vector<Image> images; ///< by stored image
};

/// How many tiles a step holds at least, where the pass has so many.
struct TilesAtOnce {
    int pixels = 1; ///< of passes that draw pixels
    int cells = 1; ///< of those that draw cells of a coarse grid
};

/// available: by stored image, whether it is in memory already and need not be drawn.
Schedule makeSchedule(const Plan& plan, const std::vector<bool>& available,
                      TilesAtOnce tilesAtOnce);

} // namespace orvane
