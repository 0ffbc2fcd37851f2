// Collections: named sets of sources with their edits.

#include "AppModel.h"

#include "Wording.h"

#include <algorithm>

namespace orvane {

namespace {

/// Seconds between the beginnings of 1970 and of 2001, from which collections count.
constexpr double secondsTo2001 = 978307200;

Alert lostQuestion(size_t lost)
{
    const bool one = lost == 1;
    const std::string count = std::to_string(lost);
    const std::string them = one ? "it" : "them";
    return {.message = count + " image" + (one ? "" : "s") + " can't be saved in a collection",
            .informative =
                "A collection remembers where your images live, not copies of them — and "
                + (one ? std::string("one image was") : count + " images were")
                + " dropped straight onto the canvas, so Orvane doesn't know where "
                + (one ? "it came" : "they came") + " from. Add " + them
                + " with the + button (or from Photos) and " + them + " will save fine.",
            .buttons = {"Save the Rest", "Cancel"}};
}

Alert deletionQuestion(const std::string& name, bool holdsVariants)
{
    const std::string untouched =
        "Your original photos are untouched, but this collection's grouping and the edits you "
        "saved to it will be removed. ";
    return {.message = "Delete the collection " + inQuotes(name) + "?",
            .informative = untouched
                + (holdsVariants
                       ? "It's also holding more than one version of the same photo — those stay "
                         "open, and Orvane will ask you to save them as a new collection."
                       : "This can't be undone."),
            .buttons = {"Delete", "Cancel"},
            .isFirstDestructive = true};
}

} // namespace

const Collection* AppModel::currentCollection() const
{
    const auto& all = collections.value();
    const auto found = named(all, currentCollectionName);
    return found == all.end() ? nullptr : &*found;
}

/// What the list holds of a collection that a caller took from it some time ago. Every save gives
/// it another id, so that the name has to find it then; null when both are gone.
const Collection* AppModel::storedCollection(const Collection& record) const
{
    const auto& all = collections.value();
    auto found = std::find_if(all.begin(), all.end(),
                              [&](const Collection& c) { return c.id == record.id; });
    if (found == all.end())
        found = named(all, record.name);
    return found == all.end() ? nullptr : &*found;
}

Collection AppModel::collectionOfSession(const std::string& name) const
{
    Collection collection;
    collection.id = newUUID();
    collection.name = name;
    for (const EditImage& image : session.value()) {
        if (!image.source)
            continue;
        collection.sources.push_back(*image.source);
        collection.edits.push_back(image.state);
    }
    collection.updatedAt = now() - secondsTo2001;
    return collection;
}

/// Stores the list, or tells why not, and reads it back: in its order, and with what the store has
/// kept beside it.
bool AppModel::storeCollections(const std::vector<Collection>& changed,
                                const std::string& complaint)
{
    makeSupportFolder();
    if (const Result<void> stored = m_collectionStore.save(changed); !stored) {
        report(complaint, stored.error());
        return false;
    }
    collections = m_collectionStore.load();
    return true;
}

// ---- Saving ----

bool AppModel::saveCollection(const std::string& name)
{
    const std::string wanted = trimmed(name);
    if (wanted.empty() || session.value().empty())
        return false;
    // A picture that only memory holds cannot be found again when the collection is opened.
    const auto& open = session.value();
    const auto lost = size_t(
        std::count_if(open.begin(), open.end(), [](const EditImage& i) { return !i.source; }));
    if (lost > 0 && (m_desktop.ask(lostQuestion(lost)) != 0 || lost == open.size()))
        return false;
    // What goes into the file is the parked edits.
    parkActiveState();
    // A namesake is replaced, and takes the case of the new name.
    std::vector<Collection> changed = collections;
    std::erase_if(changed, [&](const Collection& c) { return isSameName(c.name, wanted); });
    changed.push_back(collectionOfSession(wanted));
    if (!storeCollections(changed, "Couldn't save the collection " + inQuotes(name)))
        return false;
    currentCollectionName = wanted;
    syncWindowChrome();
    return true;
}

/// For a second version of a photo: the set becomes a collection with a name that is free.
bool AppModel::autoCreateCollectionForVariants()
{
    parkActiveState();
    const auto& all = collections.value();
    const std::string name = freeName(all, "Untitled");
    const Collection made = collectionOfSession(name);
    if (made.sources.empty())
        return false;
    std::vector<Collection> changed = all;
    changed.push_back(made);
    if (!storeCollections(changed, "Couldn't make a collection to hold the new version"))
        return false;
    currentCollectionName = name;
    syncWindowChrome();
    return true;
}

void AppModel::renameCollection(const Collection& collection, const std::string& name)
{
    const std::string wanted = trimmed(name);
    const Collection* const stored = storedCollection(collection);
    if (wanted.empty() || !stored)
        return;
    const Collection old = *stored;
    std::vector<Collection> changed = collections;
    // Its own name in another case is no conflict.
    const bool isTaken = std::any_of(changed.begin(), changed.end(), [&](const Collection& c) {
        return c.id != old.id && isSameName(c.name, wanted);
    });
    if (isTaken) {
        m_desktop.ask({.message = "A collection named " + inQuotes(wanted) + " already exists"});
        return;
    }
    for (Collection& candidate : changed) {
        if (candidate.id != old.id)
            continue;
        candidate.name = wanted;
        candidate.updatedAt = now() - secondsTo2001;
    }
    if (!storeCollections(changed, "Couldn't rename the collection " + inQuotes(name)))
        return;
    if (isSameName(old.name, currentCollectionName)) {
        currentCollectionName = wanted;
        syncWindowChrome();
    }
}

void AppModel::deleteCollection(const Collection& collection)
{
    const Collection* const stored = storedCollection(collection);
    if (!stored)
        return;
    // A copy: it is an entry of the list that is about to change.
    const Collection deleted = *stored;
    const bool isOpen = isSameName(deleted.name, currentCollectionName);
    const bool holdsVariants =
        isOpen && !SessionRules::conflictingVariantSources(sessionItems()).empty();
    if (m_desktop.ask(deletionQuestion(deleted.name, holdsVariants)) != 0)
        return;
    std::vector<Collection> changed = collections;
    std::erase_if(changed, [&](const Collection& c) { return c.id == deleted.id; });
    if (!storeCollections(changed, "Couldn't delete the collection " + inQuotes(deleted.name)))
        return;
    // Its images stay, loose, so that what was edited in them can still be saved.
    if (isOpen) {
        currentCollectionName = std::string();
        syncWindowChrome();
    }
}

// ---- Before the set is replaced ----

bool AppModel::confirmReplacingSession()
{
    const Collection* const collection = currentCollection();
    // An emptied set counts too: its collection still holds the images.
    if (currentCollectionName.value().empty() || !collection || !isCollectionDirty(*collection))
        return true;
    const std::string name = currentCollectionName;
    switch (m_desktop.ask(
        {.message = "Update " + inQuotes(name) + "?",
         .informative = "This collection has changes that aren't saved to it. Opening something "
                        "else replaces the whole set.",
         .buttons = {"Update Collection", "Discard Changes", "Cancel"}})) {
    case 0:
        return saveCollection(name);
    case 1:
        return true;
    default:
        return false;
    }
}

} // namespace orvane
