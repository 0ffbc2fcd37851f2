#pragma once

#include "EditState.h"

#include <array>

/// The three stops on the input axis of the levels: where they stand, and what moving one means.
namespace orvane::LevelsStops {

using Levels = EditState::Levels;

enum class Stop { Black, Gamma, White };
inline constexpr std::array all = {Stop::Black, Stop::Gamma, Stop::White};

/// The levels' key of a stop, one of EditState::levelsKeys.
const char* key(Stop stop);
double value(const Levels& levels, Stop stop);

/// From the left edge of a plot of that width; the gamma stop stands between the two others.
double position(const Levels& levels, Stop stop, double width);
/// The value of a stop that is dragged to x: whole numbers, black and white at least 1 apart. The
/// hand reaches gammas from 388 down to 14.
double dragged(const Levels& levels, Stop stop, double x, double width);
/// The value of a stop that is moved by whole steps, to the right above 0.
double stepped(const Levels& levels, Stop stop, int steps);

} // namespace orvane::LevelsStops
