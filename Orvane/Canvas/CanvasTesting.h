#pragma once

#include "Bitmap.h"
#include "CIPreviewView.h"
#include "ModelTesting.h"

#include <QThreadPool>
#include <QWheelEvent>
#include <QtTest/QTest>

#include <memory>

namespace orvane {

/// A picture of one grey.
inline CIImage plainPicture(int width, int height, uint8_t grey = 128)
{
    auto bitmap = std::make_shared<Bitmap>(width, height, 3, SampleType::U8, AlphaKind::None);
    for (int y = 0; y < height; ++y)
        std::fill_n(bitmap->row(y), width * 3, grey);
    return CIImage::withBitmap(bitmap);
}

/// A shown view of a model, driven with the mouse, the wheel and keys. Places are fractions of the
/// picture as it lies on screen.
class CanvasTest : public ModelTest {
protected:
    /// Shows a picture in a view of a size, both in points, and waits until it is there.
    void show(const CIImage& picture, const QSize& size = {600, 400})
    {
        if (!view) {
            view = std::make_unique<CIPreviewView>(*model, pool);
            QObject::connect(view.get(), &CIPreviewView::picturePainted, [this] { ++painted; });
        }
        view->resize(size);
        view->show();
        model->sourceImage = picture;
        model->sourceImageVersion = model->sourceImageVersion + 1;
        waitForPicture();
    }
    void waitForPicture()
    {
        waitFor([this, before = painted] { return painted > before; });
    }
    /// Lets the view hear of what was set in the model.
    static void settle() { QCoreApplication::processEvents(); }

    QPoint at(double x, double y) const
    {
        const CGPoint point = viewPoint({x, y}, view->mapping());
        return QPointF(point.x, point.y).toPoint();
    }
    /// What lies under a point of the view; far outside where nothing does.
    CGPoint under(const QPoint& point) const
    {
        return normalized({double(point.x()), double(point.y())}, view->mapping())
            .value_or(CGPoint{-9, -9});
    }
    void press(const QPoint& point) { QTest::mousePress(view.get(), Qt::LeftButton, {}, point); }
    void move(const QPoint& point) { QTest::mouseMove(view.get(), point); }
    void release(const QPoint& point)
    {
        QTest::mouseRelease(view.get(), Qt::LeftButton, {}, point);
    }
    void click(const QPoint& point)
    {
        press(point);
        release(point);
    }
    /// In three moves.
    void drag(const QPoint& from, const QPoint& to)
    {
        press(from);
        for (int i = 1; i <= 3; ++i)
            move(from + (to - from) * i / 3);
        release(to);
    }
    void turnWheel(const QPoint& point, int notches)
    {
        QWheelEvent event(point, view->mapToGlobal(point), {}, {0, 120 * notches}, {}, {},
                          Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view.get(), &event);
    }
    void key(Qt::Key pressed, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(view.get(), pressed, modifiers);
    }

    QThreadPool pool;
    int painted = 0; ///< rendered pictures that have come on screen
    std::unique_ptr<CIPreviewView> view;
};

} // namespace orvane
