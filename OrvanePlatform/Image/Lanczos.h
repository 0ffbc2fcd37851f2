#pragma once

#include "Node.h"

#include <vector>

namespace orvane {

/// The taps of one output sample: input pixels first .. first + weights.size() - 1, whose sum is 1.
/// Taps beyond the axis's input are to be held at its ends.
struct LanczosTaps {
    int first = 0;
    std::vector<double> weights;
};

/// Three lobes when reducing, two when enlarging; centres at (i + 0.5) / scale.
LanczosTaps lanczosTaps(const LanczosAxis& axis, int output);

} // namespace orvane
