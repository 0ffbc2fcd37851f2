#pragma once

#include "CGGeometry.h"

#include <optional>

namespace orvane {

inline constexpr double maximumZoom = 16;

/// How a picture lies in its view: fitted and centred, then scaled about the view's centre, then
/// moved. View points count from the view's top left, y down; image fractions count 0..1 from the
/// picture's top left.
struct CanvasView {
    CGSize frame = {}; ///< pixels of the picture on screen; a side below 1 means that there is none
    CGSize size = {}; ///< the view, in view points
    double zoom = 1; ///< 1 is fitted; what is below counts as 1
    double pinch = 1; ///< scale of a pinch in progress
    CGPoint pan = {}; ///< view points

    bool hasFrame() const { return frame.width >= 1 && frame.height >= 1; }
};

/// View points for one pixel of a picture that is fitted into the view.
double fitScale(const CGSize& view, const CGSize& frame);

/// zoom times pinch, at least 1: the scale on screen over the fitted one.
double effectiveZoom(const CanvasView& view);

/// Where the picture is on screen, a pinch in progress included. In view points, with y down.
CGRect pictureRect(const CanvasView& view);

/// The image fractions under a view point; absent beyond the picture's edges or without a picture.
std::optional<CGPoint> normalized(const CGPoint& viewPoint, const CanvasView& view);

/// The same beyond the picture's edges too, where the fractions are below 0 or above 1. There must
/// be a picture.
CGPoint fractionAt(const CGPoint& viewPoint, const CanvasView& view);

/// The inverse, also for fractions beyond 0..1; the view's centre without a picture.
CGPoint viewPoint(const CGPoint& fraction, const CanvasView& view);

/// A fraction of the picture's long edge in view points: at least 3, so that overlays stay visible,
/// and 10 without a picture.
double imageLength(double fraction, const CanvasView& view);

/// The zoom that shows one source pixel on one view point, held to 1..16.
double actualSizeZoom(const CGSize& source, const CGSize& view);

/// One step of the zoom commands: 1.25 times, held to 1..16.
double zoomedIn(double zoom);
double zoomedOut(double zoom);
double heldZoom(double zoom);

/// The pan at which `zoom` leaves what is under `point` where it is.
CGPoint panKeeping(const CGPoint& point, double zoom, const CanvasView& view);

/// The pan held so that the view's centre stays on the picture: it cannot be lost out of sight.
/// A fitted picture is not moved at all.
CGPoint heldPan(const CanvasView& view);

} // namespace orvane
