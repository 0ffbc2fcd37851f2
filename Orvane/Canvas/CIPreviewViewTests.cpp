#include "CIPreviewView.h"

#include "CanvasTesting.h"

#include <QApplication>
#include <QSemaphore>

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

class CIPreviewViewTest : public CanvasTest {
protected:
    /// Of the middle of the view.
    int greyOnScreen()
    {
        return qGreen(view->grab().toImage().pixel(view->width() / 2, view->height() / 2));
    }
};

TEST_F(CIPreviewViewTest, PaintsPixelForPixelAtEveryScale)
{
    struct Row {
        double ratio;
        QSize view;
        QSize picture; ///< as many pixels as the view has on the device
    };
    const Row rows[] = {
        {1, {601, 400}, {601, 400}}, {1.25, {480, 320}, {600, 400}}, {2, {321, 250}, {642, 500}}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.ratio);
        show(stripes(row.picture.width(), row.picture.height()), row.view);

        // Placed so that at 1.25 the view begins between two device pixels.
        QImage screen(700, 600, QImage::Format_RGB32);
        screen.setDevicePixelRatio(row.ratio);
        screen.fill(Qt::blue);
        view->render(&screen, QPoint(3, 5));
        int greys = 0;
        int changes = 0;
        const QRgb* line = reinterpret_cast<const QRgb*>(screen.constScanLine(100));
        const int left = int(std::ceil(3 * row.ratio));
        for (int x = left + 1; x < left + row.picture.width() - 1; ++x) {
            greys += qRed(line[x]) != 0 && qRed(line[x]) != 255;
            changes += line[x] != line[x - 1];
        }
        EXPECT_EQ(greys, 0);
        EXPECT_EQ(changes, row.picture.width() - 2);
    }
}

TEST_F(CIPreviewViewTest, TheActualSizeIsOneSourcePixelOnOnePoint)
{
    show(plainPicture(4000, 3000), {1000, 1000});
    model->zoom = 2;
    settle();
    drag({500, 500}, {600, 620});
    model->actualSizeTick = model->actualSizeTick + 1;
    settle();
    EXPECT_EQ(model->zoom, 4) << "at once, whatever the glide on screen";
    waitFor([&] { return view->mapping().zoom == 4; });
    EXPECT_EQ(view->mapping().pan, CGPoint());

    show(plainPicture(400, 300), {1000, 1000});
    EXPECT_EQ(model->zoom, 1) << "another picture is shown whole";
    model->actualSizeTick = model->actualSizeTick + 1;
    settle();
    EXPECT_EQ(model->zoom, 1) << "smaller than the view";
}

TEST_F(CIPreviewViewTest, TheWheelZoomsAboutThePointerAndCommandsToo)
{
    show(plainPicture(300, 200));
    const QPoint pointer(420, 130);
    const auto expectKept = [&](const CGPoint& before) {
        EXPECT_NEAR(under(pointer).x, before.x, 1e-9);
        EXPECT_NEAR(under(pointer).y, before.y, 1e-9);
    };
    const CGPoint before = under(pointer);
    turnWheel(pointer, 3);
    EXPECT_NEAR(model->zoom, 1.953125, 1e-9);
    expectKept(before);
    move(pointer);
    model->zoomIn();
    settle();
    EXPECT_NEAR(view->mapping().zoom, 2.44140625, 1e-9);
    expectKept(before);

    // With the pointer over a menu or a button, about the middle.
    QEvent left(QEvent::Leave);
    QCoreApplication::sendEvent(view.get(), &left);
    const CGPoint middle = under({300, 200});
    model->zoomIn();
    settle();
    EXPECT_NEAR(under({300, 200}).x, middle.x, 1e-9);
    EXPECT_NEAR(under({300, 200}).y, middle.y, 1e-9);

    turnWheel(pointer, -50);
    EXPECT_EQ(model->zoom, 1);
    EXPECT_EQ(view->mapping().pan, CGPoint()) << "a whole picture lies in the middle";
    turnWheel(pointer, 50);
    EXPECT_EQ(model->zoom, 16);
}

TEST_F(CIPreviewViewTest, ADragPansOnceItIsOneAndADoubleClickFits)
{
    show(plainPicture(300, 200));
    drag({300, 200}, {360, 240});
    EXPECT_EQ(view->mapping().pan, CGPoint()) << "a whole picture has nowhere to go";
    move({300, 200});
    model->zoom = 2;
    settle();
    drag({300, 200}, {306, 207});
    EXPECT_EQ(view->mapping().pan, CGPoint()) << "a click that trembles";
    drag({300, 200}, {360, 240});
    drag({300, 200}, {310, 200});
    EXPECT_EQ(view->mapping().pan, (CGPoint{70, 40}));
    QTest::mouseDClick(view.get(), Qt::LeftButton, {}, {100, 100});
    EXPECT_EQ(model->zoom, 1);
    waitFor([&] { return view->mapping().zoom == 1; });
    EXPECT_EQ(view->mapping().pan, CGPoint());
}

TEST_F(CIPreviewViewTest, ShowsTheEditAndWithoutItsGradeWhileComparing)
{
    show(plainPicture(300, 200));
    EXPECT_EQ(greyOnScreen(), 128);
    desktop.chrome = {};
    expose(100);
    waitForPicture();
    EXPECT_EQ(desktop.chrome.title, "Orvane") << "the window is told with the picture";
    EXPECT_GT(greyOnScreen(), 150);
    model->comparing = true;
    waitForPicture();
    EXPECT_EQ(greyOnScreen(), 128);
    model->comparing = false;
    model->lutID = std::string("lut_black");
    model->ciLUT = LUT::fromRGB(2, std::vector<float>(24, 0.0F));
    waitForPicture();
    EXPECT_LT(greyOnScreen(), 3) << "through its table";

    model->sourceImage = std::nullopt;
    model->sourceImageVersion = model->sourceImageVersion + 1;
    settle();
    EXPECT_FALSE(view->mapping().hasFrame()) << "an empty session shows nothing";
}

TEST_F(CIPreviewViewTest, AnImageStandsInByItsThumbnailUntilItIsRendered)
{
    view = std::make_unique<CIPreviewView>(*model, pool);
    view->resize(600, 400);
    view->show();
    pool.setMaxThreadCount(1);
    QSemaphore mayRender;
    pool.start([&] { mayRender.acquire(); });
    picture("white.png", {255, 255, 255});
    open({"white.png"});
    settle();
    EXPECT_EQ(view->mapping().frame, (CGSize{96, 64})) << "the size it will have";
    EXPECT_GT(greyOnScreen(), 250);
    mayRender.release();
    pool.waitForDone();
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
