#pragma once

#include "BakeChain.h"
#include "CollectionStore.h"
#include "EditImage.h"
#include "LUT.h"
#include "Looks.h"
#include "ModalSession.h"
#include "SavedLook.h"
#include "Schema.h"
#include "UpdateInfo.h"

#include <QProperty>

#include <filesystem>
#include <set>

namespace orvane {

/// What the crop tool puts back when it is cancelled.
struct CropSnapshot {
    CGRect crop{0, 0, 1, 1};
    std::string aspectId;

    bool operator==(const CropSnapshot&) const = default;
};

/// Counts of the picture on screen, channel by channel.
struct Histogram {
    std::vector<double> r;
    std::vector<double> g;
    std::vector<double> b;

    bool operator==(const Histogram&) const = default;
};

/// How far a batch of exports has come; its last value stays after it.
struct BatchProgress {
    int index = 0; ///< of the picture in hand, from 0
    int count = 0;
    std::string name; ///< of the picture in hand
    double fraction = 0; ///< 0..1, of that picture

    bool operator==(const BatchProgress&) const = default;
};

/// The observable fields of the model, each with the value it starts at. A field tells its
/// observers only when it is set to a different value.
struct AppModelFields {
    using AdjustMap = Adjustments::AdjustMap;
    using CurveMap = Adjustments::Curve;

    // The active image's edit, in the order of EditState. Apart from each other, so that a view of
    // one field is not told of the others.
    QProperty<AdjustMap> adjust;
    QProperty<CurveMap> curve;
    QProperty<std::vector<EditState::Light>> lights;
    QProperty<std::vector<HealSpot>> ciHealSpots;
    QProperty<CGRect> crop{CGRect(0, 0, 1, 1)};
    QProperty<double> rotation{0};
    QProperty<bool> flipH{false};
    QProperty<bool> flipV{false};
    QProperty<std::string> aspectId{std::string("free")};
    QProperty<double> lookStrength{100};
    QProperty<std::string> lutID;
    QProperty<double> lutAmount{100};
    QProperty<double> canvasAspect{0};
    QProperty<std::string> canvasFill{std::string("edge")};
    QProperty<std::string> canvasColor{std::string("#000000")};
    QProperty<std::vector<EditState::TextLayer>> texts;
    QProperty<History<EditState>> history;

    // The open set.
    QProperty<std::vector<EditImage>> session;
    QProperty<std::string> activeImageID; ///< empty with an empty session
    QProperty<std::optional<CIImage>> sourceImage; ///< the active image's pixels
    QProperty<int> sourceImageVersion{0}; ///< one more at each activation
    QProperty<int> pastedCount{0};
    QProperty<std::set<std::string>> savedImageSources; ///< stored during this run
    QProperty<bool> suppressSavedRestore{false}; ///< while a collection is being opened
    QProperty<std::vector<Collection>> collections; ///< newest first
    QProperty<std::string> currentCollectionName; ///< empty: no collection is open

    // Grades.
    QProperty<bool> hasCopiedStyle{false};
    QProperty<std::optional<EditState>> copiedStyle;
    QProperty<std::vector<SavedLook>> savedLookEntries; ///< newest first
    QProperty<std::vector<LookItem>> looks;
    QProperty<std::map<std::string, Thumbnail>> lookPreviews; ///< by the look's id
    QProperty<std::vector<Looks::Look>> lookRecipes;
    QProperty<std::optional<Looks::Look>> lastLook; ///< what the strength applies to
    QProperty<std::string> lutName; ///< empty without a loaded LUT
    QProperty<bool> lutMissing{false};
    QProperty<std::optional<LUT>> ciLUT;

    // Tools.
    QProperty<bool> cropMode{false};
    QProperty<std::optional<ModalSession<CropSnapshot>>> cropSession;
    QProperty<std::string> cropGuide{std::string("thirds")};
    QProperty<bool> relightMode{false};
    QProperty<std::optional<ModalSession<std::vector<EditState::Light>>>> relightSession;
    QProperty<std::optional<History<EditState>>> relightHistoryAtStart;
    QProperty<std::string> selectedLightID; ///< empty: none
    QProperty<std::string> selectedTextID; ///< empty: none
    QProperty<bool> pickingWhite{false};
    QProperty<bool> healing{false};
    QProperty<double> healSize{4}; ///< radius, percent of the long edge

    // The view.
    QProperty<double> zoom{1};
    QProperty<int> actualSizeTick{0};
    QProperty<bool> comparing{false};
    QProperty<bool> histogramOn{false};
    QProperty<Histogram> histogram;

    // Export.
    QProperty<bool> exportSheetShown{false};
    QProperty<ExportFormat> exportFormat{ExportFormat::jpeg};
    QProperty<double> exportQuality{90}; ///< percent
    QProperty<Baker::Metadata> exportMetadata{Baker::Metadata::stripLocation};
    QProperty<bool> exportPNG16{false};
    QProperty<int> exportLongEdge{0}; ///< pixels; 0 is full size
    QProperty<bool> isExporting{false};
    QProperty<std::optional<std::filesystem::path>> exportFolder; ///< of the batch in flight
    QProperty<int> exportedCount{0};
    QProperty<double> exportProgress{0}; ///< 0..1, of the single export or share in flight
    QProperty<BatchProgress> batchProgress;

    // Updates.
    QProperty<std::optional<UpdateInfo>> availableUpdate;
    QProperty<bool> isUpdating{false};
    QProperty<bool> isCheckingForUpdate{false};

    /// The catalogue; constant.
    const std::vector<Schema::File::Group>& schema = Schema::groups();
    const std::vector<LookItem>& aspects = Schema::aspects();
};

} // namespace orvane
