#include "ExportSheet.h"

#include "ExportOverlay.h"
#include "ModelTesting.h"
#include "WidgetTesting.h"

#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace orvane {
namespace {

class ExportSheetTest : public ModelTest {
protected:
    void SetUp() override
    {
        open({"a.jpg"}); // 96 x 64
        window.resize(900, 700);
        window.show();
        sheet = std::make_unique<ExportSheet>(*model, &window);
    }
    void TearDown() override { sheet.reset(); }
    void openSheet()
    {
        model->exportImage();
        waitFor([&] { return sheet->isVisible(); });
    }
    QAbstractButton* button(const QString& name) const { return buttonNamed(*sheet, name); }
    /// The texts that are in sight, one after the other.
    std::string texts() const
    {
        QStringList shown;
        for (const QLabel* label : sheet->findChildren<QLabel*>()) {
            if (label->isVisible())
                shown += label->text();
        }
        return shown.join('|').toStdString();
    }

    QWidget window;
    std::unique_ptr<ExportSheet> sheet;
};

TEST_F(ExportSheetTest, ShowsWhatBelongsToAFormat)
{
    const struct {
        const char* format;
        ExportFormat chosen;
        bool hasQuality;
        bool has16Bit;
    } cases[] = {
        {"PNG", ExportFormat::png, false, true},
        {"TIFF (16-bit)", ExportFormat::tiff, false, false},
        {"HEIC", ExportFormat::heic, true, false},
        {"JPEG", ExportFormat::jpeg, true, false},
    };
    openSheet();
    for (const auto& each : cases) {
        click(button("Format: " + QString(each.format)));
        settle();
        EXPECT_EQ(sheet->findChild<QWidget*>("Export quality")->isVisible(), each.hasQuality);
        EXPECT_EQ(model->exportFormat.value(), each.chosen);
        EXPECT_EQ(texts().find("Lossless. Large files.") != std::string::npos, !each.hasQuality)
            << each.format;
        EXPECT_EQ(texts().find("Twice the tonal precision") != std::string::npos, each.has16Bit)
            << each.format;
    }
}

TEST_F(ExportSheetTest, EveryControlIsReachedByTab)
{
    openSheet();
    QStringList names = namesOnTheWayOfTab(*sheet);
    EXPECT_EQ(names.filter("Quality").size(), 2); // the slider and its field
    names.removeAll("Quality");
    EXPECT_EQ(names.filter(QRegularExpression("^(Format|Metadata|Size): ")).size(), 3);
    for (const char* name : {"Cancel", "Export", "Share"})
        EXPECT_TRUE(names.contains(name)) << name;
}

TEST_F(ExportSheetTest, KeysSetTheModelAndEscapeKeepsTheChoices)
{
    openSheet();
    auto* const slider = sheet->findChild<QWidget*>("Export quality");
    slider->setFocus();
    QTest::keyClick(slider, Qt::Key_Left);
    EXPECT_NEAR(model->exportQuality, 89, 1e-9);
    button("Size: Full size")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
    const int longEdge = model->exportLongEdge;
    EXPECT_EQ(longEdge, 4096);
    QTest::keyClick(sheet.get(), Qt::Key_Escape);
    EXPECT_FALSE(sheet->isVisible());
    EXPECT_FALSE(model->exportSheetShown);

    openSheet();
    EXPECT_NEAR(model->exportQuality, 89, 1e-9);
    EXPECT_EQ(model->exportLongEdge.value(), longEdge);
    click(button("Metadata: Keep everything"));
    EXPECT_EQ(model->exportMetadata.value(), Baker::Metadata::keep);
}

TEST_F(ExportSheetTest, TellsThePixelsOfTheFile)
{
    const struct {
        int longEdge;
        CGRect crop;
        const char* text;
    } cases[] = {
        {0, CGRect(0, 0, 1, 1), "96 × 64 px"},
        {640, CGRect(0, 0, 1, 1), "96 × 64 px"}, // never enlarged
        {48, CGRect(0, 0, 1, 1), "48 × 32 px"},
        {0, CGRect(0, 0, 0.5, 1), "48 × 64 px"},
    };
    for (const auto& each : cases) {
        model->exportSheetShown = false;
        waitFor([&] { return !sheet->isVisible(); });
        model->crop = each.crop;
        model->exportLongEdge = each.longEdge;
        openSheet();
        EXPECT_NE(texts().find(each.text), std::string::npos) << each.text << " in " << texts();
    }
}

TEST_F(ExportSheetTest, EnterExportsWithTheSheetOutOfTheWay)
{
    openSheet();
    desktop.targets.push_back(folder / "out.jpg");
    button("Format: JPEG")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(sheet->isVisible());
    ASSERT_EQ(desktop.savePanels.size(), 1U);
    waitFor([&] { return !model->isExporting; });
    EXPECT_TRUE(std::filesystem::exists(folder / "out.jpg"));

    openSheet();
    click(button("Share"));
    EXPECT_FALSE(sheet->isVisible());
    waitFor([&] { return !desktop.shared.empty(); });
}

using ExportOverlayTest = ExportSheetTest;

TEST_F(ExportOverlayTest, CoversTheCanvasWhileAFileIsMadeAndStopsByEscape)
{
    QWidget canvas(&window);
    canvas.setFocusPolicy(Qt::StrongFocus);
    canvas.resize(400, 300);
    canvas.show();
    canvas.setFocus();
    ExportOverlay overlay(*model, &canvas);
    writePicture(folder / "large.jpg", {90, 120, 60}, EncodedFormat::Jpeg, 4000, 3000);
    open({"large.jpg"});
    EXPECT_FALSE(overlay.isVisible());

    desktop.targets.push_back(folder / "out.tiff");
    model->performExport();
    waitFor([&] { return overlay.isVisible(); });
    canvas.resize(500, 350);
    EXPECT_EQ(overlay.size(), canvas.size());
    model->exportProgress = 0.4; // the export's own figure may follow at once
    waitFor([&] { return overlay.findChild<QProgressBar*>()->value() > 0; });
    QTest::keyClick(&overlay, Qt::Key_Escape);
    waitFor([&] { return !overlay.isVisible(); });
    EXPECT_EQ(alertMessages(), std::vector<std::string>{"Export cancelled"});
    EXPECT_FALSE(std::filesystem::exists(folder / "out.tiff"));
    EXPECT_TRUE(canvas.hasFocus());
}

} // namespace
} // namespace orvane
