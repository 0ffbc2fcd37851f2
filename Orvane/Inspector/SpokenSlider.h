#pragma once

namespace orvane {

class DoubleClickSlider;

/// What assistive technology is told of a DoubleClickSlider: an adjustable value in its own unit,
/// with its range and step.
namespace SpokenSlider {

/// Once is enough; more do nothing.
void install();
void tellChange(DoubleClickSlider& slider);

} // namespace SpokenSlider
} // namespace orvane
