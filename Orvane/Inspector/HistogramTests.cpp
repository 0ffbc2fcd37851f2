#include "HistogramView.h"
#include "LevelsView.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace orvane {
namespace {

QImage painted(QWidget& widget, double scale)
{
    QImage image((widget.size() * scale), QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    widget.render(&image);
    return image;
}

TEST(HistogramView, ChannelsAddUpToWhiteAndItsEmptyStateDiffers)
{
    HistogramView view;
    EXPECT_EQ(view.accessibleName(), "Histogram of the displayed image");
    const QImage empty = painted(view, 1);
    const std::vector<double> full(256, 1);
    const std::vector<double> none(256, 0);
    view.setHistogram({full, full, full});
    const QColor all = painted(view, 1).pixelColor(140, 90);
    EXPECT_GT(all.red(), 150);
    EXPECT_NEAR(all.red(), all.green(), 3);
    EXPECT_NEAR(all.red(), all.blue(), 3);
    view.setHistogram({full, none, none});
    const QColor red = painted(view, 1).pixelColor(140, 90);
    EXPECT_GT(red.red(), 3 * red.blue());
    view.setHistogram({});
    EXPECT_EQ(painted(view, 1), empty);
}

TEST(LevelsView, PlotEdgesLieOnThePixelsOfEveryScreen)
{
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        LevelsView view;
        view.resize(300, 190);
        view.ensurePolished();
        const QImage image = painted(view, scale);
        // Down a column of the plot's ground there are two colours, with nothing between them.
        std::set<QRgb> colors;
        const int x = int(200 * scale);
        for (int y = int(10 * scale); y < int(103 * scale); ++y)
            colors.insert(image.pixel(x, y));
        EXPECT_EQ(colors.size(), 2U) << scale;
    }
}

} // namespace
} // namespace orvane
