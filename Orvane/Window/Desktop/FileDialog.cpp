#include "FileDialog.h"

#include "FileIcons.h"
#include "Icon.h"
#include "Theme.h"

#include <QAction>
#include <QDir>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QShortcut>
#include <QSplitter>
#include <QStandardPaths>
#include <QToolButton>
#include <QTreeView>

#include <algorithm>

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

constexpr int sideWidth = 170;
constexpr int columnWidths[] = {0, 90, 110, 170}; ///< name (what is left), size, kind, date

QString looks()
{
    return QString("QHeaderView { background: %1; }"
                   "QHeaderView::section { background: %1; border: 0; padding: 4px 6px; }"
                   "QTreeView::item { height: 24px; }"
                   "QListView#sidebar::item { height: 26px; }"
                   "QSplitter::handle { image: none; }")
        .arg(Theme::section.name());
}

} // namespace

FileDialog::FileDialog(QWidget* over, const QString& title, const QString& message,
                       FileIcons& icons)
    : QFileDialog(over, title)
{
    setOption(DontUseNativeDialog);
    // It would ask for the name as typed, which may not be the one that is taken.
    setOption(DontConfirmOverwrite);
    setOption(HideNameFilterDetails);
    setIconProvider(&icons);
    setSidebarUrls(places());
    setViewMode(Detail);
    resize(860, 540);
    dress();
    if (!message.isEmpty())
        addMessage(message);
    forbidChanges();
}

/// The dialog's parts by the names that the toolkit gives them; one that is missing in another
/// version only keeps its own looks.
void FileDialog::dress()
{
    setStyleSheet(looks());
    const std::pair<const char*, std::string_view> icons[] = {
        {"backButton", "arrow-left"},      {"forwardButton", "arrow-right"},
        {"toParentButton", "arrow-up"},    {"newFolderButton", "folder-plus"},
        {"listModeButton", "layout-grid"}, {"detailModeButton", "list"},
    };
    for (const auto& [name, picture] : icons) {
        if (auto* button = findChild<QToolButton*>(name))
            button->setIcon(icon(picture));
    }
    if (auto* splitter = findChild<QSplitter*>("splitter"))
        splitter->setSizes({sideWidth, width() - sideWidth});
    if (auto* side = findChild<QListView*>("sidebar"))
        side->setIconSize(QSize(16, 16));
    if (auto* table = findChild<QTreeView*>("treeView")) {
        QHeaderView* const header = table->header();
        header->setStretchLastSection(false);
        header->setSectionResizeMode(0, QHeaderView::Stretch);
        for (int column = 1; column < header->count(); ++column)
            header->resizeSection(column, columnWidths[std::min(column, 3)]);
    }
}

/// In a row above all others. A grid takes no new row between others, so these move down.
void FileDialog::addMessage(const QString& message)
{
    auto* const grid = qobject_cast<QGridLayout*>(layout());
    if (!grid)
        return;
    struct Part {
        QLayoutItem* item;
        int row, column, rows, columns;
    };
    QList<Part> parts;
    while (grid->count() > 0) {
        Part part{};
        grid->getItemPosition(0, &part.row, &part.column, &part.rows, &part.columns);
        part.item = grid->takeAt(0);
        parts << part;
    }
    auto* label = new QLabel(message);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setContentsMargins(2, 4, 2, 8);
    grid->addWidget(label, 0, 0, 1, grid->columnCount());
    for (const Part& part : parts)
        grid->addItem(part.item, part.row + 1, part.column, part.rows, part.columns);
}

void FileDialog::hideKinds()
{
    for (const char* name : {"fileTypeLabel", "fileTypeCombo"}) {
        if (auto* part = findChild<QWidget*>(name))
            part->hide();
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
