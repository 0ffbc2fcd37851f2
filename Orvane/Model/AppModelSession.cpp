// Images into the session, out of it, and one beside the other.

#include "AppModel.h"

#include "PictureFiles.h"
#include "SourceKey.h"
#include "Wording.h"

#include <QCoreApplication>
#include <QThread>

#include <algorithm>
#include <cassert>

namespace orvane {

namespace {

namespace fs = std::filesystem;

History<EditState> historyFrom(const EditState& state)
{
    History<EditState> history;
    history.seed(state);
    return history;
}

/// What the alert about unreadable files says.
std::string unreadMessage(size_t opened, size_t failed)
{
    if (opened > 0)
        return std::to_string(opened) + " opened, " + std::to_string(failed) + " couldn't be read";
    return failed == 1 ? "Couldn't open that file" : "Couldn't open those files";
}

std::string joined(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace

// ---- In ----

std::vector<IncomingImage> AppModel::readImageFiles(const std::vector<fs::path>& files)
{
    ReadImages read = readImages(files);
    reportUnread(read.images.size(), read.failed);
    return std::move(read.images);
}

void AppModel::reportUnread(size_t opened, const std::vector<std::string>& failed)
{
    if (!failed.empty())
        m_desktop.ask({.message = unreadMessage(opened, failed.size()),
                       .informative = "Not a readable image: " + joined(failed)});
}

void AppModel::adoptIntoSession(std::vector<IncomingImage> incoming, bool append)
{
    if (!append) {
        resetTools();
        m_recentSources.clear();
        session = std::vector<EditImage>();
        currentCollectionName = std::string();
    }
    incoming = decodedImages(std::move(incoming));
    const CIImage held = incoming.empty() ? CIImage() : incoming.front().held; // until it is active
    std::vector<EditImage> images;
    images.reserve(incoming.size());
    for (IncomingImage& image : incoming)
        images.push_back(adopted(std::move(image)));
    changeSession([&](std::vector<EditImage>& open) {
        open.insert(open.end(), std::make_move_iterator(images.begin()),
                    std::make_move_iterator(images.end()));
    });
    if (indexOf(activeImageID))
        return;
    if (session.value().empty())
        forgetActiveImage();
    else
        activate(session.value().front().id, true);
}

EditImage AppModel::adopted(IncomingImage incoming) const
{
    EditImage image;
    image.id = newID("img_");
    image.name = std::move(incoming.name);
    image.source = std::move(incoming.source);
    image.pixels = std::move(incoming.pixels);
    if (!suppressSavedRestore && image.source)
        image.state = m_stateStore.state(*image.source).value_or(EditState());
    image.savedState = image.state;
    if (incoming.edit)
        image.state = std::move(*incoming.edit);
    image.history = historyFrom(image.state);
    image.thumb = renderThumb(image);
    return image;
}

void AppModel::adoptPhotos(std::vector<PhotoSource::Photo> photos, bool append)
{
    assert(QThread::currentThread() == QCoreApplication::instance()->thread());
    if (photos.empty())
        return;
    std::vector<IncomingImage> incoming;
    for (PhotoSource::Photo& photo : photos) {
        IncomingImage image{.data = std::move(photo.data), .name = photo.name, .source = {}};
        if (!photo.identifier.empty())
            image.source = SourceKey::ofPhoto(photo.identifier);
        incoming.push_back(std::move(image));
    }
    adoptIntoSession(std::move(incoming), append);
}

void AppModel::addPhotos(const std::vector<std::string>& identifiers)
{
    if (!m_surroundings.photos)
        return;
    m_surroundings.photos->loadFullImages(
        identifiers, [alive = std::weak_ptr(m_alive)](std::vector<PhotoSource::Photo> photos) {
            const auto model = alive.lock();
            if (model)
                (*model)->adoptPhotos(std::move(photos), !(*model)->session.value().empty());
        });
}

void AppModel::importFromPhotos()
{
    if (!confirmDiscardingWork() || !m_desktop.hasWindow() || !m_surroundings.photos)
        return;
    // The panel is not modal: the answer holds for the work that it was given about.
    m_surroundings.photos->pickImages([alive = std::weak_ptr(m_alive), confirmed = sessionItems()](
                                          std::vector<PhotoSource::Photo> photos) {
        const auto model = alive.lock();
        if (!model || photos.empty())
            return;
        if ((*model)->sessionItems() == confirmed || (*model)->confirmDiscardingWork())
            (*model)->adoptPhotos(std::move(photos), false);
    });
}

void AppModel::pasteImage()
{
    std::optional<IncomingImage> image = pastedImage();
    if (!image) {
        m_desktop.ask(
            {.message = "Nothing to paste", .informative = "The clipboard doesn't hold an image."});
        return;
    }
    adoptAndShow(std::move(*image));
}

bool AppModel::adoptLoosePicture(PastedPicture picture)
{
    std::optional<IncomingImage> image = looseImage(std::move(picture));
    if (image)
        adoptAndShow(std::move(*image));
    return image.has_value();
}

void AppModel::adoptAndShow(IncomingImage image)
{
    const CIImage held = image.held; // until it is active
    std::vector<IncomingImage> incoming;
    incoming.push_back(std::move(image));
    adoptIntoSession(std::move(incoming), !session.value().empty());
    activate(session.value().back().id, true);
}

/// What the clipboard holds, decoded: the file that it refers to, which can be saved, or else the
/// bare picture. A file manager offers the file alone.
std::optional<IncomingImage> AppModel::pastedImage()
{
    if (const auto files = m_desktop.pastedFiles(); !files.empty()) {
        ReadImages read = readImages(std::vector{files.front()});
        if (!read.images.empty())
            return std::move(read.images.front());
    }
    auto pasted = m_desktop.pastedPicture();
    return pasted ? looseImage(std::move(*pasted)) : std::nullopt;
}

/// A picture without a file, decoded and named by its number.
std::optional<IncomingImage> AppModel::looseImage(PastedPicture picture)
{
    const bool isPng = picture.kind == PastedPicture::Kind::Png;
    IncomingImage image{.data = std::move(picture.bytes),
                        .name = "Pasted " + std::to_string(pastedCount + 1)
                            + (isPng ? ".png" : ".tiff"),
                        .source = {}};
    if (!image.decode())
        return std::nullopt;
    pastedCount = pastedCount + 1;
    return image;
}

// ---- Beside ----

std::string AppModel::variantName(const std::string& name) const
{
    const fs::path path(name);
    const std::string base = path.stem().string() + " copy";
    const std::string suffix = path.extension().string();
    const auto& open = session.value();
    const auto isTaken = [&](const std::string& candidate) {
        return std::any_of(open.begin(), open.end(),
                           [&](const EditImage& image) { return image.name == candidate; });
    };
    std::string candidate = base + suffix;
    for (int number = 2; isTaken(candidate); ++number)
        candidate.assign(base).append(" " + std::to_string(number)).append(suffix);
    return candidate;
}

void AppModel::duplicateImage()
{
    parkActiveState();
    const auto active = indexOf(activeImageID);
    if (!active)
        return;
    EditImage copy = session.value()[*active];
    if (SessionRules::needsCollectionForVariant(copy.source, !currentCollectionName.value().empty())
        && !autoCreateCollectionForVariants())
        return;
    copy.id = newID("img_");
    copy.name = variantName(copy.name);
    copy.history = historyFrom(copy.state);
    changeSession([&](std::vector<EditImage>& open) {
        open.insert(open.begin() + std::ptrdiff_t(*active) + 1, copy);
    });
    activate(copy.id, true);
}

// ---- Out ----

void AppModel::removeImage(const std::string& id)
{
    const auto found = indexOf(id);
    if (!found)
        return;
    // A copy: while the question is open the session may change.
    const EditImage image = session.value()[*found];
    if (!mayRemove(image))
        return;
    const auto index = indexOf(image.id);
    if (!index)
        return;
    const bool wasActive = image.id == activeImageID.value();
    if (wasActive)
        resetTools();
    changeSession(
        [&](std::vector<EditImage>& open) { open.erase(open.begin() + std::ptrdiff_t(*index)); });
    // Copies of it in the strip share its pixels.
    const auto& rest = session.value();
    if (std::none_of(rest.begin(), rest.end(),
                     [&](const EditImage& other) { return other.pixels == image.pixels; }))
        forgetRecentSource(image.pixels);
    if (!wasActive)
        return;
    const auto& open = session.value();
    if (open.empty())
        forgetActiveImage();
    else
        activate(open[std::min(*index, open.size() - 1)].id, true);
}

/// Stores the edit of an image that is about to go, or asks.
bool AppModel::mayRemove(const EditImage& image)
{
    const SessionItem item = sessionItem(image);
    const auto removal = SessionRules::removal(item, !currentCollectionName.value().empty());
    using Kind = SessionRules::Removal::Kind;
    if (removal.kind == Kind::SaveThenRemove) {
        const Result<void> stored = m_stateStore.save({{removal.source, item.current}});
        if (!stored)
            report("Couldn't save " + inQuotes(image.name) + " before removing it", stored.error());
        return stored.ok();
    }
    if (removal.kind == Kind::ConfirmDiscard) {
        const Alert question{
            .message = "Remove " + inQuotes(image.name) + " with unsaved edits?",
            .informative = "This image was pasted or dropped onto the canvas, so Orvane can't "
                           "save its edits. Removing it discards them.",
            .buttons = {"Remove", "Cancel"}};
        return m_desktop.ask(question) == 0;
    }
    return true;
}

void AppModel::revealOriginal()
{
    if (const auto file = activeFileURL())
        m_desktop.reveal(*file);
}

} // namespace orvane
