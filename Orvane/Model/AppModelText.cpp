// The text tool.

#include "AppModel.h"

#include "Finite.h"
#include "FontFamilies.h"
#include "LayerList.h"
#include "Wording.h"

#include <utility>

namespace orvane {

namespace {

EditState::TextLayer newText()
{
    return {.id = "t_" + newUUID().substr(0, 6),
            .text = "Your text",
            .x = 0.5,
            .y = 0.85,
            .size = 0.06,
            .colorHex = "#ffffff",
            .font = "",
            .shadow = true};
}

std::vector<LookItem> fontItems()
{
    std::vector<LookItem> items = {{"", "System"}};
    for (const std::string& family : fontFamilies())
        items.push_back({family, family});
    return items;
}

} // namespace

const std::vector<LookItem>& AppModel::textFonts()
{
    // Built on first use: finding the fonts takes longer than a frame.
    static const std::vector<LookItem> items = fontItems();
    return items;
}

void AppModel::addText()
{
    TextLayer layer = newText();
    const std::string id = layer.id;
    std::vector<TextLayer> changed = texts.value();
    changed.push_back(std::move(layer));
    texts = std::move(changed);
    selectedTextID = id;
    commitHistory();
}

void AppModel::selectText(const std::string& id)
{
    const auto& layers = texts.value();
    if (id.empty() || LayerList::indexOf(layers, id) < layers.size())
        selectedTextID = id;
}

void AppModel::setText(const std::string& id, const std::string& text)
{
    if (LayerList::changeFirst(texts, id, [&](TextLayer& layer) { layer.text = text; }))
        pushHistory();
}

void AppModel::setTextSize(const std::string& id, double size)
{
    if (!areFinite(size))
        return;
    if (LayerList::changeFirst(texts, id, [&](TextLayer& layer) { layer.size = size; }))
        pushHistory();
}

void AppModel::setTextColor(const std::string& id, const std::string& hex)
{
    if (LayerList::changeFirst(texts, id, [&](TextLayer& layer) { layer.colorHex = hex; }))
        pushHistory();
}

void AppModel::setTextFont(const std::string& id, const std::string& font)
{
    if (LayerList::changeFirst(texts, id, [&](TextLayer& layer) { layer.font = font; }))
        commitHistory();
}

void AppModel::setTextShadow(const std::string& id, bool shadow)
{
    if (LayerList::changeFirst(texts, id, [&](TextLayer& layer) { layer.shadow = shadow; }))
        commitHistory();
}

void AppModel::setTextPosition(const std::string& id, double x, double y)
{
    if (!areFinite(x, y))
        return;
    const auto move = [&](TextLayer& layer) {
        layer.x = x;
        layer.y = y;
    };
    if (LayerList::changeFirst(texts, id, move))
        commitHistory();
}

void AppModel::moveText(const std::string& id, bool forward)
{
    std::vector<TextLayer> changed = texts.value();
    const size_t from = LayerList::indexOf(changed, id);
    // Below the first layer the index wraps round, and so is out of the list there, too.
    const size_t to = forward ? from + 1 : from - 1;
    if (from >= changed.size() || to >= changed.size())
        return;
    std::swap(changed[from], changed[to]);
    texts = std::move(changed);
    commitHistory();
}

void AppModel::deleteText(const std::string& id)
{
    if (LayerList::indexOf(texts.value(), id) >= texts.value().size())
        return;
    LayerList::remove(texts, selectedTextID, id);
    commitHistory();
}

int AppModel::textLayerNumber(const std::string& id) const
{
    const size_t index = LayerList::indexOf(texts.value(), id);
    return index < texts.value().size() ? int(index) + 1 : 1;
}

} // namespace orvane
