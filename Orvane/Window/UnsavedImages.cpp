#include "UnsavedImages.h"

#include "AppModel.h"

#include <map>

namespace orvane {

namespace {

/// The stored edits of a collection, handed out one after the other where it holds a source several
/// times.
class StoredEdits {
public:
    explicit StoredEdits(const Collection& collection)
    {
        for (size_t i = 0; i < std::min(collection.sources.size(), collection.edits.size()); ++i)
            m_edits.emplace(collection.sources[i], &collection.edits[i]);
    }

    /// Null when there is none left.
    const EditState* take(const std::string& source)
    {
        // Equal keys keep the order in which they were put in.
        const auto found = m_edits.lower_bound(source);
        if (found == m_edits.end() || found->first != source)
            return nullptr;
        const EditState* const edit = found->second;
        m_edits.erase(found);
        return edit;
    }

private:
    std::multimap<std::string, const EditState*> m_edits;
};

} // namespace

std::set<std::string> unsavedImages(const AppModel& model)
{
    const EditState active = model.editState();
    const Collection* const collection = model.currentCollection();
    std::optional<StoredEdits> stored;
    if (collection)
        stored.emplace(*collection);
    std::set<std::string> unsaved;
    for (const EditImage& image : model.session.value()) {
        const EditState& current = image.id == model.activeImageID.value() ? active : image.state;
        const EditState* saved = image.savedState ? &*image.savedState : nullptr;
        if (stored)
            saved = image.source ? stored->take(*image.source) : nullptr;
        if (!saved || !(current == *saved))
            unsaved.insert(image.id);
    }
    return unsaved;
}

} // namespace orvane
