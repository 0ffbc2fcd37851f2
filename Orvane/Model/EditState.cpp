#include "EditState.h"

#include "HexColor.h"
#include "Schema.h"

#include <cmath>
#include <optional>

namespace orvane {

namespace {

/// A slider has moved when its value differs by more than this.
constexpr double smallestMove = 0.001;

std::optional<double> valueOf(const Adjustments::AdjustMap& adjust, const std::string& key)
{
    const auto entry = adjust.find(key);
    return entry == adjust.end() ? std::nullopt : std::optional(entry->second);
}

bool levelsDiffer(const EditState& a, const EditState& b)
{
    for (const std::string_view key : EditState::levelsKeys) {
        if (valueOf(a.adjust, std::string(key)) != valueOf(b.adjust, std::string(key)))
            return true;
    }
    return false;
}

/// The label of the slider that moved furthest; absent when none moved.
std::optional<std::string> furthestMove(const EditState& state, const EditState& previous)
{
    const std::string* furthest = nullptr;
    double distance = 0;
    for (const auto& [key, value] : state.adjust) {
        const double moved = std::abs(value - valueOf(previous.adjust, key).value_or(0));
        if (moved > distance) {
            furthest = &key;
            distance = moved;
        }
    }
    if (!furthest || !(distance > smallestMove))
        return std::nullopt;
    return EditState::label(*furthest);
}

// Adjust keys are ASCII, and so the locale has no say in their case.
bool isLower(char c)
{
    return c >= 'a' && c <= 'z';
}
bool isUpper(char c)
{
    return c >= 'A' && c <= 'Z';
}
char lower(char c)
{
    return isUpper(c) ? char(c - 'A' + 'a') : c;
}
char upper(char c)
{
    return isLower(c) ? char(c - 'a' + 'A') : c;
}

/// "hueRed" to "Hue red".
std::string spelledOut(std::string_view key)
{
    std::string text;
    for (size_t i = 0; i < key.size(); ++i) {
        if (i > 0 && isLower(key[i - 1]) && isUpper(key[i]))
            text += ' ';
        text += i == 0 ? upper(key[i]) : lower(key[i]);
    }
    return text;
}

} // namespace

std::string EditState::Light::name() const
{
    if (type == "brush")
        return mode == "erase" ? "Eraser" : "Brush";
    if (type == "linear")
        return "Gradient";
    return brightness < 0 ? "Burn" : "Light";
}

EditState::Levels EditState::levels() const
{
    Levels levels;
    double* const values[] = {&levels.blackIn, &levels.whiteIn, &levels.gamma, &levels.blackOut,
                              &levels.whiteOut};
    for (size_t i = 0; i < levelsKeys.size(); ++i)
        *values[i] = valueOf(adjust, std::string(levelsKeys[i])).value_or(*values[i]);
    return levels;
}

std::vector<TextLayers::Item> EditState::textItems() const
{
    std::vector<TextLayers::Item> items;
    items.reserve(texts.size());
    for (const TextLayer& layer : texts) {
        const CIColor color = colorFromHex(layer.colorHex);
        TextLayers::Item item;
        item.text = layer.text;
        item.x = layer.x;
        item.y = layer.y;
        item.size = layer.size;
        item.red = color.red;
        item.green = color.green;
        item.blue = color.blue;
        item.alpha = 1;
        item.font = layer.font;
        item.shadow = layer.shadow;
        items.push_back(std::move(item));
    }
    return items;
}

std::string EditState::describe(const EditState* previous) const
{
    if (!previous)
        return "Original";
    if (crop != previous->crop)
        return "Crop";
    if (rotation != previous->rotation)
        return "Straighten";
    if (flipH != previous->flipH || flipV != previous->flipV)
        return "Flip";
    if (curve != previous->curve)
        return "Curves";
    if (lights != previous->lights)
        return "Relight";
    if (healSpots != previous->healSpots)
        return "Retouch";
    if (levelsDiffer(*this, *previous))
        return "Levels";
    if (lutID != previous->lutID)
        return lutID.empty() ? "LUT removed" : "LUT";
    if (canvasAspect != previous->canvasAspect)
        return canvasAspect == 0 ? "Canvas off" : "Canvas";
    if (canvasFill != previous->canvasFill || canvasColor != previous->canvasColor)
        return "Canvas fill";
    if (texts != previous->texts)
        return previous->texts.size() < texts.size() ? "Text added" : "Text";
    return furthestMove(*this, *previous).value_or("Edit");
}

std::string EditState::label(std::string_view adjustKey)
{
    for (const Schema::File::Group& group : Schema::groups()) {
        for (const Schema::File::Key& key : group.keys) {
            if (key.key == adjustKey)
                return key.label;
        }
    }
    return spelledOut(adjustKey);
}

} // namespace orvane
