#include "CIPreviewView.h"

#include "CanvasTesting.h"
#include "Theme.h"

#include <QApplication>
#include <QPainter>
#include <QSemaphore>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

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
    EXPECT_GT(greyOnScreen(), 150) << "a draft, without the pause";
    EXPECT_EQ(desktop.chrome.title, "") << "the window is told with the finished picture";
    waitFor([&] { return desktop.chrome.title == "Orvane"; });
    model->comparing = true;
    waitFor([&] { return greyOnScreen() == 128; });
    model->comparing = false;
    model->lutID = std::string("lut_black");
    model->ciLUT = LUT::fromRGB(2, std::vector<float>(24, 0.0F));
    waitFor([&] { return greyOnScreen() < 3; }); // through its table

    model->sourceImage = std::nullopt;
    model->sourceImageVersion = model->sourceImageVersion + 1;
    settle();
    EXPECT_FALSE(view->mapping().hasFrame()) << "an empty session shows nothing";
}

TEST_F(CIPreviewViewTest, TransparentCornersShowTheSurroundAndNothingFromBefore)
{
    show(plainPicture(400, 400), {400, 400});
    model->rotation = 20;
    waitFor([&] { return view->mapping().frame.width > 400; });
    settle();
    QImage screen(view->size(), QImage::Format_RGB32);
    screen.fill(Qt::white); // as if left by another picture
    view->render(&screen, {}, {}, {}); // and as on screen without a background of its own
    EXPECT_EQ(screen.pixelColor(3, 3), Theme::surround);
    EXPECT_EQ(screen.pixelColor(200, 200).green(), 128);
}

/// Every stage that a draft could leave intermediates of. Each call makes another source.
CanvasContent muchEdited()
{
    auto noise = std::make_shared<Bitmap>(1800, 1200, 3, SampleType::U8, AlphaKind::None);
    std::minstd_rand random(5);
    for (int y = 0; y < noise->height(); ++y)
        std::generate_n(noise->row(y), noise->width() * 3, [&] { return uint8_t(random() >> 9); });
    CanvasContent content{.version = 1, .proxy = proxyOf(CIImage::withBitmap(noise))};
    content.state.adjust = {
        {"exposure", 20}, {"clarity", 40}, {"sharpening", 50}, {"vignette", -30}, {"grain", 40}};
    content.state.crop = {0.1, 0.2, 0.7, 0.6};
    content.state.rotation = 3;
    content.state.healSpots = {{0.4, 0.5, 0.05}};
    EditState::Light& light = content.state.lights.emplace_back();
    light.type = "radial";
    light.x = light.y = 0.4;
    light.radius = 0.3;
    light.brightness = 50;
    EditState::TextLayer& text = content.state.texts.emplace_back();
    text.text = "Words";
    text.x = text.y = 0.6;
    text.size = 0.1;
    text.colorHex = "#ffffff";
    return content;
}

/// The finished picture must not be drawn from what drafts have left behind.
TEST_F(CIPreviewViewTest, TheFinishedPictureIsTheSameAfterDrafts)
{
    const CanvasView screen{.size = {900, 700}};
    const CancellationToken never;
    const QImage expected = renderedForScreen(muchEdited(), screen, 1, never).picture;
    const CanvasContent content = muchEdited();
    for (const double scale : {0.25, 0.5}) {
        const RenderedPicture draft = draftedForScreen(content, scale, screen, 1, never);
        EXPECT_EQ(draft.frame, pictureSize(content)) << "it is stretched to the finished size";
        EXPECT_NEAR(draft.picture.width(), expected.width() * scale, 2);
    }
    EXPECT_TRUE(draftedForScreen(content, 1, screen, 1, never).picture == expected);
    EXPECT_TRUE(renderedForScreen(content, screen, 1, never).picture == expected);
}

/// An enlarged picture is scaled for what is seen of it and a margin; panning beyond that, and
/// what is painted piece by piece, shows the same.
TEST_F(CIPreviewViewTest, AScaledPartIsTheWholeSeenThroughAWindow)
{
    QImage source(60, 40, QImage::Format_RGB32);
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 60; ++x)
            source.setPixel(x, y, qRgb(x * 4, y * 6, (x * 7 + y * 13) % 256));
    }
    const QSize window(100, 80);
    for (const int scale : {3, 5}) { // smooth, and as squares
        const QSize whole = source.size() * scale;
        const QImage expected = fittedTo(whole, QRect({}, whole), source).part;
        ScreenPicture shown;
        shown.set({.picture = source});
        const QRect seen(QPoint(40, 20), window);
        EXPECT_TRUE(shown.wantsFit(whole, seen));
        shown.takeFit(source, fittedTo(whole, partWorthFitting(seen, whole), source));
        EXPECT_FALSE(shown.wantsFit(whole, seen.translated(5, 5))) << "a margin to pan into";
        EXPECT_TRUE(shown.wantsFit(whole, seen.translated(30, 0)));
        for (const QPoint& at : {QPoint(40, 20), QPoint(45, 28), QPoint(70, 5)}) {
            QImage screen(window, QImage::Format_RGB32);
            QPainter painter(&screen);
            for (const QRect& part : {QRect(0, 0, 33, 80), QRect(33, 0, 67, 80)})
                shown.draw(painter, {-at, whole}, part);
            painter.end();
            EXPECT_EQ(screen, expected.copy({at, window})) << scale << " " << at.x();
        }
    }
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
