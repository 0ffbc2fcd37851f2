#include "Commands.h"
#include "WindowTesting.h"

#include <QAccessible>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>

#include <map>
#include <set>

namespace orvane {
namespace {

TEST_F(WindowTest, EveryCommandStandsInOneMenuAndNoKeyStandsTwice)
{
    std::map<QString, int> places;
    std::set<QString> letters; // that open a menu, with Alt
    for (const QAction* top : app->window.menuBar()->actions()) {
        const QString letter = QKeySequence::mnemonic(top->text()).toString();
        EXPECT_TRUE(!letter.isEmpty() && letters.insert(letter).second) << letter.toStdString();
        for (const QAction* action : top->menu()->actions()) {
            if (!action->isSeparator())
                ++places[action->objectName()];
        }
    }
    std::set<QString> keys;
    for (const Command& command : commandTable()) {
        EXPECT_EQ(places[command.id], 1) << command.id;
        for (const char* key : command.keys) {
            EXPECT_FALSE(QKeySequence(key).isEmpty()) << key;
            EXPECT_TRUE(keys.insert(QKeySequence(key).toString()).second) << key;
        }
    }
    EXPECT_EQ(places.size(), commandTable().size());
    EXPECT_EQ(keysOf("makeItPop"), QStringList({"Ctrl+M", "Ctrl+Shift+M"}));
}

TEST_F(WindowTest, CommandsFollowTheModel)
{
    action("save");
    QCoreApplication::processEvents();
    for (const char* id : {"save", "export", "share", "removeLocation", "closeImage", "reveal",
                           "undo", "redo", "compare", "revert", "crop", "heal", "actualSize"})
        EXPECT_FALSE(action(id).isEnabled()) << id;
    openFiles({"a.jpg"});
    EXPECT_FALSE(action("save").isEnabled());
    EXPECT_FALSE(action("revert").isEnabled());
    model().setAdjust("exposure", 40);
    model().commitHistory();
    QCoreApplication::processEvents();
    for (const char* id : {"save", "undo", "revert", "reveal", "export"})
        EXPECT_TRUE(action(id).isEnabled()) << id;
    EXPECT_EQ(action("save").text().toStdString(), model().saveTitle());

    struct Switch {
        const char* id;
        const char* off;
        const char* on;
    };
    for (const Switch& each : {Switch{"crop", "Crop", "Finish Cropping"},
                               Switch{"whiteBalance", "White Balance", "Cancel White Balance"},
                               Switch{"heal", "Heal Blemishes", "Finish Healing"},
                               Switch{"relight", "Relight", "Finish Relighting"},
                               Switch{"compare", "Show Original", "Show Edited"},
                               Switch{"inspector", "Show Inspector", "Hide Inspector"}}) {
        if (std::string_view(each.id) == "inspector")
            trigger(each.id);
        EXPECT_EQ(action(each.id).text(), each.off);
        trigger(each.id);
        EXPECT_EQ(action(each.id).text(), each.on);
        if (std::string_view(each.id) != "inspector")
            trigger(each.id);
        EXPECT_EQ(action(each.id).text() == each.on, std::string_view(each.id) == "inspector");
    }
}

TEST_F(WindowTest, AToolThatIsOpenEndsWithItsStepWhenAnotherBegins)
{
    openFiles({"a.jpg"});
    const size_t steps = model().historySteps().size();
    trigger("crop");
    model().setCropNative({0.1, 0.1, 0.5, 0.5});
    trigger("relight");
    EXPECT_FALSE(model().cropMode);
    EXPECT_EQ(model().historySteps().size(), steps + 2); // the crop, and the first light
    trigger("heal");
    EXPECT_FALSE(model().relightMode);
    trigger("whiteBalance");
    EXPECT_FALSE(model().healing);
    EXPECT_TRUE(model().pickingWhite);
}

TEST_F(WindowTest, KeysReachCommands)
{
    openFiles({"a.jpg"});
    QTest::keyClick(&app->window, Qt::Key_B);
    EXPECT_TRUE(model().comparing);
    QTest::keyClick(&app->window, Qt::Key_Backslash);
    EXPECT_FALSE(model().comparing);
    QTest::keyClick(&app->window, Qt::Key_Plus, Qt::ControlModifier);
    QTest::keyClick(&app->window, Qt::Key_Equal, Qt::ControlModifier);
    EXPECT_NEAR(model().zoom, 1.5625, 1e-9);
    QTest::keyClick(&app->window, Qt::Key_0, Qt::ControlModifier);
    EXPECT_EQ(model().zoom, 1);
}

/// Of a group, Tab reaches one, and the arrow keys the others.
bool isReachedByArrows(const QWidget& widget, const std::set<QWidget*>& reached)
{
    const QWidget* group = widget.parentWidget();
    if (!group->inherits("orvane::SegmentedPicker") && !group->inherits("orvane::LookGrid")
        && !group->inherits("orvane::BandPicker"))
        return false;
    return std::any_of(reached.begin(), reached.end(),
                       [&](const QWidget* other) { return other->parentWidget() == group; });
}

TEST_F(WindowTest, EveryControlIsReachedByTabAndHasAName)
{
    openFiles({"a.jpg", "b.jpg"});
    std::set<QWidget*> reached;
    QWidget* start = &canvas();
    start->setFocus();
    QWidget* at = start;
    do {
        reached.insert(at);
        QTest::keyClick(at, Qt::Key_Tab);
        at = QApplication::focusWidget();
        ASSERT_NE(at, nullptr);
    } while (!reached.contains(at) && reached.size() < 2000);
    for (QWidget* widget : app->window.findChildren<QWidget*>()) {
        const bool takesTab = widget->focusPolicy() & Qt::TabFocus;
        const bool isControl = qobject_cast<QAbstractButton*>(widget)
            || qobject_cast<QAbstractSlider*>(widget) || takesTab;
        if (!isControl || !widget->isVisible() || !widget->isEnabled() || widget->focusProxy()
            || qobject_cast<QScrollBar*>(widget))
            continue;
        const QString name = QAccessible::queryAccessibleInterface(widget)->text(QAccessible::Name);
        const std::string what = std::string(widget->metaObject()->className()) + " in "
            + widget->parentWidget()->metaObject()->className() + " \"" + name.toStdString() + "\"";
        EXPECT_FALSE(name.isEmpty()) << what;
        const bool isReached = reached.contains(widget) || isReachedByArrows(*widget, reached);
        EXPECT_TRUE(isReached) << what;
    }
}

} // namespace
} // namespace orvane
