// The core: fields into an edit and back, and which image is the active one. Each tool's operations
// have a file of their own, AppModel*.cpp.

#include "AppModel.h"

#include "EditRendering.h"
#include "SourceKey.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace orvane {

namespace {

/// What the decoded sources of the images looked at last may take, for switching to and fro. The
/// active one is kept in any case.
constexpr size_t recentSourceBytes = size_t(512) << 20;

double wallClock()
{
    using namespace std::chrono;
    return duration<double>(system_clock::now().time_since_epoch()).count();
}

} // namespace

const std::string AppModel::version = ORVANE_VERSION;

AppModel::AppModel(Surroundings surroundings)
    : m_surroundings(std::move(surroundings))
    , m_desktop(m_surroundings.desktop)
    , m_stateStore(m_surroundings.supportFolder / "edits.json")
    , m_collectionStore(m_surroundings.supportFolder / "collections.json")
    , m_looksStore(m_surroundings.supportFolder / "saved-looks.json")
    , m_lutStore(m_surroundings.supportFolder / "luts")
    , m_alive(std::make_shared<AppModel*>(this))
    , m_histogramCounter([this](const Histogram& counted) { histogram = counted; })
{
    savedLookEntries = m_looksStore.load();
    collections = m_collectionStore.load();
}

AppModel::~AppModel() = default;

double AppModel::now() const
{
    return m_surroundings.now ? m_surroundings.now() : wallClock();
}

/// A failure shows when something is written there.
void AppModel::makeSupportFolder() const
{
    std::error_code none;
    std::filesystem::create_directories(m_surroundings.supportFolder, none);
}

// ---- What is open ----

std::optional<size_t> AppModel::indexOf(const std::string& id) const
{
    const auto& open = session.value();
    const auto found =
        std::find_if(open.begin(), open.end(), [&](const EditImage& i) { return i.id == id; });
    return found == open.end() ? std::nullopt : std::optional(size_t(found - open.begin()));
}

std::vector<LookItem> AppModel::images() const
{
    std::vector<LookItem> items;
    for (const EditImage& image : session.value())
        items.push_back({image.id, image.name});
    return items;
}

std::map<std::string, Thumbnail> AppModel::imageThumbs() const
{
    std::map<std::string, Thumbnail> thumbs;
    for (const EditImage& image : session.value()) {
        if (image.thumb)
            thumbs[image.id] = image.thumb;
    }
    return thumbs;
}

std::string AppModel::activeName() const
{
    const auto& open = session.value();
    if (open.empty())
        return "this image";
    return open[indexOf(activeImageID).value_or(0)].name;
}

std::optional<std::filesystem::path> AppModel::activeFileURL() const
{
    const auto active = indexOf(activeImageID);
    if (!active)
        return std::nullopt;
    const auto& source = session.value()[*active].source;
    const auto file = source ? SourceKey::filePath(*source) : std::nullopt;
    std::error_code none;
    return file && std::filesystem::exists(*file, none) ? file : std::nullopt;
}

std::optional<CIImage> AppModel::geometrySource() const
{
    const auto& source = sourceImage.value();
    return source ? std::optional(framed(*source, editState())) : std::nullopt;
}

// ---- The edit in the fields ----

EditState AppModel::editState() const
{
    EditState state;
    state.adjust = adjust.value();
    state.curve = curve.value();
    state.lights = lights.value();
    state.healSpots = ciHealSpots.value();
    state.crop = crop.value();
    state.rotation = rotation.value();
    state.flipH = flipH.value();
    state.flipV = flipV.value();
    state.aspectId = aspectId.value();
    state.lookStrength = lookStrength.value();
    state.lutID = lutID.value();
    state.lutAmount = lutAmount.value();
    state.canvasAspect = canvasAspect.value();
    state.canvasFill = canvasFill.value();
    state.canvasColor = canvasColor.value();
    state.texts = texts.value();
    return state;
}

void AppModel::restore(const EditState& state)
{
    adjust = state.adjust;
    curve = state.curve;
    lights = state.lights;
    ciHealSpots = state.healSpots;
    crop = state.crop;
    rotation = state.rotation;
    flipH = state.flipH;
    flipV = state.flipV;
    aspectId = state.aspectId;
    lookStrength = state.lookStrength;
    lutAmount = state.lutAmount;
    canvasAspect = state.canvasAspect;
    canvasFill = state.canvasFill;
    canvasColor = state.canvasColor;
    texts = state.texts;

    const auto& layers = texts.value();
    const bool isSelectionThere =
        std::any_of(layers.begin(), layers.end(),
                    [&](const TextLayer& layer) { return layer.id == selectedTextID.value(); });
    if (!isSelectionThere)
        selectedTextID = layers.empty() ? std::string() : layers.back().id;
    // An equal id keeps the loaded table: its file is not read at every step of undo.
    if (state.lutID != lutID.value()) {
        lutID = state.lutID;
        ensureLut(lutID);
    }
}

void AppModel::parkActiveState()
{
    const auto active = indexOf(activeImageID);
    if (!active)
        return;
    changeSession([&](std::vector<EditImage>& open) {
        EditImage& image = open[*active];
        image.state = editState();
        image.history = history.value();
        image.thumb = renderThumb(image);
    });
}

void AppModel::activate(std::string id, bool parkingCurrent)
{
    if (parkingCurrent) {
        endActiveTool();
        parkActiveState();
    }
    const auto index = indexOf(id);
    if (!index)
        return;
    const EditImage image = session.value()[*index];
    activeImageID = std::move(id);
    showSource(image.pixels);
    history = image.history;
    lastLook = std::nullopt;
    restore(image.state);
    refreshLookThumbs();
    syncWindowChrome();
}

void AppModel::showSource(const std::shared_ptr<const SourcePixels>& pixels)
{
    const CIImage image = pixels->image();
    auto& recent = m_recentSources;
    forgetRecentSource(pixels);
    recent.insert(recent.begin(), {pixels, image});
    size_t bytes = 0;
    for (const RecentSource& source : recent)
        bytes += source.pixels->decodedSize();
    for (; bytes > recentSourceBytes && recent.size() > 1; recent.pop_back())
        bytes -= recent.back().pixels->decodedSize();
    setSource(image);
}

void AppModel::forgetRecentSource(const std::shared_ptr<const SourcePixels>& pixels)
{
    std::erase_if(m_recentSources, [&](const RecentSource& s) { return s.pixels == pixels; });
}

/// The version grows in any case, the image is told of only when it is another.
void AppModel::setSource(const std::optional<CIImage>& image)
{
    const auto& old = sourceImage.value();
    if (old.has_value() != image.has_value() || (old && !old->isSame(*image))) {
        sourceImage = image;
        // The looks' pictures show the one before; those of this one are still to be drawn.
        lookPreviews = std::map<std::string, Thumbnail>();
    }
    sourceImageVersion = sourceImageVersion + 1;
}

void AppModel::forgetActiveImage()
{
    activeImageID = std::string();
    m_recentSources.clear();
    setSource(std::nullopt);
    refreshLookThumbs();
    syncWindowChrome();
}

// ---- Tools ----

void AppModel::endActiveTool()
{
    if (cropMode)
        finishCrop();
    if (relightMode)
        exitRelight();
    healing = false;
    pickingWhite = false;
}

void AppModel::resetTools()
{
    cropMode = false;
    cropSession = std::nullopt;
    relightMode = false;
    selectedLightID = std::string();
    relightSession = std::nullopt;
    relightHistoryAtStart = std::nullopt;
    healing = false;
    pickingWhite = false;
}

// ---- Thumbnails, panels, messages ----

Thumbnail AppModel::renderThumb(const EditImage& image) const
{
    const auto table =
        image.state.lutID.empty() ? std::nullopt : m_lutStore.table(image.state.lutID);
    const CIImage finished = finishedImage(image.pixels->thumbBase(), image.state, table);
    auto drawn = Baker::cgImage(finished);
    return drawn ? std::make_shared<const CGImage>(std::move(*drawn)) : nullptr;
}

void AppModel::openImage(bool append)
{
    if (!append && !confirmDiscardingWork())
        return;
    OpenPanel panel{.choosing = OpenPanel::Choosing::Pictures,
                    .message = append ? "Choose images to add." : "Choose an image to edit.",
                    .prompt = append ? "Add" : "Open",
                    .allowsSeveral = true};
    panel.extensions.assign(rawExtensions.begin(), rawExtensions.end());
    std::vector<std::filesystem::path> files = m_desktop.choose(panel);
    if (files.empty())
        return;
    if (m_fileOpener) {
        m_fileOpener(std::move(files), append);
        return;
    }
    std::vector<IncomingImage> incoming = readImageFiles(files);
    if (incoming.empty())
        return;
    adoptIntoSession(std::move(incoming), append);
    if (const auto file = activeFileURL(); !append && file)
        showInTitleBar(*file);
}

void AppModel::showInTitleBar(const std::filesystem::path& file)
{
    m_desktop.showChrome({SourceKey::readableName(file), file, isDirty()});
}

void AppModel::report(const std::string& title, const Error& error)
{
    m_desktop.ask({.message = title, .informative = error.message, .style = Alert::Style::Warning});
}

} // namespace orvane
