#pragma once

#include "Adjustments.h"
#include "CIImage.h"

#include <algorithm>
#include <span>

/// The stages of the grade. Private to Pipeline: the order is in Pipeline.cpp, the stages
/// themselves lie by family in Stages*.cpp.
namespace orvane::Stages {

/// Extends the image's recipe by one stage, within the image's extent.
using Draw = CIImage (*)(const CIImage& image, const Adjustments& a);

struct Stage {
    const char* name;
    bool (*runs)(const Adjustments& a);
    Draw draw;
};

/// All of them in the order in which they run.
std::span<const Stage> all();

/// The shorter side of the extent: radii are relative to it, so that a preview looks like the
/// export. 400 for an infinite image.
inline double shortSide(const CIImage& image)
{
    const CGRect extent = image.extent();
    return extent.isInfinite() ? 400 : std::min(extent.width(), extent.height());
}

// ---- StagesFrame.cpp ----
CIImage lens(const CIImage& image, const Adjustments& a);
CIImage perspective(const CIImage& image, const Adjustments& a);

// ---- StagesColour.cpp ----
CIImage whiteBalance(const CIImage& image, const Adjustments& a);
CIImage exposure(const CIImage& image, const Adjustments& a);
CIImage highlightsAndShadows(const CIImage& image, const Adjustments& a);
CIImage whitesAndBlacks(const CIImage& image, const Adjustments& a);
CIImage contrast(const CIImage& image, const Adjustments& a);
CIImage curves(const CIImage& image, const Adjustments& a);
CIImage saturation(const CIImage& image, const Adjustments& a);
CIImage vibrance(const CIImage& image, const Adjustments& a);
CIImage colourTable(const CIImage& image, const Adjustments& a);
CIImage levels(const CIImage& image, const Adjustments& a);
CIImage colourMixer(const CIImage& image, const Adjustments& a);
CIImage fade(const CIImage& image, const Adjustments& a);

// ---- StagesLocal.cpp ----
CIImage heal(const CIImage& image, const Adjustments& a);
CIImage relight(const CIImage& image, const Adjustments& a);
CIImage texture(const CIImage& image, const Adjustments& a);
CIImage clarity(const CIImage& image, const Adjustments& a);
CIImage dehaze(const CIImage& image, const Adjustments& a);
CIImage noiseReduction(const CIImage& image, const Adjustments& a);
CIImage sharpening(const CIImage& image, const Adjustments& a);

// ---- StagesEffects.cpp ----
CIImage bloom(const CIImage& image, const Adjustments& a);
CIImage halation(const CIImage& image, const Adjustments& a);
CIImage tiltShift(const CIImage& image, const Adjustments& a);
CIImage duotone(const CIImage& image, const Adjustments& a);
CIImage vignette(const CIImage& image, const Adjustments& a);
CIImage splitTone(const CIImage& image, const Adjustments& a);
CIImage grain(const CIImage& image, const Adjustments& a);

} // namespace orvane::Stages
