#pragma once

#include "AppModelFields.h"

class QPainter;
class QRectF;

namespace orvane {

/// The three channels as areas from the frame's lower edge, added to each other and to what is
/// there, so that they turn white where they overlap. Bin 0 stands on the left edge, bin 255 on the
/// right one; a list that is not of 256 bins is left out.
void drawHistogram(QPainter& painter, const QRectF& frame, const Histogram& histogram,
                   double opacity);

} // namespace orvane
