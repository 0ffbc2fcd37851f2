#include "FileDialog.h"

#include "FileIcons.h"
#include "Icon.h"

#include <QAction>
#include <QDir>
#include <QShortcut>
#include <QStandardPaths>
#include <QToolButton>

namespace orvane {

namespace {

/// The places at the dialog's side. Cards and disks are listed by name alone: asking a disk that
/// does not answer would hold the dialog up.
QList<QUrl> places()
{
    QList<QUrl> found;
    const auto add = [&](const QString& folder) {
        const QUrl place = QUrl::fromLocalFile(folder);
        if (!folder.isEmpty() && !found.contains(place))
            found.append(place);
    };
    for (const auto place : {QStandardPaths::PicturesLocation, QStandardPaths::DownloadLocation,
                             QStandardPaths::DesktopLocation, QStandardPaths::HomeLocation}) {
        if (const QString folder = QStandardPaths::writableLocation(place); QDir(folder).exists())
            add(folder);
    }
    const QString user = qEnvironmentVariable("USER");
    for (const QString& parent : {"/run/media/" + user, "/media/" + user}) {
        for (const QString& name : QDir(parent).entryList(QDir::Dirs | QDir::NoDotAndDotDot))
            add(parent + "/" + name);
    }
    add("/");
    return found;
}

} // namespace

FileDialog::FileDialog(QWidget* over, const QString& title, FileIcons& icons)
    : QFileDialog(over, title)
{
    setOption(DontUseNativeDialog);
    // It would ask for the name as typed, which may not be the one that is taken.
    setOption(DontConfirmOverwrite);
    setOption(HideNameFilterDetails);
    setIconProvider(&icons);
    setSidebarUrls(places());
    setViewMode(Detail);
    dress();
    forbidChanges();
    resize(860, 540);
}

void FileDialog::dress()
{
    const std::pair<const char*, std::string_view> icons[] = {
        {"backButton", "arrow-left"},      {"forwardButton", "arrow-right"},
        {"toParentButton", "arrow-up"},    {"newFolderButton", "folder-plus"},
        {"listModeButton", "layout-grid"}, {"detailModeButton", "list"},
    };
    for (const auto& [name, picture] : icons) {
        if (auto* button = findChild<QToolButton*>(name))
            button->setIcon(icon(picture));
    }
}

/// Originals are chosen here: a key pressed by mistake must not take one away.
void FileDialog::forbidChanges()
{
    for (const char* name : {"qt_rename_action", "qt_delete_action"}) {
        if (auto* action = findChild<QAction*>(name))
            action->setVisible(false);
    }
    for (QShortcut* shortcut : findChildren<QShortcut*>()) {
        if (shortcut->key() == QKeySequence(QKeySequence::Delete))
            shortcut->setEnabled(false);
    }
}

void FileDialog::done(int result)
{
    if (result != Accepted || !mayAccept || mayAccept())
        QFileDialog::done(result);
}

} // namespace orvane
