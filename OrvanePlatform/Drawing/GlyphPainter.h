#pragma once

#include "CIImage.h"
#include "CairoHandles.h"
#include "TextSetting.h"

#include <map>
#include <utility>

namespace orvane {

/// From a set text's ems to a target's pixels: p = em * scale + offset.
struct Placement {
    double scale = 1;
    double x = 0;
    double y = 0;

    InkBox apply(const InkBox& b) const
    {
        return {b.x0 * scale + x, b.y0 * scale + y, b.x1 * scale + x, b.y1 * scale + y};
    }
};

/// Paints set text at any size and fraction of a pixel. Outlines are filled straight from the font,
/// so nothing is rounded to pixels and no glyph is ever held as a picture of its size; pictures of
/// glyphs (colour emoji) are scaled from the font's own.
class GlyphPainter {
public:
    explicit GlyphPainter(const SetText& text)
        : m_text(text)
    {
    }

    /// What falls on the target of width x height pixels. Of a target that holds alpha alone only
    /// the colour's alpha counts.
    void paint(cairo_t* target, int width, int height, const Placement& placement,
               const CIColor& color);

private:
    using Key = std::pair<hb_font_t*, hb_codepoint_t>;
    cairo_surface_t* picture(const SetGlyph& glyph);

    const SetText& m_text;
    std::map<Key, CairoSurface> m_pictures;
};

} // namespace orvane
