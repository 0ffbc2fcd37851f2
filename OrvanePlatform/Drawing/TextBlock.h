#pragma once

#include "CGGeometry.h"
#include "CIImage.h"
#include "PlacedBitmap.h"

#include <memory>
#include <optional>
#include <string>

namespace orvane {

struct TextStyle {
    std::string font; ///< a family's name; empty means the interface font. Unknown names fall back
    double fontSize = 1; ///< pixels of one em
    double wrapWidth = 0; ///< pixels; lines break at words, and within a word that is longer
    double height = 0; ///< pixels; lines that do not fit are left out, but never the first
};

/// Black, under the text: the ink moved by the offset and blurred by a Gaussian whose sigma is half
/// the blur.
struct TextShadow {
    double offsetX = 0; ///< pixels to the right
    double offsetY = 0; ///< pixels downwards
    double blur = 0; ///< pixels
    double alpha = 1;
};

/// A block of text, set in centred lines of any script, ready to be measured and drawn. Line breaks
/// depend on the ratios of the style's lengths alone, so they are the same at every size of a
/// picture. Uses its thread's own fonts: a block stays on the thread that made it.
class TextBlock {
public:
    /// text is UTF-8; what is not is drawn as a replacement character. Sizes that are no numbers or
    /// beyond 2^19 pixels an em give an empty block.
    TextBlock(const std::string& text, const TextStyle& style);
    ~TextBlock();
    TextBlock(const TextBlock&) = delete;
    TextBlock& operator=(const TextBlock&) = delete;

    /// The lines' width and height in pixels, whatever their ink.
    CGSize size() const;
    int lineCount() const;

    /// The block centred at `centre` (pixels from the left and the top edge, fractions kept) on a
    /// picture of width x height: only the rectangle that ink and shadow cover of the picture, as
    /// premultiplied sRGB bytes. The colour is straight sRGB, held to 0..1.
    PlacedBitmap drawn(CGPoint centre, int width, int height, const CIColor& color,
                       const std::optional<TextShadow>& shadow) const;

private:
    struct Content;
    std::unique_ptr<Content> m_content;
};

} // namespace orvane
