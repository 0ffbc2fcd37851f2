// Text is always set at 16 pixels an em, unhinted and with fractional advances, and scaled when it
// is drawn: so a picture's preview and its export break at the same words. Pango counts in 1/1024
// pixel and 32 bits, which leaves 1/16384 em of precision and 131,072 ems for a line.
#include "TextSetting.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace orvane {

void InkBox::include(const InkBox& other)
{
    if (other.isEmpty())
        return;
    if (isEmpty()) {
        *this = other;
        return;
    }
    x0 = std::min(x0, other.x0);
    y0 = std::min(y0, other.y0);
    x1 = std::max(x1, other.x1);
    y1 = std::max(y1, other.y1);
}

namespace {

constexpr double widestLine = 60000;

// A picture does not show more; what comes after it is left out.
constexpr size_t longestText = 1 << 19;
// Wrapping takes time by the square of a paragraph's length: a long one is set in parts, of at
// least so many lines.
constexpr size_t partBytes = 512;
constexpr unsigned partLines = 4;

/// Valid UTF-8 without control characters but line breaks and tabs.
std::string cleaned(const std::string& text)
{
    std::string kept;
    for (const char c : text.substr(0, longestText)) {
        const auto byte = static_cast<unsigned char>(c);
        const bool layout = c == '\n' || c == '\r' || c == '\t';
        if ((byte >= 0x20 && byte != 0x7f) || layout)
            kept += c;
    }
    char* valid = g_utf8_make_valid(kept.c_str(), gssize(kept.size()));
    std::string result(valid);
    g_free(valid);
    return result;
}

std::string familyList(const std::string& font)
{
    const bool usable = !font.empty() && font.size() <= 256
        && g_utf8_validate(font.c_str(), gssize(font.size()), nullptr) != 0;
    return (usable ? font + "," : "") + "Inter,sans-serif";
}

std::shared_ptr<PangoContext> makeContext()
{
    // Pango's default map belongs to the thread: fonts are found once and kept as long as it.
    std::shared_ptr<PangoContext> context(
        pango_font_map_create_context(pango_cairo_font_map_get_default()), g_object_unref);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context.get(), options);
    cairo_font_options_destroy(options);
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    return context;
}

std::shared_ptr<PangoLayout> makeLayout(PangoContext* context, const std::string& font,
                                        double wrapWidth)
{
    std::shared_ptr<PangoLayout> layout(pango_layout_new(context), g_object_unref);
    PangoFontDescription* description = pango_font_description_new();
    pango_font_description_set_family(description, familyList(font).c_str());
    pango_font_description_set_absolute_size(description, unitsPerEm);
    pango_layout_set_font_description(layout.get(), description);
    pango_font_description_free(description);
    pango_layout_set_width(layout.get(), int(std::min(wrapWidth, widestLine) * unitsPerEm));
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    return layout;
}

hb_font_t* keptFont(SetText& set, PangoFont* font)
{
    const auto isIt = [&](const auto& kept) { return kept.get() == font; };
    if (std::none_of(set.fonts.begin(), set.fonts.end(), isIt))
        set.fonts.emplace_back(static_cast<PangoFont*>(g_object_ref(font)), g_object_unref);
    return pango_font_get_hb_font(font);
}

/// A character that no font has: a frame of its advance.
void addMissing(SetText& set, double x, double baseline, double advance)
{
    const double inset = std::min(0.05, advance / 8);
    const InkBox ink{x + inset, baseline - 0.75, x + advance - inset, baseline};
    if (!ink.isEmpty())
        set.add({nullptr, 0, x, baseline, ink});
}

void addRun(SetText& set, const PangoGlyphItem& run, double& x, double baseline)
{
    hb_font_t* font = keptFont(set, run.item->analysis.font);
    for (int i = 0; i < run.glyphs->num_glyphs; ++i) {
        const PangoGlyphInfo& info = run.glyphs->glyphs[i];
        const double advance = info.geometry.width / unitsPerEm;
        if (info.glyph & PANGO_GLYPH_UNKNOWN_FLAG) {
            addMissing(set, x, baseline, advance);
        } else if (info.glyph != PANGO_GLYPH_EMPTY) {
            const double gx = x + info.geometry.x_offset / unitsPerEm;
            const double gy = baseline + info.geometry.y_offset / unitsPerEm;
            hb_glyph_extents_t box{};
            hb_font_get_glyph_extents(font, info.glyph, &box);
            const double left = gx + box.x_bearing / unitsPerEm;
            const double top = gy - box.y_bearing / unitsPerEm;
            const InkBox ink{left, top, left + box.width / unitsPerEm,
                             top - box.height / unitsPerEm};
            if (!ink.isEmpty())
                set.add({font, info.glyph, gx, gy, ink});
        }
        x += advance;
    }
}

/// False when the line does not fit in the height any more.
bool addLine(SetText& set, PangoLayoutLine* line, double height)
{
    PangoRectangle extents;
    pango_layout_line_get_extents(line, nullptr, &extents);
    const double lineHeight = extents.height / unitsPerEm;
    if (set.lines > 0 && set.height + lineHeight > height)
        return false;
    const double lineWidth = extents.width / unitsPerEm;
    double x = -lineWidth / 2;
    for (const GSList* run = line->runs; run; run = run->next)
        addRun(set, *static_cast<const PangoGlyphItem*>(run->data), x,
               set.height - extents.y / unitsPerEm);
    set.width = std::max(set.width, lineWidth);
    set.height += lineHeight;
    ++set.lines;
    return true;
}

/// As many bytes as asked for, or a few less where a character would be cut.
std::string_view part(std::string_view text, size_t bytes)
{
    if (text.size() <= bytes)
        return text;
    const char* end = g_utf8_find_prev_char(text.data(), text.data() + bytes + 1);
    return text.substr(0, size_t(end - text.data()));
}

void fixDirection(PangoLayout* layout, const PangoLayoutLine& line)
{
    pango_context_set_base_dir(pango_layout_get_context(layout), PangoDirection(line.resolved_dir));
    pango_layout_set_auto_dir(layout, FALSE);
}

/// Sets one paragraph; false when the height is used up. Of a part the last line is set again with
/// what follows it.
bool addParagraph(SetText& set, PangoLayout* layout, std::string_view text, double height)
{
    pango_layout_set_auto_dir(layout, TRUE);
    size_t bytes = partBytes;
    while (true) {
        const std::string_view now = part(text, bytes);
        const bool whole = now.size() == text.size();
        pango_layout_set_text(layout, now.data(), int(now.size()));
        GSList* lines = pango_layout_get_lines_readonly(layout);
        if (!whole && g_slist_length(lines) < partLines) {
            bytes *= 2;
            continue;
        }
        if (!whole) // what follows runs in the direction of the paragraph's beginning
            fixDirection(layout, *static_cast<const PangoLayoutLine*>(lines->data));
        for (; lines; lines = lines->next) {
            auto* line = static_cast<PangoLayoutLine*>(lines->data);
            if (!whole && !lines->next) {
                text.remove_prefix(size_t(line->start_index));
                break;
            }
            if (!addLine(set, line, height))
                return false;
        }
        if (whole)
            return true;
    }
}

/// Cuts the first paragraph off the text, and the line break behind it. A line break at the very
/// end begins no further line.
std::string_view takeParagraph(std::string_view& text, bool& last)
{
    int end = 0;
    int next = 0;
    pango_find_paragraph_boundary(text.data(), int(text.size()), &end, &next);
    const std::string_view paragraph = text.substr(0, size_t(end));
    text.remove_prefix(size_t(next));
    last = text.empty();
    return paragraph;
}

} // namespace

void SetText::add(const SetGlyph& glyph)
{
    glyphs.push_back(glyph);
    ink.include(glyph.ink);
}

SetText setText(const std::string& text, const std::string& font, double wrapWidth, double height)
{
    SetText set;
    const std::string words = cleaned(text);
    const auto context = makeContext();
    const auto layout = makeLayout(context.get(), font, wrapWidth);
    std::string_view rest = words;
    for (bool last = false; !last;) {
        const std::string_view paragraph = takeParagraph(rest, last);
        if (!addParagraph(set, layout.get(), paragraph, height))
            break;
    }
    return set;
}

} // namespace orvane
