// Opening a collection: its files and photos are read, and come in with its edits.

#include "AppModel.h"

#include "SourceKey.h"
#include "Wording.h"

#include <QCoreApplication>
#include <QScopeGuard>
#include <QThread>

#include <algorithm>
#include <cassert>

namespace orvane {

namespace {

std::vector<SourceFile> filesOf(const Collection& collection)
{
    std::vector<SourceFile> files;
    for (const std::string& source : collection.sources) {
        if (const auto path = SourceKey::filePath(source))
            files.push_back({*path, source});
    }
    return files;
}

/// One for each photo that a collection lists and the library gave, in the collection's order; a
/// photo that is listed several times is decoded once.
std::vector<IncomingImage> listedPhotos(const Collection& collection,
                                        std::vector<PhotoSource::Photo> photos)
{
    std::vector<IncomingImage> loaded;
    loaded.reserve(photos.size());
    for (PhotoSource::Photo& photo : photos)
        loaded.push_back({.data = std::move(photo.data),
                          .name = std::move(photo.name),
                          .source = SourceKey::ofPhoto(photo.identifier)});
    loaded = decodedImages(std::move(loaded));
    std::vector<IncomingImage> listed;
    for (const std::string& source : collection.sources) {
        const auto photo = std::find_if(loaded.begin(), loaded.end(),
                                        [&](const auto& image) { return image.source == source; });
        if (SourceKey::photoIdentifier(source) && photo != loaded.end())
            listed.push_back(*photo);
    }
    return listed;
}

/// Each image gets the edit that stands beside its source. A source that stands several times gives
/// its versions in their order: what has an edit already is passed over.
void giveEdits(std::vector<IncomingImage>& images, const Collection& collection)
{
    const size_t count = std::min(collection.sources.size(), collection.edits.size());
    for (size_t i = 0; i < count; ++i) {
        const auto image = std::find_if(images.begin(), images.end(), [&](const auto& each) {
            return !each.edit && each.source == collection.sources[i];
        });
        if (image != images.end())
            image->edit = collection.edits[i];
    }
}

} // namespace

void AppModel::loadSources(Collection collection)
{
    // The question before this may have stored the collection anew, with other edits.
    if (const Collection* const stored = storedCollection(collection))
        collection = *stored;
    std::set<std::string> identifiers;
    for (const std::string& source : collection.sources) {
        if (auto identifier = SourceKey::photoIdentifier(source))
            identifiers.insert(std::move(*identifier));
    }
    std::vector<IncomingImage> files = readImages(filesOf(collection)).images;
    if (identifiers.empty() || !m_surroundings.photos) {
        finishLoading(std::move(collection), sessionItems(), std::move(files));
        return;
    }
    m_surroundings.photos->loadFullImages(
        {identifiers.begin(), identifiers.end()},
        [alive = std::weak_ptr(m_alive), collection, confirmed = sessionItems(),
         files = std::move(files)](std::vector<PhotoSource::Photo> photos) {
            const auto model = alive.lock();
            if (!model)
                return;
            std::vector<IncomingImage> images = files;
            for (IncomingImage& photo : listedPhotos(collection, std::move(photos)))
                images.push_back(std::move(photo));
            (*model)->finishLoading(collection, confirmed, std::move(images));
        });
}

/// `confirmed` is the open set that the user has agreed to replace.
void AppModel::finishLoading(Collection collection, const std::vector<SessionItem>& confirmed,
                             std::vector<IncomingImage> incoming)
{
    assert(QThread::currentThread() == QCoreApplication::instance()->thread());
    if (incoming.empty()) {
        reportMissingSources(collection, false);
        return;
    }
    // Photos may have been minutes on their way, and somebody has worked meanwhile.
    if (sessionItems() != confirmed && !confirmDiscardingWork())
        return;
    if (const Collection* const stored = storedCollection(collection)) {
        const bool hasOtherImages = stored->sources != collection.sources;
        collection = *stored;
        if (hasOtherImages) {
            loadSources(std::move(collection));
            return;
        }
    }
    const size_t found = incoming.size();
    giveEdits(incoming, collection);
    {
        // Also when there is no memory for the images: later ones need their stored edits again.
        const auto restored = qScopeGuard([this] { suppressSavedRestore = false; });
        suppressSavedRestore = true;
        adoptIntoSession(std::move(incoming), false);
    }
    currentCollectionName = collection.name;
    syncWindowChrome();
    if (found < collection.sources.size())
        reportMissingSources(collection, true);
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

} // namespace orvane
