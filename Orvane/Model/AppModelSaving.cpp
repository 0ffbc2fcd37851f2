// Unsaved work: what it is, how it is stored, and the question before it is dropped.

#include "AppModel.h"

#include "EditStateJSON.h"
#include "Wording.h"

#include <algorithm>
#include <cmath>

namespace orvane {

namespace {

/// A slider or an angle has moved when it differs by more than this.
constexpr double smallestMove = 0.001;

bool isAtRest(const std::vector<Schema::File::Group>& schema, const Adjustments::AdjustMap& adjust)
{
    for (const auto& group : schema) {
        for (const auto& key : group.keys) {
            const auto entry = adjust.find(key.key);
            if (entry != adjust.end() && !(std::abs(entry->second - key.def) <= smallestMove))
                return false;
        }
    }
    return true;
}

bool isIdentity(const std::vector<EditState::CurvePoint>& points)
{
    return points == std::vector<EditState::CurvePoint>{{0, 0}, {255, 255}};
}

Alert variantsQuestion()
{
    return {.message = "Save these versions as a collection?",
            .informative =
                "This session holds more than one version of the same photo. Edits are kept per "
                "photo, so saving them separately would keep only the last one — a collection "
                "keeps every version.",
            .buttons = {"Save as Collection", "Cancel"}};
}

/// The question before unsaved work is dropped; with a save button only when saving helps.
Alert discardingQuestion(SessionRules::DirtyCount dirty, const std::string& name)
{
    const int unsaveable = dirty.total - dirty.saveable;
    Alert alert;
    alert.message = dirty.total == 1
        ? "Save your edits to " + name + "?"
        : "Save your edits to " + std::to_string(dirty.total) + " images?";
    alert.informative = unsaveable == 0 ? "Your edits aren't saved yet. They live with the image."
                                        : std::to_string(unsaveable)
            + " of these were dropped or pasted onto the canvas, so Orvane can't save "
            + (unsaveable == 1 ? "it" : "them") + " — export first to keep "
            + (unsaveable == 1 ? "that one" : "those") + ". The rest will save.";
    if (dirty.saveable > 0)
        alert.buttons.push_back(dirty.total == 1 ? "Save" : "Save All");
    alert.buttons.insert(alert.buttons.end(), {"Discard", "Cancel"});
    return alert;
}

} // namespace

// ---- What is dirty ----

AppModel::SessionItem AppModel::sessionItem(const EditImage& image) const
{
    return {image.source, image.id == activeImageID.value() ? editState() : image.state,
            image.savedState};
}

std::vector<AppModel::SessionItem> AppModel::sessionItems() const
{
    std::vector<SessionItem> items;
    for (const EditImage& image : session.value())
        items.push_back(sessionItem(image));
    return items;
}

/// The same items, with the edits where they lie; the active one is the caller's to hold.
AppModel::SessionView AppModel::sessionView(const EditState& active) const
{
    SessionView items;
    for (const EditImage& image : session.value()) {
        const bool isActive = image.id == activeImageID.value();
        items.push_back({image.source, {isActive ? &active : &image.state}, {}});
        if (image.savedState)
            items.back().saved = EditRef{&*image.savedState};
    }
    return items;
}

bool AppModel::hasEdits() const
{
    const auto& curves = curve.value();
    // The levels are no sliders of the catalogue, but an edit like any other.
    return !isAtRest(schema, adjust.value()) || levels() != Levels()
        || !(crop.value() == CGRect(0, 0, 1, 1)) || std::abs(rotation) > smallestMove || flipH
        || flipV
        || !std::all_of(curves.begin(), curves.end(),
                        [](const auto& entry) { return isIdentity(entry.second); })
        || !ciHealSpots.value().empty() || !lights.value().empty() || !texts.value().empty()
        || canvasAspect > 0 || aspectId.value() != "free" || !lutID.value().empty();
}

bool AppModel::isDirty() const
{
    if (session.value().empty())
        return false;
    if (currentCollectionName.value().empty()) {
        const EditState active = editState();
        return SessionRules::isDirty(sessionView(active));
    }
    const Collection* const collection = currentCollection();
    return collection && isCollectionDirty(*collection);
}

bool AppModel::isCollectionDirty(const Collection& collection) const
{
    std::vector<EditRef> saved;
    for (const EditState& edit : collection.edits)
        saved.push_back({&edit});
    const EditState active = editState();
    return SessionRules::collectionIsDirty(sessionView(active), collection.sources, saved);
}

std::optional<std::string> AppModel::soleDirtyName() const
{
    const EditState active = editState();
    const SessionView items = sessionView(active);
    if (SessionRules::dirtyCount(items).total != 1)
        return std::nullopt;
    const auto dirty =
        std::find_if(items.begin(), items.end(), [](const auto& item) { return item.isDirty(); });
    return session.value()[size_t(dirty - items.begin())].name;
}

std::string AppModel::saveTitle() const
{
    if (const auto& name = currentCollectionName.value(); !name.empty())
        return "Update " + inQuotes(name);
    const EditState active = editState();
    return SessionRules::dirtyCount(sessionView(active)).total >= 2 ? "Save All Edits"
                                                                    : "Save Edits";
}

// ---- Saving ----

bool AppModel::saveWork()
{
    const std::string name = currentCollectionName;
    return name.empty() ? saveAllDirtyImages() : saveCollection(name);
}

bool AppModel::saveAllDirtyImages()
{
    const EditState active = editState();
    const SessionView items = sessionView(active);
    if (currentCollectionName.value().empty()
        && !SessionRules::conflictingVariantSources(items).empty())
        return offerCollectionForVariants();

    std::vector<PendingEdit> pending;
    for (size_t i = 0; i < items.size(); ++i) {
        const EditImage& image = session.value()[i];
        if (items[i].isDirty() && items[i].isSaveable())
            pending.push_back({image.id, image.name, *items[i].source, *items[i].current.edit});
    }
    const bool isComplete = storeEdits(std::move(pending));
    syncWindowChrome();
    return isComplete;
}

/// One write holds the edits of all images, so that a hundred cost no more than one. What fails is
/// told image by image, as if each were written by itself: an edit that cannot be encoded fails
/// alone, and after a failure of the store the rest is tried again, because a store that nobody can
/// read has been moved aside by then.
bool AppModel::storeEdits(std::vector<PendingEdit> pending)
{
    bool isComplete = true;
    const auto fail = [&](const PendingEdit& edit, const Error& error) {
        isComplete = false;
        report("Couldn't save your edits to " + inQuotes(edit.name), error);
    };
    std::erase_if(pending, [&](const PendingEdit& edit) {
        const Result<std::string> encoded = encodedEditState(edit.state);
        if (!encoded)
            fail(edit,
                 Error{"A value of the edit can't be stored (" + encoded.error().message + ")."});
        return !encoded.ok();
    });
    while (!pending.empty()) {
        std::map<std::string, EditState> entries;
        for (const PendingEdit& edit : pending)
            entries[edit.source] = edit.state;
        const Result<void> stored = m_stateStore.save(entries);
        if (stored)
            break;
        fail(pending.front(), stored.error());
        pending.erase(pending.begin());
    }
    std::set<std::string> sources = savedImageSources.value();
    changeSession([&](std::vector<EditImage>& open) {
        for (EditImage& image : open) {
            const auto edit = std::find_if(pending.begin(), pending.end(),
                                           [&](const auto& e) { return e.id == image.id; });
            if (edit == pending.end())
                continue;
            image.savedState = edit->state;
            sources.insert(edit->source);
        }
    });
    savedImageSources = std::move(sources);
    return isComplete;
}

bool AppModel::offerCollectionForVariants()
{
    return m_desktop.ask(variantsQuestion()) == 0 && autoCreateCollectionForVariants()
        && saveCollection(currentCollectionName);
}

// ---- Before work is dropped ----

bool AppModel::confirmDiscardingWork()
{
    if (!currentCollectionName.value().empty())
        return confirmReplacingSession();
    if (!isDirty())
        return true;
    const EditState active = editState();
    const auto dirty = SessionRules::dirtyCount(sessionView(active));
    const Alert alert = discardingQuestion(dirty, soleDirtyName().value_or(activeName()));
    const size_t answer = m_desktop.ask(alert);
    const std::string& button = alert.buttons[std::min(answer, alert.buttons.size() - 1)];
    if (button == "Save" || button == "Save All")
        return saveAllDirtyImages();
    return button == "Discard";
}

void AppModel::syncWindowChrome()
{
    if (!m_desktop.hasWindow())
        return;
    WindowChrome chrome{.title = "Orvane", .isEdited = isDirty()};
    if (const auto& name = currentCollectionName.value(); !name.empty()) {
        chrome.title = name;
    } else if (!session.value().empty()) {
        chrome.title = activeName();
        chrome.representedFile = activeFileURL();
    }
    m_desktop.showChrome(chrome);
}

} // namespace orvane
