#pragma once

#include "CIImage.h"
#include "EditState.h"
#include "LUT.h"

#include <array>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvane {

/// The longest edge that the canvas ever renders, in pixels, whatever the zoom.
inline constexpr int proxyEdge = 2560;
/// The source reduced to that: a recipe, which the drawing context draws once and keeps.
CIImage proxyOf(const CIImage& source);

/// What the canvas is asked to show: a value, so that a render in the background owns all it reads.
struct CanvasContent {
    int version = 0; ///< of the source: another number, another picture
    CIImage proxy = {}; ///< what is rendered; see proxyOf
    CGSize sourceSize = {}; ///< pixels of the full source
    EditState state = {};
    std::optional<LUT> lut = {}; ///< that the state's lutID names, when the library has it
    bool comparing = false; ///< show the picture without its grade

    bool isEmpty() const { return proxy.isEmpty(); }
};

/// The edit as the crop tool shows it: the whole frame, which is what a crop counts in, and so also
/// without the canvas that is laid round the crop.
EditState uncropped(EditState state);

/// Everything that changes the rendered picture, and only that: equal keys are equal pictures.
/// While comparing, the grade is not part of it.
struct RenderKey {
    int version = 0;
    Adjustments::AdjustMap adjust;
    Adjustments::Curve curve;
    double lutAmount = 0;
    std::string lutID;
    bool hasLut = false;
    std::vector<EditState::Light> lights;
    std::vector<HealSpot> healSpots;
    bool comparing = false;
    std::array<double, 8> geometry{}; ///< rotation, flips, crop, canvas aspect
    std::string canvasFill;
    std::string canvasColor;
    std::vector<EditState::TextLayer> texts;

    static RenderKey of(const CanvasContent& content);
    bool operator==(const RenderKey&) const = default;
};

/// The picture as a recipe: framed, and unless comparing graded, with its text over it.
CIImage picture(const CanvasContent& content);
/// The same content on a proxy that is smaller by a scale of at most 1.
CanvasContent draftOf(CanvasContent content, double scale);
/// The size that it is drawn at, in pixels, without drawing anything.
CGSize pictureSize(const CanvasContent& content);

} // namespace orvane
