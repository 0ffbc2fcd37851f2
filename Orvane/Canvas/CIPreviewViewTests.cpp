#include "CIPreviewView.h"

#include "Bitmap.h"
#include "TestWaiting.h"

#include <QApplication>
#include <QThreadPool>

#include <gtest/gtest.h>

namespace orvane {
namespace {

/// Columns of black and white in turn: any drawing off the device's pixels makes them grey.
CIImage stripes(int width, int height)
{
    auto bitmap = std::make_shared<Bitmap>(width, height, 3, SampleType::U8, AlphaKind::None);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width * 3; ++x)
            bitmap->row(y)[x] = x / 3 % 2 == 0 ? 0 : 255;
    }
    return CIImage::withBitmap(bitmap);
}

TEST(CIPreviewView, PaintsPixelForPixelAtEveryScale)
{
    struct Row {
        double ratio;
        QSize view;
        CGSize picture; ///< as many pixels as the view has on the device
    };
    const Row rows[] = {
        {1, {601, 400}, {601, 400}}, {1.25, {480, 320}, {600, 400}}, {2, {321, 250}, {642, 500}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.ratio);
        QThreadPool pool;
        CIPreviewView view(pool);
        view.resize(row.view);
        view.show();
        view.setContent({.version = 1,
                         .proxy = stripes(int(row.picture.width), int(row.picture.height)),
                         .sourceSize = row.picture});
        waitFor([&] { return view.mapping().hasFrame(); });

        // Placed so that at 1.25 the view begins between two device pixels.
        QImage screen(700, 600, QImage::Format_RGB32);
        screen.setDevicePixelRatio(row.ratio);
        screen.fill(Qt::blue);
        view.render(&screen, QPoint(3, 5));
        int greys = 0;
        int changes = 0;
        const QRgb* line = reinterpret_cast<const QRgb*>(screen.constScanLine(100));
        const int left = int(std::ceil(3 * row.ratio));
        for (int x = left + 1; x < left + int(row.picture.width) - 1; ++x) {
            greys += qRed(line[x]) != 0 && qRed(line[x]) != 255;
            changes += line[x] != line[x - 1];
        }
        EXPECT_EQ(greys, 0);
        EXPECT_EQ(changes, int(row.picture.width) - 2);
    }
}

TEST(CIPreviewView, ActualSizeIsOneSourcePixelOnOnePoint)
{
    QThreadPool pool;
    CIPreviewView view(pool);
    view.resize(500, 500);
    view.show();
    view.setContent({.version = 1, .proxy = stripes(400, 300), .sourceSize = {4000, 3000}});
    view.zoomToActualSize();
    EXPECT_DOUBLE_EQ(view.mapping().zoom, 8);
    view.setContent({.version = 2, .proxy = stripes(400, 300), .sourceSize = {4000, 3000}});
    EXPECT_EQ(view.mapping().zoom, 1) << "a new picture is shown whole";
}

} // namespace
} // namespace orvane

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
