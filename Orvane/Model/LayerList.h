#pragma once

#include <QProperty>

#include <algorithm>
#include <string>
#include <vector>

/// What lights and text layers have in common: a list of records with an `id`, one of them
/// selected.
namespace orvane::LayerList {

/// Changes the first element with that id. False without one: nobody is told of anything.
template <class Element, class Change>
bool changeFirst(QProperty<std::vector<Element>>& list, const std::string& id, Change change)
{
    std::vector<Element> changed = list.value();
    const auto found = std::find_if(changed.begin(), changed.end(),
                                    [&](const Element& each) { return each.id == id; });
    if (found == changed.end())
        return false;
    change(*found);
    list = std::move(changed);
    return true;
}

/// The index of the first element with that id; the count of elements without one.
template <class Element> size_t indexOf(const std::vector<Element>& list, const std::string& id)
{
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const Element& each) { return each.id == id; });
    return size_t(found - list.begin());
}

/// Removes every element with that id, which may be an element's own. If it was selected, the last
/// one left is.
template <class Element>
void remove(QProperty<std::vector<Element>>& list, QProperty<std::string>& selected,
            const std::string& id)
{
    const bool wasSelected = selected.value() == id;
    std::vector<Element> rest = list.value();
    std::erase_if(rest, [&](const Element& each) { return each.id == id; });
    list = std::move(rest);
    const std::vector<Element>& left = list.value();
    if (wasSelected)
        selected = left.empty() ? std::string() : left.back().id;
}

} // namespace orvane::LayerList
