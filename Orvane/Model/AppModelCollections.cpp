// Collections: named sets of sources with their edits.

#include "AppModel.h"

#include "AtomicFile.h"
#include "SourceKey.h"
#include "Wording.h"

#include <algorithm>
#include <limits>

namespace orvane {

namespace {

/// Seconds between the beginnings of 1970 and of 2001, from which collections count.
constexpr double secondsTo2001 = 978307200;

std::vector<Collection>::const_iterator named(const std::vector<Collection>& collections,
                                              const std::string& name)
{
    return std::find_if(collections.begin(), collections.end(),
                        [&](const Collection& c) { return isSameName(c.name, name); });
}

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

std::optional<Collection> AppModel::currentCollection() const
{
    const auto& all = collections.value();
    const auto found = named(all, currentCollectionName);
    return found == all.end() ? std::nullopt : std::optional(*found);
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

/// Stores the list, or tells why not, and reads it back.
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
    const auto& open = session.value();
    const auto lost = size_t(
        std::count_if(open.begin(), open.end(), [](const EditImage& i) { return !i.source; }));
    if (lost > 0 && (m_desktop.ask(lostQuestion(lost)) != 0 || lost == open.size()))
        return false;
    parkActiveState();
    std::vector<Collection> changed = collections;
    std::erase_if(changed, [&](const Collection& c) { return isSameName(c.name, wanted); });
    changed.push_back(collectionOfSession(wanted));
    if (!storeCollections(changed, "Couldn't save the collection " + inQuotes(wanted)))
        return false;
    currentCollectionName = wanted;
    syncWindowChrome();
    return true;
}

/// For a second version of a photo: the set becomes a collection with a name that is free.
bool AppModel::autoCreateCollectionForVariants()
{
    parkActiveState();
    std::string name = "Untitled";
    const auto& all = collections.value();
    for (int number = 2; named(all, name) != all.end(); ++number)
        name = "Untitled " + std::to_string(number);
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
    if (wanted.empty())
        return;
    std::vector<Collection> changed = collections;
    const bool isTaken = std::any_of(changed.begin(), changed.end(), [&](const Collection& c) {
        return c.id != collection.id && isSameName(c.name, wanted);
    });
    if (isTaken) {
        m_desktop.ask({.message = "A collection named " + inQuotes(wanted) + " already exists"});
        return;
    }
    const std::string oldName = collection.name;
    for (Collection& candidate : changed) {
        if (candidate.id != collection.id)
            continue;
        candidate.name = wanted;
        candidate.updatedAt = now() - secondsTo2001;
    }
    if (!storeCollections(changed, "Couldn't rename the collection " + inQuotes(oldName)))
        return;
    if (isSameName(oldName, currentCollectionName)) {
        currentCollectionName = wanted;
        syncWindowChrome();
    }
}

void AppModel::deleteCollection(const Collection& collection)
{
    // A copy: it may be an entry of the list that is about to change.
    const Collection deleted = collection;
    const bool isOpen = isSameName(deleted.name, currentCollectionName);
    const bool holdsVariants =
        isOpen && !SessionRules::conflictingVariantSources(sessionItems()).empty();
    if (m_desktop.ask(deletionQuestion(deleted.name, holdsVariants)) != 0)
        return;
    std::vector<Collection> changed = collections;
    std::erase_if(changed, [&](const Collection& c) { return c.id == deleted.id; });
    if (!storeCollections(changed, "Couldn't delete the collection " + inQuotes(deleted.name)))
        return;
    if (isOpen) {
        currentCollectionName = std::string();
        syncWindowChrome();
    }
}

// ---- Opening ----

void AppModel::loadSources(const Collection& collection)
{
    std::vector<std::string> identifiers;
    std::vector<IncomingImage> incoming;
    for (const std::string& source : collection.sources) {
        if (const auto file = SourceKey::filePath(source)) {
            if (auto bytes = readFile(*file, std::numeric_limits<size_t>::max()))
                incoming.push_back({.data = std::move(*bytes),
                                    .name = SourceKey::readableName(*file),
                                    .source = source});
        } else if (const auto photo = SourceKey::photoIdentifier(source)) {
            identifiers.push_back(*photo);
        }
    }
    if (identifiers.empty() || !m_surroundings.photos) {
        finishLoading(collection, std::move(incoming));
        return;
    }
    std::vector<std::string> distinct = identifiers;
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    m_surroundings.photos->loadFullImages(
        distinct,
        [alive = std::weak_ptr(m_alive), collection, identifiers,
         incoming](std::vector<PhotoSource::Photo> photos) {
            const auto model = alive.lock();
            if (!model)
                return;
            std::vector<IncomingImage> all = incoming;
            for (const std::string& identifier : identifiers) {
                const auto photo =
                    std::find_if(photos.begin(), photos.end(), [&](const PhotoSource::Photo& p) {
                        return p.identifier == identifier;
                    });
                if (photo != photos.end())
                    all.push_back({.data = photo->data,
                                   .name = photo->name,
                                   .source = SourceKey::ofPhoto(identifier)});
            }
            (*model)->finishLoading(collection, std::move(all));
        });
}

void AppModel::finishLoading(const Collection& collection, std::vector<IncomingImage> incoming)
{
    incoming = decodedImages(std::move(incoming));
    if (incoming.empty()) {
        reportMissingSources(collection, false);
        return;
    }
    const size_t found = incoming.size();
    suppressSavedRestore = true;
    adoptIntoSession(std::move(incoming), false);
    suppressSavedRestore = false;
    applyCollectionEdits(collection);
    currentCollectionName = collection.name;
    syncWindowChrome();
    if (found < collection.sources.size())
        reportMissingSources(collection, true);
}

/// A source that stands several times gets its versions in their order.
void AppModel::applyCollectionEdits(const Collection& collection)
{
    changeSession([&](std::vector<EditImage>& open) {
        std::vector<bool> isUsed(open.size());
        const size_t count = std::min(collection.sources.size(), collection.edits.size());
        for (size_t i = 0; i < count; ++i) {
            for (size_t k = 0; k < open.size(); ++k) {
                if (isUsed[k] || open[k].source != collection.sources[i])
                    continue;
                isUsed[k] = true;
                open[k].state = collection.edits[i];
                open[k].history = {};
                open[k].history.seed(open[k].state);
                open[k].thumb = renderThumb(open[k]);
                break;
            }
        }
    });
    if (!session.value().empty())
        activate(session.value().front().id, false);
}

void AppModel::reportMissingSources(const Collection& collection, bool partial)
{
    if (partial)
        m_desktop.ask({.message = "Some images couldn't be found",
                       .informative = inQuotes(collection.name)
                           + " opened without the images that have been moved or deleted since it "
                             "was saved. The rest came back with their edits."});
    else
        m_desktop.ask({.message = "That collection's images couldn't be found",
                       .informative = inQuotes(collection.name)
                           + " refers to images that have been moved or deleted. A collection "
                             "stores your edits, not copies of your images — so it needs the "
                             "originals to reopen."});
}

bool AppModel::confirmReplacingSession()
{
    const auto collection = currentCollection();
    if (currentCollectionName.value().empty() || !collection
        || !SessionRules::collectionIsDirty(sessionItems(), collection->sources, collection->edits))
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
