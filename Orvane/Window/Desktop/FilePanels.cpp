#include "FilePanels.h"

#include "AlertDialog.h"
#include "FileDialog.h"
#include "FileIcons.h"
#include "PathText.h"

#include <QCoreApplication>
#include <QDir>
#include <QLineEdit>
#include <QPointer>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>

#include <algorithm>
#include <array>

namespace orvane {

namespace {

namespace fs = std::filesystem;

/// Where each kind of panel ended last.
constexpr const char* folderKeys[] = {"kq4.panel.pictures", "kq4.panel.files", "kq4.panel.folder"};
constexpr const char* targetKey = "kq4.panel.target";

constexpr const char* pictureExtensions[] = {"jpg",  "jpeg", "png",  "tif", "tiff",
                                             "heic", "heif", "avif", "webp"};

/// Extensions of one format.
constexpr std::array<std::array<const char*, 2>, 3> spellings = {
    {{"jpg", "jpeg"}, {"tif", "tiff"}, {"heic", "heif"}}};

QString translated(const char* text)
{
    return QCoreApplication::translate("FilePanels", text);
}

/// As the text of a control, where "&" would mark a key.
QString literal(const std::string& text)
{
    return QString::fromStdString(text).replace('&', "&&");
}

bool isSameFormat(const QString& a, const QString& b)
{
    const auto names = [](const auto& pair, const QString& extension) {
        return extension == pair[0] || extension == pair[1];
    };
    return a == b || std::any_of(spellings.begin(), spellings.end(), [&](const auto& pair) {
               return names(pair, a) && names(pair, b);
           });
}

/// "*.jpg *.JPG": cameras write both, and the dialog may compare letter by letter.
QString patterns(const QStringList& extensions)
{
    QStringList found;
    for (const QString& extension : extensions)
        found << "*." + extension.toLower() << "*." + extension.toUpper();
    return found.join(' ');
}

QStringList nameFilters(const OpenPanel& panel)
{
    QStringList extensions;
    for (const std::string& extension : panel.extensions)
        extensions << QString::fromStdString(extension);
    const bool arePictures = panel.choosing == OpenPanel::Choosing::Pictures;
    for (const char* extension : pictureExtensions) {
        if (arePictures)
            extensions << extension;
    }
    const QString kind = arePictures ? translated("Pictures")
                                     : translated("%1 files").arg("." + extensions.join(", ."));
    return {kind + " (" + patterns(extensions) + ")", translated("All files") + " (*)"};
}

/// The folder under the key, as long as it is there; else where pictures lie.
QString startFolder(const QSettings& defaults, const char* key)
{
    const QString last = QFile::decodeName(defaults.value(key).toByteArray());
    if (!last.isEmpty() && QDir(last).exists())
        return last;
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QDir(pictures).exists() ? pictures : QDir::homePath();
}

/// Whether the file may be written: it is new, or may be replaced.
bool mayWrite(const fs::path& target, QWidget* over)
{
    std::error_code none;
    const std::string name = textFromPath(target.filename()).toStdString();
    if (fs::is_directory(target, none)) {
        AlertDialog::ask(
            {.message =
                 translated("“%1” is a folder").arg(QString::fromStdString(name)).toStdString(),
             .informative = translated("Choose another name.").toStdString()},
            over);
        return false;
    }
    if (!fs::exists(target, none))
        return true;
    const Alert question{
        .message = translated("Replace “%1”?").arg(QString::fromStdString(name)).toStdString(),
        .informative =
            translated("A file of this name is there already. What it holds will be lost.")
                .toStdString(),
        .buttons = {translated("Replace").toStdString(), translated("Cancel").toStdString()},
        .isFirstDestructive = true};
    return AlertDialog::ask(question, over) == 0;
}

void selectStem(FileDialog& dialog, const QString& name)
{
    auto* const field = dialog.findChild<QLineEdit*>("fileNameEdit");
    if (!field)
        return;
    // Once it is shown; the dialog selects the whole name itself.
    QTimer::singleShot(0, field, [field, name] {
        if (field->text() == name)
            field->setSelection(0, int(name.lastIndexOf('.')));
    });
}

} // namespace

fs::path withExtension(fs::path path, const std::string& extension)
{
    const QString has = textFromPath(path.extension()).mid(1).toLower();
    if (isSameFormat(has, QString::fromStdString(extension).toLower()))
        return path;
    std::string whole = path.string();
    while (whole.ends_with('.'))
        whole.pop_back();
    return whole + "." + extension;
}

FilePanels::FilePanels(QSettings& defaults)
    : m_defaults(defaults)
{
}

FilePanels::~FilePanels() = default;

/// On the heap: the window that goes takes its dialogs along.
FileDialog* FilePanels::makeDialog(QWidget* over, const QString& title, const QString& message,
                                   const char* folderKey)
{
    if (!m_icons)
        m_icons = std::make_unique<FileIcons>();
    auto* dialog = new FileDialog(over, title, message, *m_icons);
    dialog->setDirectory(startFolder(m_defaults, folderKey));
    return dialog;
}

std::vector<fs::path> FilePanels::choose(const OpenPanel& panel, QWidget* over)
{
    const char* const key = folderKeys[size_t(panel.choosing)];
    const QPointer<FileDialog> dialog = makeDialog(over, QString::fromStdString(panel.prompt),
                                                   QString::fromStdString(panel.message), key);
    if (panel.choosing == OpenPanel::Choosing::Folder) {
        dialog->setFileMode(QFileDialog::Directory);
        dialog->setOption(QFileDialog::ShowDirsOnly);
        dialog->hideKinds();
    } else {
        dialog->setFileMode(panel.allowsSeveral ? QFileDialog::ExistingFiles
                                                : QFileDialog::ExistingFile);
        dialog->setNameFilters(nameFilters(panel));
    }
    dialog->setOption(QFileDialog::ReadOnly, !panel.canCreateFolders);
    if (!panel.prompt.empty())
        dialog->setLabelText(QFileDialog::Accept, literal(panel.prompt));
    std::vector<fs::path> chosen;
    if (dialog->exec() == QDialog::Accepted && dialog) {
        for (const QString& file : dialog->selectedFiles())
            chosen.push_back(pathFromText(file));
        m_defaults.setValue(key, QFile::encodeName(dialog->directory().path()));
    }
    delete dialog;
    return chosen;
}

std::optional<fs::path> FilePanels::chooseTarget(const SavePanel& panel, QWidget* over)
{
    const QPointer<FileDialog> dialog = makeDialog(over, translated("Export Image"), {}, targetKey);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    const QString extension = QString::fromStdString(panel.extension);
    dialog->setNameFilters(
        {translated("%1 files").arg("." + extension) + " (" + patterns({extension}) + ")",
         translated("All files") + " (*)"});
    dialog->setLabelText(QFileDialog::Accept, translated("Export"));
    const QString name =
        textFromPath(withExtension(fs::path(panel.suggestedName).filename(), panel.extension));
    dialog->selectFile(name);
    selectStem(*dialog, name);
    std::optional<fs::path> target;
    dialog->mayAccept = [&] {
        const QStringList typed = dialog->selectedFiles();
        if (typed.isEmpty())
            return false;
        target = withExtension(pathFromText(typed.constFirst()), panel.extension);
        return mayWrite(*target, dialog);
    };
    if (dialog->exec() != QDialog::Accepted || !dialog)
        target.reset();
    else
        m_defaults.setValue(targetKey, QFile::encodeName(dialog->directory().path()));
    delete dialog;
    return target;
}

} // namespace orvane
