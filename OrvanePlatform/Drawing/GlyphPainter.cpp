#include "GlyphPainter.h"

#include <hb-ot.h>

#include <algorithm>
#include <cstring>

namespace orvane {

namespace {

// A path grows by some 60 points a glyph; this keeps the memory for one small.
constexpr int glyphsPerPath = 256;
// Of distinct emoji, 70 kB each.
constexpr size_t heldPictures = 64;

struct Pen {
    cairo_t* target;
    Placement placement; ///< of font units, y up

    double x(float v) const { return placement.x + double(v) * placement.scale; }
    double y(float v) const { return placement.y - double(v) * placement.scale; }
};

cairo_t* targetOf(void* data)
{
    return static_cast<Pen*>(data)->target;
}

void moveTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float x, float y, void*)
{
    const Pen& pen = *static_cast<Pen*>(data);
    cairo_move_to(pen.target, pen.x(x), pen.y(y));
}

void lineTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float x, float y, void*)
{
    const Pen& pen = *static_cast<Pen*>(data);
    cairo_line_to(pen.target, pen.x(x), pen.y(y));
}

void curveTo(hb_draw_funcs_t*, void* data, hb_draw_state_t*, float x1, float y1, float x2, float y2,
             float x, float y, void*)
{
    const Pen& pen = *static_cast<Pen*>(data);
    cairo_curve_to(pen.target, pen.x(x1), pen.y(y1), pen.x(x2), pen.y(y2), pen.x(x), pen.y(y));
}

void closePath(hb_draw_funcs_t*, void* data, hb_draw_state_t*, void*)
{
    cairo_close_path(targetOf(data));
}

/// Quadratic curves come as cubic ones: the library raises them itself.
hb_draw_funcs_t* makePenFunctions()
{
    hb_draw_funcs_t* functions = hb_draw_funcs_create();
    hb_draw_funcs_set_move_to_func(functions, moveTo, nullptr, nullptr);
    hb_draw_funcs_set_line_to_func(functions, lineTo, nullptr, nullptr);
    hb_draw_funcs_set_cubic_to_func(functions, curveTo, nullptr, nullptr);
    hb_draw_funcs_set_close_path_func(functions, closePath, nullptr, nullptr);
    hb_draw_funcs_make_immutable(functions);
    return functions;
}

void addOutline(cairo_t* target, const SetGlyph& glyph, const Placement& placement)
{
    static hb_draw_funcs_t* const functions = makePenFunctions();
    Pen pen{target,
            {placement.scale / unitsPerEm, glyph.x * placement.scale + placement.x,
             glyph.y * placement.scale + placement.y}};
#if HB_VERSION_ATLEAST(7, 0, 0)
    hb_font_draw_glyph(glyph.font, glyph.glyph, functions, &pen);
#else
    hb_font_get_glyph_shape(glyph.font, glyph.glyph, functions, &pen);
#endif
}

/// A hollow frame as thick as a thin letter's stem.
void addFrame(cairo_t* target, const InkBox& box, double em)
{
    const double width = box.x1 - box.x0;
    const double height = box.y1 - box.y0;
    const double line = std::min(em * 0.06, width / 4);
    cairo_rectangle(target, box.x0, box.y0, width, height);
    // The other way round, so that it is cut out.
    cairo_rectangle(target, box.x1 - line, box.y0 + line, 2 * line - width, height - 2 * line);
}

struct Bytes {
    const char* next;
    size_t left;
};

cairo_status_t readBytes(void* closure, unsigned char* to, unsigned int length)
{
    auto& bytes = *static_cast<Bytes*>(closure);
    if (length > bytes.left)
        return CAIRO_STATUS_READ_ERROR;
    std::memcpy(to, bytes.next, length);
    bytes.next += length;
    bytes.left -= length;
    return CAIRO_STATUS_SUCCESS;
}

/// The font's largest picture of the glyph; null when the font has none of it.
CairoSurface makePicture(const SetGlyph& glyph)
{
    hb_font_t* largest = hb_font_create_sub_font(glyph.font);
    hb_font_set_ppem(largest, 0, 0);
    hb_blob_t* blob = hb_ot_color_glyph_reference_png(largest, glyph.glyph);
    unsigned int length = 0;
    const char* data = hb_blob_get_data(blob, &length);
    CairoSurface surface;
    if (length > 0) {
        Bytes bytes{data, length};
        surface.reset(cairo_image_surface_create_from_png_stream(readBytes, &bytes));
        if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
            surface.reset();
    }
    hb_blob_destroy(blob);
    hb_font_destroy(largest);
    return surface;
}

void paintPicture(cairo_t* target, cairo_surface_t* picture, const InkBox& box, double alpha)
{
    cairo_save(target);
    cairo_translate(target, box.x0, box.y0);
    cairo_scale(target, (box.x1 - box.x0) / cairo_image_surface_get_width(picture),
                (box.y1 - box.y0) / cairo_image_surface_get_height(picture));
    cairo_set_source_surface(target, picture, 0, 0);
    cairo_pattern_set_filter(cairo_get_source(target), CAIRO_FILTER_GOOD);
    cairo_paint_with_alpha(target, alpha);
    cairo_restore(target);
}

} // namespace

cairo_surface_t* GlyphPainter::picture(const SetGlyph& glyph)
{
    const Key key{glyph.font, glyph.glyph};
    const auto held = m_pictures.find(key);
    if (held != m_pictures.end())
        return held->second.get();
    if (m_pictures.size() >= heldPictures)
        m_pictures.clear();
    return m_pictures.emplace(key, makePicture(glyph)).first->second.get();
}

void GlyphPainter::paint(cairo_t* target, int width, int height, const Placement& placement,
                         const CIColor& color)
{
    // Antialiasing spreads ink over the pixel beside it.
    const InkBox visible{-1, -1, width + 1.0, height + 1.0};
    const hb_font_t* font = nullptr;
    bool pictures = false;
    int held = 0;
    cairo_set_antialias(target, CAIRO_ANTIALIAS_GOOD);
    const auto fill = [&] {
        cairo_set_source_rgba(target, color.red, color.green, color.blue, color.alpha);
        cairo_fill(target);
        held = 0;
    };
    cairo_new_path(target);
    for (const SetGlyph& glyph : m_text.glyphs) {
        const InkBox box = placement.apply(glyph.ink);
        if (!box.meets(visible))
            continue;
        // Fonts differ in the direction of their outlines, which would cancel where glyphs overlap.
        if (glyph.font != font || held >= glyphsPerPath) {
            fill();
            font = glyph.font;
            pictures = font && hb_ot_color_has_png(hb_font_get_face(glyph.font));
        }
        if (!font) {
            addFrame(target, box, placement.scale);
            ++held;
        } else if (cairo_surface_t* image = pictures ? picture(glyph) : nullptr) {
            paintPicture(target, image, box, color.alpha);
        } else {
            addOutline(target, glyph, placement);
            ++held;
        }
    }
    fill();
}

} // namespace orvane
