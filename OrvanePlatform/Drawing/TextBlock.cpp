#include "TextBlock.h"

#include "Bitmap.h"
#include "GlyphPainter.h"
#include "PixelRect.h"
#include "ShadowPainter.h"
#include "TextSetting.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

namespace orvane {

namespace {

// cairo counts path points in 1/256 pixel of 32 bits: glyphs of some ems must stay within 2^23.
constexpr double largestFont = 524288;
// A drawing is made in pieces of this side, far below the 32,767 that cairo can hold, and with
// scratch memory that stays small.
constexpr int pieceSide = 2048;

double held(double component)
{
    return component > 0 ? std::min(component, 1.0) : 0.0;
}

/// The whole pixels within width x height that a box touches.
PixelRect touched(const InkBox& box, int width, int height)
{
    const auto edge = [](double v, int limit) { return int(std::clamp(v, 0.0, double(limit))); };
    return {edge(std::floor(box.x0), width), edge(std::floor(box.y0), height),
            edge(std::ceil(box.x1), width), edge(std::ceil(box.y1), height)};
}

/// Premultiplied words of black, or of nothing.
void layGround(Bitmap& bitmap, const PixelRect& piece, const PixelRect& rect,
               const ShadowPainter* shadow)
{
    std::vector<float> strengths;
    for (int y = piece.y0; y < piece.y1; ++y) {
        uint8_t* to = bitmap.row(y - rect.y0) + size_t(piece.x0 - rect.x0) * 4;
        if (!shadow) {
            std::memset(to, 0, size_t(piece.width()) * 4);
            continue;
        }
        shadow->row(y - piece.y0, strengths);
        for (size_t x = 0; x < strengths.size(); ++x) {
            const auto alpha = uint32_t(std::lrint(strengths[x] * 255));
            const uint32_t word = alpha << 24;
            std::memcpy(to + x * 4, &word, 4);
        }
    }
}

/// From cairo's words, alpha highest, to bytes in the order red, green, blue, alpha.
void orderBytes(uint8_t* pixels, int count)
{
    for (int i = 0; i < count; ++i) {
        uint32_t word;
        std::memcpy(&word, pixels + i * 4, 4);
        pixels[i * 4] = uint8_t(word >> 16);
        pixels[i * 4 + 1] = uint8_t(word >> 8);
        pixels[i * 4 + 2] = uint8_t(word);
        pixels[i * 4 + 3] = uint8_t(word >> 24);
    }
}

} // namespace

struct TextBlock::Content {
    double fontSize = 0;
    SetText text;
};

TextBlock::TextBlock(const std::string& text, const TextStyle& style)
    : m_content(std::make_unique<Content>())
{
    const double size = style.fontSize;
    if (!(size > 0 && size <= largestFont) || !(style.wrapWidth > 0) || !(style.height > 0))
        return;
    m_content->fontSize = size;
    m_content->text = setText(text, style.font, style.wrapWidth / size, style.height / size);
}

TextBlock::~TextBlock() = default;

CGSize TextBlock::size() const
{
    return {m_content->text.width * m_content->fontSize,
            m_content->text.height * m_content->fontSize};
}

int TextBlock::lineCount() const
{
    return m_content->text.lines;
}

PlacedBitmap TextBlock::drawn(CGPoint centre, int width, int height, const CIColor& color,
                              const std::optional<TextShadow>& shadow) const
{
    const SetText& text = m_content->text;
    const CIColor paint{held(color.red), held(color.green), held(color.blue), held(color.alpha)};
    const Placement placement{m_content->fontSize, centre.x, centre.y - size().height / 2};
    if (text.ink.isEmpty() || !std::isfinite(placement.x) || !std::isfinite(placement.y))
        return {};
    // One pixel around the font's own box, which is rounded.
    InkBox covered = placement.apply(text.ink);
    covered = {covered.x0 - 1, covered.y0 - 1, covered.x1 + 1, covered.y1 + 1};
    if (shadow) {
        const double reach = ShadowPainter::reach(*shadow);
        covered.include({covered.x0 + shadow->offsetX - reach, covered.y0 + shadow->offsetY - reach,
                         covered.x1 + shadow->offsetX + reach,
                         covered.y1 + shadow->offsetY + reach});
    }
    const PixelRect rect = touched(covered, width, height);
    if (rect.isEmpty())
        return {};

    auto bitmap = std::make_shared<Bitmap>(rect.width(), rect.height(), 4, SampleType::U8,
                                           AlphaKind::Premultiplied);
    GlyphPainter glyphs(text);
    for (int y = rect.y0; y < rect.y1; y += pieceSide) {
        for (int x = rect.x0; x < rect.x1; x += pieceSide) {
            const PixelRect piece{x, y, std::min(x + pieceSide, rect.x1),
                                  std::min(y + pieceSide, rect.y1)};
            std::optional<ShadowPainter> under;
            if (shadow)
                under.emplace(glyphs, placement, *shadow, piece);
            layGround(*bitmap, piece, rect, under ? &*under : nullptr);
            uint8_t* corner = bitmap->row(y - rect.y0) + size_t(x - rect.x0) * 4;
            const CairoSurface surface(
                cairo_image_surface_create_for_data(corner, CAIRO_FORMAT_ARGB32, piece.width(),
                                                    piece.height(), int(bitmap->rowBytes())));
            const CairoContext context(cairo_create(surface.get()));
            glyphs.paint(context.get(), piece.width(), piece.height(),
                         {placement.scale, placement.x - x, placement.y - y}, paint);
            cairo_surface_flush(surface.get());
            // Memory is all that it can lack; an empty drawing would be remembered as the text.
            if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS)
                throw std::bad_alloc();
        }
    }
    for (int y = 0; y < rect.height(); ++y)
        orderBytes(bitmap->row(y), rect.width());
    return {std::move(bitmap), rect.x0, rect.y0};
}

} // namespace orvane
