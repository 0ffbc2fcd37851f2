#pragma once

#include <pango/pangocairo.h>

#include <memory>
#include <string>
#include <vector>

namespace orvane {

/// A rectangle in ems or target pixels, y downwards.
struct InkBox {
    double x0 = 0;
    double y0 = 0;
    double x1 = 0;
    double y1 = 0;

    bool isEmpty() const { return !(x0 < x1 && y0 < y1); }
    bool meets(const InkBox& o) const { return x0 < o.x1 && o.x0 < x1 && y0 < o.y1 && o.y0 < y1; }
    void include(const InkBox& other);
};

/// One glyph at its origin on the baseline; without a font, the frame of a character that no font
/// has. Ems, x from the block's middle to the right, y from its
/// top downwards; the ink box likewise.
struct SetGlyph {
    hb_font_t* font;
    hb_codepoint_t glyph;
    double x;
    double y;
    InkBox ink;
};

struct SetText {
    std::vector<SetGlyph> glyphs;
    InkBox ink; ///< around all glyphs
    double width = 0; ///< of the widest line, in ems
    double height = 0;
    int lines = 0;
    /// Those of the glyphs.
    std::vector<std::shared_ptr<PangoFont>> fonts;

    void add(const SetGlyph& glyph);
};

/// One em in the units of an hb_font_t of a set text.
inline constexpr double unitsPerEm = 16.0 * PANGO_SCALE;

/// Breaks the text into lines of at most wrapWidth and sets as many as the height holds, at least
/// one; both in ems.
SetText setText(const std::string& text, const std::string& font, double wrapWidth, double height);

} // namespace orvane
