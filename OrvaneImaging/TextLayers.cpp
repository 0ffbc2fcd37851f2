#include "TextLayers.h"

#include "Bitmap.h"
#include "RecentDrawings.h"
#include "TextBlock.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <new>
#include <string_view>

namespace orvane::TextLayers {

namespace {

/// Spaces and line ends of any script.
bool isBlank(char32_t c)
{
    return (c >= 0x09 && c <= 0x0d) || c == 0x20 || c == 0x85 || c == 0xa0 || c == 0x1680
        || (c >= 0x2000 && c <= 0x200b) || c == 0x2028 || c == 0x2029 || c == 0x202f || c == 0x205f
        || c == 0x3000;
}

/// Nothing but blanks. Of UTF-8 only sequences of up to three bytes matter: there is no blank
/// beyond.
bool isBlank(std::string_view text)
{
    for (size_t i = 0; i < text.size();) {
        const auto byte = [&](size_t k) {
            return i + k < text.size() ? char32_t(static_cast<unsigned char>(text[i + k])) : 0;
        };
        const size_t length = byte(0) < 0x80 ? 1 : byte(0) < 0xe0 ? 2 : 3;
        const char32_t c = length == 1 ? byte(0)
            : length == 2              ? (byte(0) & 0x1f) << 6 | (byte(1) & 0x3f)
                          : (byte(0) & 0x0f) << 12 | (byte(1) & 0x3f) << 6 | (byte(2) & 0x3f);
        if (byte(0) >= 0xf0 || !isBlank(c))
            return false;
        i += length;
    }
    return true;
}

/// The size of the picture that text is set for, in whole pixels.
struct Frame {
    int width;
    int height;
};

Digest keyOf(const Item& item, const Frame& frame)
{
    DigestBuilder key;
    for (const std::string& words : {item.text, item.font})
        key.add(uint64_t(words.size())).add(words.data(), words.size());
    const double numbers[] = {item.x,     item.y,    item.size,  item.red,
                              item.green, item.blue, item.alpha, item.shadow ? 1.0 : 0.0};
    key.add(numbers, sizeof numbers).add(&frame, sizeof frame);
    return key.digest();
}

PlacedBitmap drawnItem(const Item& item, const Frame& frame)
{
    const double longEdge = std::max(frame.width, frame.height);
    const double fontSize = std::max(item.size * longEdge, 1.0);
    const TextBlock block(item.text,
                          {item.font, fontSize, frame.width * 0.96, double(frame.height)});
    std::optional<TextShadow> shadow;
    if (item.shadow)
        shadow = TextShadow{0, fontSize * 0.04, fontSize * 0.12,
                            std::clamp(item.alpha, 0.0, 1.0) * 0.55};
    return block.drawn({frame.width * item.x, frame.height * item.y}, frame.width, frame.height,
                       {item.red, item.green, item.blue, item.alpha}, shadow);
}

bool isDrawable(const Item& item)
{
    return !isBlank(item.text) && std::isfinite(item.x) && std::isfinite(item.y)
        && std::isfinite(item.size) && item.alpha > 0;
}

struct Layer {
    PlacedBitmap drawing;
    Digest key;
};

RecentDrawings& recentDrawings()
{
    static RecentDrawings recent(64 << 20);
    return recent;
}

/// The items that there is something to see of, each in its own rectangle.
std::vector<Layer> drawnItems(const std::vector<Item>& items, const Frame& frame)
{
    std::vector<Layer> layers;
    for (const Item& item : items) {
        if (!isDrawable(item))
            continue;
        const Digest key = keyOf(item, frame);
        const PlacedBitmap drawing =
            recentDrawings().drawing(key, [&] { return drawnItem(item, frame); });
        if (drawing.bitmap)
            layers.push_back({drawing, key});
    }
    return layers;
}

/// Layers that lie over one another are one, blended as sRGB bytes: text over text has the edges
/// and shadows of one drawing. What lies apart stays in small rectangles.
std::vector<PlacedBitmap> joined(const std::vector<Layer>& layers)
{
    std::vector<std::vector<size_t>> groups; // members in order
    for (size_t i = 0; i < layers.size(); ++i) {
        std::vector<size_t> members{i};
        for (auto group = groups.begin(); group != groups.end();) {
            const bool meets = std::ranges::any_of(*group, [&](size_t member) {
                return meet(layers[member].drawing, layers[i].drawing);
            });
            if (meets)
                members.insert(members.end(), group->begin(), group->end());
            group = meets ? groups.erase(group) : std::next(group);
        }
        std::ranges::sort(members);
        groups.push_back(std::move(members));
    }
    std::vector<PlacedBitmap> result;
    for (const std::vector<size_t>& group : groups) {
        if (group.size() == 1) {
            result.push_back(layers[group.front()].drawing);
            continue;
        }
        DigestBuilder key;
        std::vector<PlacedBitmap> drawings;
        for (const size_t member : group) {
            key.add(layers[member].key);
            drawings.push_back(layers[member].drawing);
        }
        result.push_back(
            recentDrawings().drawing(key.digest(), [&] { return laidTogether(drawings); }));
    }
    return result;
}

} // namespace

CIImage draw(const std::vector<Item>& items, const CIImage& image)
try {
    const CGRect extent = image.extent();
    if (extent.isInfinite() || !(extent.width() >= 1) || !(extent.height() >= 1))
        return image;
    const Frame frame{int(std::lround(extent.width())), int(std::lround(extent.height()))};
    CIImage result = image;
    for (const PlacedBitmap& drawn : joined(drawnItems(items, frame))) {
        const double bottom = extent.maxY() - drawn.y - drawn.bitmap->height();
        result = CIImage::withBitmap(drawn.bitmap)
                     .transformed(CGAffineTransform::translation(extent.minX() + drawn.x, bottom))
                     .compositedOver(result)
                     .settingProperties(image.properties());
    }
    return result;
} catch (const std::bad_alloc&) {
    return image;
}

} // namespace orvane::TextLayers
