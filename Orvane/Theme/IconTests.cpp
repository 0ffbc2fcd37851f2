#include "Icon.h"

#include <QApplication>
#include <QImage>
#include <QPalette>

#include <gtest/gtest.h>

namespace orvane {
namespace {

/// Pixels that are more than a trace.
int painted(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) > 64;
    }
    return count;
}

QImage drawn(const QIcon& icon, double scale, QIcon::Mode mode = QIcon::Normal)
{
    return icon.pixmap(QSize(16, 16), scale, mode).toImage().convertToFormat(QImage::Format_ARGB32);
}

TEST(Icons, EachIsDrawnInDevicePixelsAtEveryScale)
{
    for (const std::string_view name : iconNames()) {
        for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
            const QImage image = drawn(icon(name), scale);
            EXPECT_EQ(image.width(), int(16 * scale)) << name;
            EXPECT_GT(painted(image), 6 * scale) << name << " at " << scale;
        }
    }
}

TEST(Icons, TheDisabledOneIsDimmerAndAColouredOneKeepsItsColour)
{
    const auto lightest = [](const QImage& image) {
        int most = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (qAlpha(image.pixel(x, y)) == 255)
                    most = std::max(most, qGray(image.pixel(x, y)));
            }
        }
        return most;
    };
    EXPECT_LT(lightest(drawn(icon("plus"), 2, QIcon::Disabled)), lightest(drawn(icon("plus"), 2)));
    const QImage red = drawn(icon("circle", QColor(Qt::red), IconForm::Filled), 1);
    EXPECT_EQ(red.pixelColor(8, 8), QColor(Qt::red));
}

TEST(Icons, AFilledFormKeepsItsInnerMarksApart)
{
    const QImage image = drawn(icon("circle-x", QColor(Qt::white), IconForm::Filled), 2);
    EXPECT_LT(qGray(image.pixel(16, 16)), 0x60); // where the cross meets
    EXPECT_GT(qGray(image.pixel(16, 6)), 0xf0); // above it, within the circle
}

} // namespace
} // namespace orvane

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QPalette palette(Qt::darkGray);
    palette.setColor(QPalette::Active, QPalette::ButtonText, Qt::white);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, Qt::darkGray);
    QApplication::setPalette(palette);
    return RUN_ALL_TESTS();
}
