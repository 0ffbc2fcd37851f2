// Images into the session, out of it, and one beside the other.

#include "AppModel.h"

#include "AtomicFile.h"
#include "SourceKey.h"
#include "Wording.h"

#include <algorithm>
#include <limits>

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
    return takeReadImages(readImages(files));
}

std::vector<IncomingImage> AppModel::takeReadImages(ReadImages read)
{
    if (!read.failed.empty())
        m_desktop.ask({.message = unreadMessage(read.images.size(), read.failed.size()),
                       .informative = "Not a readable image: " + joined(read.failed)});
    return std::move(read.images);
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
    image.history = historyFrom(image.state);
    image.thumb = renderThumb(image);
    return image;
}

void AppModel::adoptPhotos(std::vector<PhotoSource::Photo> photos, bool append)
{
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
    m_surroundings.photos->pickImages(
        [alive = std::weak_ptr(m_alive)](std::vector<PhotoSource::Photo> photos) {
            if (const auto model = alive.lock())
                (*model)->adoptPhotos(std::move(photos), false);
        });
}

void AppModel::pasteImage()
{
    auto pasted = m_desktop.pastedPicture();
    if (!pasted) {
        m_desktop.ask(
            {.message = "Nothing to paste", .informative = "The clipboard doesn't hold an image."});
        return;
    }
    IncomingImage image;
    const auto files = m_desktop.pastedFiles();
    auto bytes = files.empty() ? Result<std::vector<uint8_t>>(Error{})
                               : readFile(files.front(), std::numeric_limits<size_t>::max());
    if (bytes) {
        image.data = std::move(*bytes);
        image.name = SourceKey::readableName(files.front());
        image.source = SourceKey::ofFile(files.front());
    } else {
        pastedCount = pastedCount + 1;
        const bool isPng = pasted->kind == PastedPicture::Kind::Png;
        image.data = std::move(pasted->bytes);
        image.name = "Pasted " + std::to_string(pastedCount) + (isPng ? ".png" : ".tiff");
    }
    image.decode();
    const CIImage held = image.held; // until it is active
    std::vector<IncomingImage> incoming;
    incoming.push_back(std::move(image));
    adoptIntoSession(std::move(incoming), !session.value().empty());
    if (!session.value().empty())
        activate(session.value().back().id, true);
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
