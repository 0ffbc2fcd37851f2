#include "AlertDialog.h"
#include "DesktopTesting.h"
#include "QtDesktop.h"

#include <QClipboard>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace orvane {
namespace {

const Alert three{.message = "Save?", .buttons = {"Save", "Discard & go", "Cancel"}};

TEST(AlertDialog, AnswersToKeys)
{
    const Alert told{.message = "Told"};
    const struct {
        const Alert& alert;
        std::vector<Qt::Key> keys;
        size_t answer;
    } cases[] = {
        {three, {Qt::Key_Return}, 0},
        {three, {Qt::Key_Enter}, 0},
        {three, {Qt::Key_Space}, 0},
        {three, {Qt::Key_Escape}, 2},
        {three, {Qt::Key_Tab, Qt::Key_Return}, 1},
        {three, {Qt::Key_Tab, Qt::Key_Tab, Qt::Key_Space}, 2},
        {three, {Qt::Key_Tab, Qt::Key_Escape}, 2},
        {told, {Qt::Key_Return}, 0},
        {told, {Qt::Key_Escape}, 0},
    };
    QtDesktop desktop;
    for (const auto& c : cases) {
        whenOpen([&](QWidget*) {
            for (const Qt::Key key : c.keys)
                QTest::keyClick(QApplication::focusWidget(), key);
        });
        EXPECT_EQ(desktop.ask(c.alert), c.answer)
            << c.keys.size() << " keys, last " << c.keys.back();
    }
}

TEST(AlertDialog, AnswersToButtonsAndTheCloseBox)
{
    QtDesktop desktop;
    for (size_t i = 0; i < three.buttons.size(); ++i) {
        whenOpen([&](QWidget* dialog) {
            const auto text = QString::fromStdString(three.buttons[i]).replace('&', "&&");
            for (auto* button : dialog->findChildren<QPushButton*>()) {
                if (button->text() == text)
                    QTest::mouseClick(button, Qt::LeftButton);
            }
        });
        EXPECT_EQ(desktop.ask(three), i);
    }
    whenOpen([](QWidget* dialog) { dialog->close(); });
    EXPECT_EQ(desktop.ask(three), 2u);
}

TEST(AlertDialog, SurvivesItsWindow)
{
    auto window = std::make_unique<QMainWindow>();
    window->show();
    QtDesktop desktop;
    desktop.setWindow(window.get());
    whenOpen([&](QWidget*) { window.reset(); });
    EXPECT_EQ(desktop.ask(three), 2u);
    EXPECT_FALSE(desktop.hasWindow());
    whenOpen([](QWidget* dialog) { QTest::keyClick(dialog, Qt::Key_Return); });
    EXPECT_EQ(desktop.ask(three), 0u);
}

/// The default is the rightmost, texts break inside long words, and a long list scrolls: nothing
/// makes the dialog larger than a small screen.
TEST(AlertDialog, FitsWhateverItSays)
{
    std::string names;
    for (int i = 0; i < 500; ++i)
        names += "file.jpg, ";
    const AlertDialog dialog({.message = std::string(300, 'm'),
                              .informative = names + std::string(900, 'x'),
                              .buttons = three.buttons,
                              .style = Alert::Style::Warning},
                             nullptr);
    const_cast<AlertDialog&>(dialog).show();
    EXPECT_LE(dialog.width(), 520);
    EXPECT_LE(dialog.height(), 560);
    const auto buttons = dialog.findChildren<QPushButton*>();
    ASSERT_EQ(buttons.size(), 3);
    EXPECT_GT(buttons[0]->x(), buttons[1]->x());
    EXPECT_GT(buttons[1]->x(), buttons[2]->x());
    EXPECT_TRUE(buttons[0]->isDefault());
}

} // namespace
} // namespace orvane
