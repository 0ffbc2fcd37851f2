#include "FileSystem.h"
#include "ModelTesting.h"
#include "PictureDecoder.h"

#include <condition_variable>
#include <csignal>
#include <mutex>

#include <sys/resource.h>

namespace orvane {
namespace {

using testing::ElementsAre;

/// Writing stops at a step of a file, on the thread that writes, until it is let go.
class WritingStop {
public:
    /// At the `occurrence`th time that the step comes, from 1.
    WritingStop(std::string_view step, int occurrence)
        : m_step(step)
        , m_left(occurrence)
    {
        current = this;
        fileStepHook = [](const char* name) { current->pass(name); };
    }
    ~WritingStop()
    {
        letGo();
        fileStepHook = nullptr;
    }
    void waitUntilReached()
    {
        waitFor([this] {
            const std::lock_guard lock(m_mutex);
            return m_isReached;
        });
    }
    void letGo()
    {
        const std::lock_guard lock(m_mutex);
        m_isLetGo = true;
        m_changed.notify_all();
    }

private:
    void pass(std::string_view step)
    {
        std::unique_lock lock(m_mutex);
        if (step != m_step || --m_left != 0)
            return;
        m_isReached = true;
        // The waiting thread looks again when an event comes.
        QMetaObject::invokeMethod(
            qApp, [] {}, Qt::QueuedConnection);
        m_changed.wait(lock, [this] { return m_isLetGo; });
    }

    static inline WritingStop* current = nullptr;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string_view m_step;
    int m_left;
    bool m_isReached = false;
    bool m_isLetGo = false;
};

/// Files end at so many bytes, as on a disk that is full.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes)
    {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limit{bytes, m_old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_old);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_old = {};
    void (*m_handler)(int) = SIG_DFL;
};

class AppModelExport : public ModelTest {
protected:
    AppModelExport() { std::filesystem::create_directory(out); }

    /// The encoder of JPEG ends at 65,500.
    void openTooWide(const std::string& name)
    {
        writePicture(folder / name, {1, 2, 3}, EncodedFormat::Png, 65520, 1);
        open({name}, true);
    }
    void waitForExports()
    {
        waitFor([this] { return !model->isExporting && !model->isExportingAll(); });
    }
    void exportTo(const std::filesystem::path& target)
    {
        desktop.targets.push_back(target);
        model->performExport();
        waitForExports();
    }
    void exportAllTo(const std::filesystem::path& target,
                     std::optional<Baker::Metadata> metadata = {})
    {
        desktop.choices.push_back({target});
        model->exportAll(metadata);
        waitForExports();
    }
    std::string exported() const { return names("out"); }

    const std::filesystem::path out = folder / "out";
};

TEST_F(AppModelExport, WritesTheActivePictureWhereThePanelSays)
{
    EXPECT_FALSE(model->activeExportName());
    open({"a.b.jpg", "other.png"});
    expose(40);
    model->exportFormat = AppModel::ExportFormat::png;
    model->exportSheetShown = true;
    std::vector<bool> states;
    const auto watching =
        model->isExporting.onValueChanged([&] { states.push_back(model->isExporting); });
    exportTo(out / "mine.png");
    EXPECT_FALSE(model->exportSheetShown);
    EXPECT_EQ(desktop.savePanels.back(), (SavePanel{"a.b-edit.png", "png"}));
    EXPECT_EQ(states, (std::vector<bool>{true, false}));
    EXPECT_EQ(model->exportProgress, 1);
    EXPECT_TRUE(desktop.alerts.empty());
    EXPECT_TRUE(desktop.revealed.empty());
    const auto picture = decodePictureFile(out / "mine.png");
    ASSERT_TRUE(picture) << picture.error().message;
    EXPECT_GT(picture->bitmap->row(0)[0], 95); // 90 in the source, brightened

    desktop.targets.push_back({});
    model->exportNativeCI();
    EXPECT_FALSE(model->isExporting);
    EXPECT_EQ(exported(), "mine.png");
}

TEST_F(AppModelExport, TellsWhyAFileWasNotWritten)
{
    open({"a.jpg"});
    const std::string original = content("a.jpg");
    std::filesystem::create_directory(out / "taken.jpg");
    const struct {
        std::filesystem::path target;
        std::string reason;
    } cases[] = {
        {folder / "gone" / "x.jpg",
         "“x.jpg” couldn't be saved because the folder “" + (folder / "gone").string()
             + "” doesn't exist."},
        {out / "taken.jpg",
         "“taken.jpg” couldn't be saved because a folder of that name is in the way."},
        {folder / "a.jpg", "This is the original, which is never written. Choose another name."},
    };
    for (const auto& c : cases) {
        exportTo(c.target);
        EXPECT_THAT(desktop.takeAlerts(),
                    ElementsAre(Alert{"Couldn't export “a-edit.jpg”", c.reason}));
    }
    EXPECT_EQ(content("a.jpg"), original);

    openTooWide("wide.png");
    activate(1);
    exportTo(out / "x.jpg");
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"Couldn't export “wide-edit.jpg”",
                                  "The image couldn't be encoded as JPEG."}));
    model->shareImage();
    waitForExports();
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"Couldn't prepare “wide.png” to share",
                                  "The image couldn't be encoded."}));
    EXPECT_EQ(exported(), "taken.jpg");
}

TEST_F(AppModelExport, SharesATemporaryFile)
{
    ::setenv("TMPDIR", out.c_str(), 1);
    open({"a.jpg"});
    model->shareImage();
    waitForExports();
    ASSERT_EQ(desktop.shared.size(), 1u);
    EXPECT_EQ(desktop.shared[0].filename(), "a-edit.jpg");
    EXPECT_TRUE(decodePictureFile(desktop.shared[0]));
    const auto permissions = std::filesystem::status(desktop.shared[0].parent_path()).permissions();
    EXPECT_EQ(permissions, std::filesystem::perms::owner_all);

    desktop.isWindowShown = false;
    model->shareImage();
    waitForExports();
    EXPECT_EQ(desktop.shared.size(), 1u);

    std::filesystem::remove_all(out);
    model->shareImage();
    EXPECT_EQ(alertMessages(), std::vector<std::string>{"Couldn't prepare “a.jpg” to share"});
    EXPECT_FALSE(model->isExporting);
    ::unsetenv("TMPDIR");
}

TEST_F(AppModelExport, WritesEveryPictureUnderANameOfItsOwn)
{
    open({"a.jpg", "a.png", "日本.jpg"});
    activate(1);
    expose(60); // not parked yet
    ASSERT_TRUE(writeFile(out / "a-edit.jpg", "of an earlier day"));
    ASSERT_TRUE(writeFile(out / ".orvane-1-2", "of an export that was killed"));
    std::vector<int> counts;
    std::vector<double> shares;
    const auto counting =
        model->exportedCount.onValueChanged([&] { counts.push_back(model->exportedCount); });
    const auto watching = model->batchProgress.onValueChanged([&] {
        const BatchProgress now = model->batchProgress;
        EXPECT_EQ(now.count, 3);
        shares.push_back(now.index + now.fraction);
    });
    exportAllTo(out);
    EXPECT_EQ(exported(), "a-edit-2.jpg a-edit-3.jpg a-edit.jpg 日本-edit.jpg");
    EXPECT_EQ(*readTextFile(out / "a-edit.jpg", 100), "of an earlier day");
    EXPECT_GT(decodePictureFile(out / "a-edit-3.jpg")->bitmap->row(0)[0], 95);
    EXPECT_EQ(counts, (std::vector<int>{1, 2, 3}));
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(shares.back(), 3);
    EXPECT_TRUE(desktop.alerts.empty());
    EXPECT_EQ(desktop.revealed, std::vector<std::filesystem::path>{out});
    EXPECT_EQ(model->activeImageID.value(), image(1).id);
}

TEST_F(AppModelExport, AsksForAFolderInWordsThatFit)
{
    model->exportAll(); // nothing is open
    open({"a.jpg"});
    const auto ask = [&](std::optional<Baker::Metadata> metadata) {
        desktop.choices.push_back({});
        model->exportAll(metadata);
        EXPECT_FALSE(model->isExportingAll());
        const OpenPanel& panel = desktop.openPanels.back();
        EXPECT_EQ(panel.prompt, "Export Here");
        EXPECT_TRUE(panel.canCreateFolders);
        return panel.message;
    };
    EXPECT_EQ(ask({}), "Choose a folder for the 1 exported image");
    open({"b.jpg"}, true);
    EXPECT_EQ(ask({}), "Choose a folder for the 2 exported images");
    EXPECT_EQ(ask(Baker::Metadata::stripLocation),
              "Choose a folder for 2 copies with location removed. Your originals stay untouched.");
    model->exportMetadata = Baker::Metadata::keep;
    exportAllTo(out, Baker::Metadata::stripLocation);
    EXPECT_EQ(model->exportMetadata, Baker::Metadata::keep);
}

TEST_F(AppModelExport, RemovesTheLocationFromAllWhenAskedTo)
{
    ImageProperties located;
    located.xmp = "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
                  "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
                  "rdf:about=\"\" xmlns:exif=\"http://ns.adobe.com/exif/1.0/\" "
                  "exif:GPSLatitude=\"48,51.5N\"/></rdf:RDF></x:xmpmeta>";
    const CIImage plain = CIImage::withColor({0.4, 0.5, 0.6, 1}).cropped({0, 0, 64, 48});
    ASSERT_TRUE(exportFile(plain.settingProperties(located), {.metadata = Baker::Metadata::keep},
                           folder / "a.jpg"));
    open({"a.jpg"});
    const auto tellsWhere = [&](const char* name) {
        return decodePictureFile(out / name)->properties.xmp.find("48,51.5N") != std::string::npos;
    };
    model->exportMetadata = Baker::Metadata::keep;
    exportAllTo(out);
    EXPECT_TRUE(tellsWhere("a-edit.jpg"));
    exportAllTo(out, Baker::Metadata::stripLocation);
    EXPECT_FALSE(tellsWhere("a-edit-2.jpg"));
}

TEST_F(AppModelExport, ListsSixFailuresAndCountsTheRest)
{
    std::string lines;
    for (int i = 1; i <= 6; ++i) {
        const std::string name = "wide " + std::to_string(i) + ".png";
        openTooWide(name);
        lines += (i == 1 ? "" : "\n") + name + ": the image couldn't be encoded as JPEG";
    }
    exportAllTo(out);
    EXPECT_THAT(desktop.takeAlerts(), ElementsAre(Alert{"Nothing could be exported", lines}));
    EXPECT_TRUE(desktop.revealed.empty());
    openTooWide("wide 7.png");
    exportAllTo(out);
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"Nothing could be exported", lines + "\n… and 1 more"}));
    EXPECT_EQ(exported(), "");
}

TEST_F(AppModelExport, GoesOnAfterAFailure)
{
    open({"a.jpg", "c.jpg"});
    writePicture(folder / "b.png", {1, 2, 3}, EncodedFormat::Png, 400, 300);
    open({"b.png", "d.jpg"}, true);
    std::filesystem::remove(folder / "a.jpg"); // what is open needs its file no more
    model->exportFormat = AppModel::ExportFormat::tiff;
    {
        // Room for 96 x 64 pixels of 6 bytes, but not for 400 x 300.
        const FullDisk disk(200'000);
        exportAllTo(out);
    }
    const auto alerts = desktop.takeAlerts();
    ASSERT_EQ(alerts.size(), 1u);
    EXPECT_EQ(alerts[0].message, "3 exported, 1 failed");
    EXPECT_THAT(alerts[0].informative, testing::StartsWith("b.png: The file could not be written"));
    EXPECT_EQ(exported(), "a-edit.tiff c-edit.tiff d-edit.tiff");
    EXPECT_EQ(desktop.revealed, std::vector<std::filesystem::path>{out});

    WritingStop stop("exchanged", 2);
    desktop.choices.push_back({out});
    model->exportAll();
    stop.waitUntilReached();
    std::filesystem::remove_all(out);
    stop.letGo();
    waitForExports();
    EXPECT_EQ(alertMessages(), std::vector<std::string>{"1 exported, 3 failed"});
}

TEST_F(AppModelExport, CancelledKeepsWhatIsFinished)
{
    open({"a.jpg", "b.jpg", "c.jpg"});
    const struct {
        const char* step; // of the second file
        const char* files;
        const char* text;
    } cases[] = {
        {"temporary file made", "a-edit.jpg",
         "1 of 3 exported. Finished files stay; the unfinished one was removed."},
        {"exchanged", "a-edit.jpg b-edit.jpg", "2 of 3 exported. Finished files stay."},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.step);
        WritingStop stop(c.step, 2);
        desktop.choices.push_back({out});
        model->exportAll();
        stop.waitUntilReached();
        model->cancelExportAll();
        stop.letGo();
        waitForExports();
        EXPECT_THAT(desktop.takeAlerts(), ElementsAre(Alert{"Export cancelled", c.text}));
        // The next one begins when the cancelled one has let go.
        exportTo(folder / "later.jpg");
        EXPECT_EQ(exported(), c.files);
        std::filesystem::remove_all(out);
        std::filesystem::create_directory(out);
    }
    EXPECT_EQ(desktop.revealed.size(), 2u);
}

TEST_F(AppModelExport, CancelledLeavesTheTargetAsItWas)
{
    open({"a.jpg"});
    ASSERT_TRUE(writeFile(out / "x.jpg", "what was there"));
    WritingStop stop("temporary file made", 1);
    desktop.targets.push_back(out / "x.jpg");
    model->exportNativeCI();
    stop.waitUntilReached();
    model->exportNativeCI(); // one at a time: no panel
    model->cancelExport();
    EXPECT_FALSE(model->isExporting);
    EXPECT_THAT(desktop.takeAlerts(),
                ElementsAre(Alert{"Export cancelled", "No file was written."}));
    stop.letGo();
    model.reset(); // waits for the engine
    EXPECT_EQ(*readTextFile(out / "x.jpg", 100), "what was there");
    EXPECT_EQ(exported(), "x.jpg");
}

TEST_F(AppModelExport, AsksBeforeItLeavesOutAMissingLut)
{
    open({"a.jpg", "b.jpg"});
    model->lutID = std::string("lut_gone");
    model->ensureLut("lut_gone");
    const Alert question{
        "Export without the missing LUT?",
        "This edit uses a LUT whose file couldn't be loaded, so the export won't include its "
        "colour. Re-import the LUT, or remove it from the edit, to change that.",
        {"Export Anyway", "Cancel"}};
    desktop.answers = {1, 1, 1};
    model->exportImage();
    model->shareImage();
    model->exportAll(); // the missing one is not parked yet
    EXPECT_THAT(desktop.takeAlerts(), ElementsAre(question, question, question));
    EXPECT_FALSE(model->exportSheetShown);
    desktop.answers = {0, 0};
    model->exportImage();
    EXPECT_TRUE(model->exportSheetShown);
    exportAllTo(out);
    EXPECT_EQ(desktop.takeAlerts().size(), 2u);
    EXPECT_EQ(model->exportedCount, 2);
}

} // namespace
} // namespace orvane
