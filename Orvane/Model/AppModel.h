#pragma once

#include "AppModelFields.h"
#include "Desktop.h"
#include "EditStateJSON.h"
#include "ExportQueue.h"
#include "HistogramCounter.h"
#include "LatestJob.h"
#include "LutStore.h"
#include "PhotoSource.h"
#include "SessionRules.h"
#include "StateStore.h"

#include <array>
#include <functional>
#include <string_view>

namespace orvane {

struct LookThumbs;

/// The editor: the open set of images, the edit of the active one, and every operation on them. The
/// window reads its fields and calls it. Main thread only; background work takes values out and
/// comes back as one message.
///
/// While an image is active its edit is in the fields here; `session` holds the parked copies.
class AppModel : public AppModelFields {
public:
    using Light = EditState::Light;
    using TextLayer = EditState::TextLayer;
    using CurvePoint = EditState::CurvePoint;
    using Levels = EditState::Levels;
    using AdjustGroup = Schema::File::Group;
    using AdjustKey = Schema::File::Key;
    using SessionItem = SessionRules::Item<EditState>;
    using ExportFormat = orvane::ExportFormat;
    using ExportOptions = orvane::ExportOptions;

    /// What the model stands on; borrowed, and outlives it.
    struct Surroundings {
        Desktop& desktop;
        std::filesystem::path supportFolder; ///< holds the stores; made when it is not there
        PhotoSource* photos = nullptr; ///< without one the photo library is empty
        std::function<double()> now = {}; ///< seconds since 1970; the wall clock by default
    };

    /// Reads the stores of looks and collections; what cannot be read is empty here and stays on
    /// the disk as it is.
    explicit AppModel(Surroundings surroundings);
    ~AppModel();
    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    /// Extensions that every open panel takes besides the general picture formats.
    static constexpr std::array<std::string_view, 11> rawExtensions = {
        "dng", "nef", "orf", "cr2", "cr3", "arw", "raf", "rw2", "srw", "pef", "raw"};
    static constexpr std::string_view feedbackURL = "https://orvane.example/feedback?app=orvane";
    static constexpr std::string_view websiteURL = "https://orvane.example/";
    static const std::string version;

    // ---- The open set -------------------------------------------------------------------------

    /// Each image's id and name, in order.
    std::vector<LookItem> images() const;
    /// By the image's id; images without a thumbnail have no entry.
    std::map<std::string, Thumbnail> imageThumbs() const;
    /// The active image's name, else the first one's, else "this image".
    std::string activeName() const;
    /// The active image's file, if it has one and that is still there.
    std::optional<std::filesystem::path> activeFileURL() const;

    /// The active image's edit, gathered from the fields.
    EditState editState() const;
    /// Writes the edit into the fields. History, the selected light and the session stay.
    void restore(const EditState& state);
    /// Copies the active image's edit into the session and draws its thumbnail anew.
    void parkActiveState();
    /// Makes an image the active one. Without parkingCurrent, what the fields hold is dropped. (The
    /// id is a copy, because parking replaces the session that it may come from.)
    void activate(std::string id, bool parkingCurrent);
    /// Finishes the tool in use; what it did stands.
    void endActiveTool();
    /// Forgets the tool in use.
    void resetTools();
    /// The open panel, then the files. Without `append` they replace the open set, after a question
    /// when there is unsaved work.
    void openImage(bool append);
    void showInTitleBar(const std::filesystem::path& file);
    /// The image's thumbnail with its parked edit; null when nothing can be drawn.
    Thumbnail renderThumb(const EditImage& image) const;
    /// The active image's pixels straightened, cropped and on their canvas, ungraded.
    std::optional<CIImage> geometrySource() const;
    /// A modal alert about a failure.
    void report(const std::string& title, const Error& error);

    // ---- Images in and out --------------------------------------------------------------------

    /// Takes images into the session, with the edits that are stored for their sources. Without
    /// `append` they replace it. What does not decode is left out.
    void adoptIntoSession(std::vector<IncomingImage> incoming, bool append);
    /// Reads and decodes files; tells of those that are no pictures.
    std::vector<IncomingImage> readImageFiles(const std::vector<std::filesystem::path>& files);
    /// Tells of files that are no pictures, beside those that were opened; nothing when all were.
    void reportUnread(size_t opened, const std::vector<std::string>& failed);
    /// Who reads the files that openImage() was given, in the background, and adopts them. Without
    /// one they are read at once.
    using FileOpener = std::function<void(std::vector<std::filesystem::path> files, bool append)>;
    void setFileOpener(FileOpener opener) { m_fileOpener = std::move(opener); }
    /// Takes an encoded picture that no file holds into the session, as the last of it, and shows
    /// it. False when the bytes are no picture.
    bool adoptLoosePicture(PastedPicture picture);
    void addPhotos(const std::vector<std::string>& identifiers);
    void importFromPhotos();
    void pasteImage();
    void duplicateImage();
    /// Stores the image's edit or asks, as SessionRules::removal() tells, and takes it out.
    void removeImage(const std::string& id);
    void revealOriginal();
    /// The active image's edit, as the style that is applied from now on.
    void copyStyle();
    /// A style is the grade: sliders, curves and LUT.
    void applyStyle();
    void applyStyleToAll();

    // ---- Saving -------------------------------------------------------------------------------

    /// One item for each image, in order, with its true edit.
    std::vector<SessionItem> sessionItems() const;
    /// Whether the active image's edit differs from an untouched one.
    bool hasEdits() const;
    /// Whether there is work that is not stored.
    bool isDirty() const;
    /// The name of the one dirty image; absent with none or several.
    std::optional<std::string> soleDirtyName() const;
    /// The title of the save command.
    std::string saveTitle() const;
    /// Saves to the open collection, or the edits to their store. False when something failed or
    /// was cancelled.
    bool saveWork();
    bool saveAllDirtyImages();
    bool offerCollectionForVariants();
    bool autoCreateCollectionForVariants();
    /// True when the session may be dropped.
    bool confirmDiscardingWork();
    bool confirmReplacingSession();
    /// Title, file and edited mark of the window.
    void syncWindowChrome();

    // ---- Collections --------------------------------------------------------------------------

    bool saveCollection(const std::string& name);
    void renameCollection(const Collection& collection, const std::string& name);
    void deleteCollection(const Collection& collection);
    /// Opens a collection in the session's place; confirmDiscardingWork() comes before it, and once
    /// more when the session has changed while photos were on their way. What is opened is the
    /// stored entry: an answer to that question may have made it anew.
    void loadSources(Collection collection);
    /// The open collection, until the list changes; null with none, or when its entry has gone.
    const Collection* currentCollection() const;

    // ---- Adjusting ----------------------------------------------------------------------------

    // A push makes one step with others that follow at once, a commit is a step of its own.
    void pushHistory();
    void commitHistory();
    void undo();
    void redo();
    void jumpHistory(int index);
    /// What each entry of the timeline changed, oldest first.
    std::vector<std::string> historySteps() const;

    void setAdjust(const std::string& key, double value);
    void setLevels(const std::string& key, double value);
    Levels levels() const;
    void resetLevels();
    void resetGroup(const std::vector<AdjustKey>& keys);
    /// Coordinates are held to 0..255, and the points sorted by x.
    void setCurve(const std::string& channel, std::vector<CurvePoint> points);
    void clearCurves();
    /// Replaces all sliders and curves: the given values over the catalogue's defaults.
    void applyGrade(const AdjustMap& values, const CurveMap& curves);
    void applyLook(const std::string& id);
    void makeItPop();
    void setLookStrength(double strength);
    bool canAdjustLookStrength() const { return lastLook.value().has_value(); }
    void revertAllEdits();
    /// Fits the looks to the active image and draws their previews, in the background.
    void refreshLookThumbs();
    /// Whether looks are being drawn.
    bool isFittingLooks() const { return m_lookJob.isRunning(); }

    // ---- The view -----------------------------------------------------------------------------

    /// A step of the zoom, held to 1..16.
    void zoomIn();
    void zoomOut();
    /// Counts the graded picture anew, in the background, while somebody wants to see it: a view
    /// that shows the histogram, or `histogramOn`.
    void refreshHistogram();
    /// Tells that a view shows the counts (or no longer does), whatever `histogramOn` says.
    void setHistogramWanted(bool wanted);

    // ---- Saved looks and LUTs -----------------------------------------------------------------

    std::vector<LookItem> savedLooks() const;
    void saveLook(const std::string& name);
    void applySavedLook(const std::string& id);
    void removeSavedLook(const std::string& id);
    void importLut();
    void removeLut();
    /// Loads what a lutID names into ciLUT, lutName and lutMissing.
    void ensureLut(const std::string& id);
    /// Whether an edit of the open set names a LUT that the library cannot give.
    bool sessionHasMissingLut() const;

    // ---- Crop and canvas ----------------------------------------------------------------------

    // While the crop tool is open, what it changes stays out of history.
    void enterCrop();
    /// Leaves the crop tool; a changed crop becomes one step.
    void finishCrop();
    /// Leaves the crop tool, with crop and ratio as they were when it opened.
    void cancelCrop();
    /// Chooses a ratio and fits the crop to it.
    void setAspect(const std::string& id);
    /// Fractions of the turned and flipped picture, y from the top.
    void setCropNative(const CGRect& rect);
    /// "h" mirrors left to right, any other text top to bottom.
    void flip(const std::string& axis);
    /// One of canvasShapes; any other id means no canvas.
    void setCanvasShape(const std::string& id);

    // ---- Relight ------------------------------------------------------------------------------

    /// Opens the tool, with a first light in the middle when there is none.
    void enterRelight();
    /// Leaves the relight tool; lights and steps stay.
    void exitRelight();
    /// Leaves the relight tool; changed lights become what they were, and so does history.
    void cancelRelight();
    /// Makes a light of a kind (see newLight()), selects it and opens the tool.
    void addLightAt(const std::string& kind, double x, double y);
    void selectLight(const std::string& id);
    /// Writes one of the numbers of a light, by its name; not held to any range.
    void updateLight(const std::string& id, const std::string& field, double value);
    void setLightInverted(const std::string& id, bool inverted);
    void deleteLight(const std::string& id);
    void clearLights();
    /// Adds a finished stroke to a brush, in fractions of the picture, y from the top.
    void appendStroke(const std::string& id, const std::vector<CGPoint>& points);

    // ---- Retouch and white balance ------------------------------------------------------------

    /// Arms or disarms the retouch brush. At most one of it and the picker is armed.
    void toggleHeal();
    /// One spot for each point of a stroke, in fractions of the picture, y from the top.
    void healStrokeNative(const std::vector<CGPoint>& points);
    /// Takes back the last spot, not the last stroke.
    void undoLastHeal();
    void clearHealSpots();
    /// Arms or disarms the white balance picker.
    void pickWhiteBalance();
    /// Makes the pixel there grey and disarms the picker: fractions of the picture, y from the top.
    void pickWhiteNative(double nx, double ny);

    // ---- Text ---------------------------------------------------------------------------------

    /// The system's font, then each family by its name.
    static const std::vector<LookItem>& textFonts();
    void addText();
    // An id that no layer has makes these do nothing; the empty one selects none.
    void selectText(const std::string& id);
    void setText(const std::string& id, const std::string& text);
    void setTextSize(const std::string& id, double size);
    void setTextColor(const std::string& id, const std::string& hex);
    void setTextFont(const std::string& id, const std::string& font);
    void setTextShadow(const std::string& id, bool shadow);
    void setTextPosition(const std::string& id, double x, double y);
    /// One place towards the top, or towards the picture.
    void moveText(const std::string& id, bool forward);
    void deleteText(const std::string& id);
    /// The layer's place, counted from 1, which is also the answer for an unknown one.
    int textLayerNumber(const std::string& id) const;

    // ---- Export -------------------------------------------------------------------------------

    /// What the fields ask for.
    ExportOptions exportOptions() const;
    /// The suggested name of an exported file; absent without a picture.
    std::optional<std::string> activeExportName() const;
    /// A batch is in flight.
    bool isExportingAll() const { return exportFolder.value().has_value(); }
    /// Opens the export sheet.
    void exportImage();
    /// Closes the sheet and exports.
    void performExport();
    /// The save panel, then the active picture into a file, in the background.
    void exportNativeCI();
    /// The active picture into a temporary file, which is offered to others.
    void shareImage();
    /// Every open picture into a folder, one after the other; with a policy of its own in place of
    /// `exportMetadata`.
    void exportAll(std::optional<Baker::Metadata> metadata = {});
    /// Ends a batch: tells of the failures, one line each, and shows the folder.
    void finishExportAll(int exported, const std::vector<std::string>& failed);
    /// Stops the single export or share in flight at once; its target stays as it was.
    void cancelExport();
    /// Stops the batch in flight at once: finished files stay, the unfinished one goes.
    void cancelExportAll();
    bool confirmExportDespiteMissingLut(bool missing);

    // From any thread.
    /// The finished picture sized, with its metadata as asked, as the bytes of a file; absent when
    /// the encoder fails.
    static Baker::Bytes encodeCI(const CIImage& image, const ExportOptions& options);
    /// Downscaled to the longest edge in pixels; never enlarged.
    static CIImage resizedCI(const CIImage& image, int longEdge);

private:
    /// An edit on its way to the store.
    struct PendingEdit {
        std::string id; ///< of its image, as the name
        std::string name;
        std::string source;
        EditState state;
    };

    /// An edit where it lies: the rules compare edits, and copies of them all would cost more than
    /// the comparison.
    struct EditRef {
        const EditState* edit = nullptr;

        bool operator==(const EditRef& other) const { return *edit == *other.edit; }
    };
    using SessionView = std::vector<SessionRules::Item<EditRef>>;

    /// A decoded picture looked at lately.
    struct RecentSource {
        std::shared_ptr<const SourcePixels> pixels;
        CIImage image;
    };

    double now() const;
    std::optional<size_t> indexOf(const std::string& id) const;
    /// Changes a copy of the session and sets it, so that observers are told once.
    template <class Change> void changeSession(Change change)
    {
        std::vector<EditImage> changed = session.value();
        change(changed);
        session = std::move(changed);
    }
    SessionItem sessionItem(const EditImage& image) const;
    SessionView sessionView(const EditState& active) const;
    bool isCollectionDirty(const Collection& collection) const;
    void showSource(const std::shared_ptr<const SourcePixels>& pixels);
    void forgetRecentSource(const std::shared_ptr<const SourcePixels>& pixels);
    void setSource(const std::optional<CIImage>& image);
    void forgetActiveImage();
    bool storeEdits(std::vector<PendingEdit> pending);
    void makeSupportFolder() const;
    EditImage adopted(IncomingImage incoming) const;
    bool mayRemove(const EditImage& image);
    std::optional<IncomingImage> pastedImage();
    std::optional<IncomingImage> looseImage(PastedPicture picture);
    void adoptAndShow(IncomingImage image);
    void adoptPhotos(std::vector<PhotoSource::Photo> photos, bool append);
    std::string variantName(const std::string& name) const;
    void applyGradeOf(Looks::Look look);
    void takeLooks(const LookThumbs* thumbs);
    std::optional<CGSize> cropFrame() const;

    Collection collectionOfSession(const std::string& name) const;
    bool storeCollections(const std::vector<Collection>& changed, const std::string& complaint);
    const Collection* storedCollection(const Collection& record) const;
    void finishLoading(Collection collection, const std::vector<SessionItem>& confirmed,
                       std::vector<IncomingImage> incoming);
    void reportMissingSources(const Collection& collection, bool partial);

    /// A batch of exports in flight.
    struct ExportBatch;

    using ExportDone = std::function<void(const ExportEnd&)>;
    void startExport(const std::filesystem::path& target, ExportDone done);
    void finishShare(const std::string& name, const std::filesystem::path& file,
                     const ExportEnd& end);
    Result<void> mayExportTo(const std::filesystem::path& target) const;
    ExportBatch exportBatch(const std::filesystem::path& folder, Baker::Metadata metadata) const;
    void exportNext();
    void takeBatchEnd(const std::string& name, const ExportEnd& end);
    void finishCancelledBatch(bool wasUnfinished);

    Surroundings m_surroundings;
    Desktop& m_desktop;
    mutable StateStore m_stateStore;
    CollectionStore m_collectionStore;
    LooksStore m_looksStore;
    LutStore m_lutStore;
    /// Held weakly by what comes back later, so that it finds out when the model has gone.
    std::shared_ptr<AppModel*> m_alive;
    std::vector<RecentSource> m_recentSources; ///< newest first
    std::optional<CIImage> m_lookFrame; ///< what the looks are fitted to: framed at activation
    std::shared_ptr<ExportQueue::Ticket> m_export; ///< of the single export or share in flight
    std::filesystem::path m_shareFolder; ///< this run's own; empty until something is shared
    std::shared_ptr<ExportBatch> m_batch; ///< in flight, otherwise null
    // Last: they are waited for before anything that they report to goes.
    ExportQueue m_exports;
    LatestJob m_lookJob;
    HistogramCounter m_histogramCounter;
    bool m_isHistogramWanted = false;
    FileOpener m_fileOpener;
};

} // namespace orvane
