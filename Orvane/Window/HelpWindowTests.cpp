#include "HelpWindow.h"

#include "ModelTesting.h"
#include "SettingsWindow.h"
#include "WidgetTesting.h"

#include <QScrollBar>
#include <QTextBrowser>

#include <gtest/gtest.h>

namespace orvane {
namespace {

TEST(HelpWindow, ShowsKeysAsTheTableHasThemAndIsReadByKeys)
{
    const std::map<std::string, QStringList> table = {
        {"save", {"Ctrl+S"}},     {"export", {"Ctrl+E"}},
        {"compare", {"\\", "B"}}, {"zoomIn", {"Ctrl++", "Ctrl+="}},
        {"zoomOut", {"Ctrl+-"}},  {"crop", {"Ctrl+Shift+C"}}};
    QStringList asked;
    HelpWindow help([&](const char* id) {
        asked += id;
        const auto found = table.find(id);
        return found == table.end() ? QStringList{"F5"} : found->second;
    });
    EXPECT_EQ(QSet<QString>(asked.begin(), asked.end()).size(), 22);
    auto* const text = help.findChild<QTextBrowser*>();
    const QString shown = text->toPlainText().replace(QChar::Nbsp, ' ').simplified();
    for (const char* part :
         {"Save Edits (Ctrl+S) keeps your changes", "Export (Ctrl+E) writes a new, finished file",
          "Ctrl++ / Ctrl+- Zoom in / out", "\\ B Show the original — again to come back",
          "Ctrl+Shift+C Crop"})
        EXPECT_TRUE(shown.contains(part)) << part;
    EXPECT_FALSE(shown.contains('*'));
    EXPECT_FALSE(shown.contains('{'));

    help.show();
    waitFor([&] { return help.isActiveWindow(); });
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown);
    EXPECT_GT(text->verticalScrollBar()->value(), 0);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    EXPECT_FALSE(help.isVisible());
}

using SettingsWindowTest = ModelTest;

TEST_F(SettingsWindowTest, OpensItsAddressesByKey)
{
    SettingsWindow settings(*model, desktop);
    settings.show();
    const QStringList names = namesOnTheWayOfTab(settings);
    EXPECT_EQ(names,
              (QStringList{QString::fromStdString("Orvane " + AppModel::version), "Send feedback",
                           "Website"}));
    for (const QString& name : names) {
        QAbstractButton* const link = buttonNamed(settings, name);
        link->setFocus();
        QTest::keyClick(link, Qt::Key_Space);
    }
    const std::string website(AppModel::websiteURL);
    EXPECT_EQ(desktop.addresses,
              (std::vector<std::string>{website, std::string(AppModel::feedbackURL), website}));
}

} // namespace
} // namespace orvane
