#include "FontFamilies.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace orvane {

namespace {

/// Pango lists these beside the fonts; they stand for whatever font the desktop has chosen.
constexpr std::array<std::string_view, 4> placeholders = {"Monospace", "Sans", "Serif",
                                                          "System-ui"};

/// A comma would be read as the end of the family's name.
bool isChoosable(std::string_view name)
{
    return !name.empty() && name.find(',') == std::string_view::npos
        && std::find(placeholders.begin(), placeholders.end(), name) == placeholders.end();
}

} // namespace

std::vector<std::string> fontFamilies()
{
    PangoFontFamily** families = nullptr;
    int count = 0;
    pango_font_map_list_families(pango_cairo_font_map_get_default(), &families, &count);
    std::vector<std::string> names;
    for (int i = 0; i < count; ++i) {
        if (const char* const name = pango_font_family_get_name(families[i]); isChoosable(name))
            names.emplace_back(name);
    }
    g_free(static_cast<void*>(families));
    std::sort(names.begin(), names.end());
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

} // namespace orvane
