// areaHistogram: for each channel of the straight linear colour and for alpha, bin = clamp(floor(v
// count), 0, count - 1); each bin holds its share of the rectangle's pixels, times scale. The
// renderers count; here is the recipe alone.

#include "Filters/CIFilter.h"

#include "Node.h"

namespace orvane {

CIImage CIFilter::areaHistogram(const CIImage& input, const CGRect& rect, int count, double scale)
{
    const CGRect area = rect.isInfinite() ? input.extent() : rect;
    const PixelRect region = area.isInfinite() ? PixelRect{} : roundedRect(area);
    if (region.isEmpty() || count < 1)
        return CIImage();
    return CIImage(makeNode(HistogramNode{region, count, float(scale)}, {input.node()},
                            Extent::of({0, 0, count, 1}), false));
}

} // namespace orvane
