#include "PlacedBitmap.h"

#include "Bitmap.h"
#include "PixelRect.h"

namespace orvane {

namespace {

/// Rows counted from the top.
PixelRect coveredBy(const PlacedBitmap& drawing)
{
    return {drawing.x, drawing.y, drawing.x + drawing.bitmap->width(),
            drawing.y + drawing.bitmap->height()};
}

/// a b / 255, rounded.
unsigned product(unsigned a, unsigned b)
{
    const unsigned t = a * b + 128;
    return (t + (t >> 8)) >> 8;
}

void layRow(const uint8_t* from, int count, uint8_t* to)
{
    for (int i = 0; i < count; ++i, from += 4, to += 4) {
        const unsigned left = 255u - from[3];
        for (int c = 0; c < 4; ++c)
            to[c] = uint8_t(from[c] + product(to[c], left));
    }
}

} // namespace

bool meet(const PlacedBitmap& a, const PlacedBitmap& b)
{
    return !coveredBy(a).intersection(coveredBy(b)).isEmpty();
}

PlacedBitmap laidTogether(std::span<const PlacedBitmap> drawings)
{
    PixelRect all;
    for (const PlacedBitmap& drawing : drawings)
        all = all.united(coveredBy(drawing));
    auto bitmap = std::make_shared<Bitmap>(all.width(), all.height(), 4, SampleType::U8,
                                           AlphaKind::Premultiplied, BitmapContents::Zeros);
    for (const PlacedBitmap& drawing : drawings) {
        for (int y = 0; y < drawing.bitmap->height(); ++y)
            layRow(drawing.bitmap->row(y), drawing.bitmap->width(),
                   bitmap->row(drawing.y - all.y0 + y) + size_t(drawing.x - all.x0) * 4);
    }
    return {std::move(bitmap), all.x0, all.y0};
}

} // namespace orvane
