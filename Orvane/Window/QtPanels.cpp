#include "QtPanels.h"

#include "PathText.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>

namespace orvane {

namespace {

QString translated(const char* text)
{
    return QCoreApplication::translate("QtPanels", text);
}

/// Every name in lower and upper case: cameras write both, and the dialog compares letter by
/// letter.
QString pictureFilter()
{
    QStringList patterns;
    for (const char* extension :
         {"jpg", "jpeg", "png", "tif", "tiff", "heic", "heif", "avif", "webp", "dng",
          "nef", "orf",  "cr2", "cr3", "arw",  "raf",  "rw2",  "srw",  "pef",  "raw"}) {
        const QString pattern = QString("*.") + extension;
        patterns << pattern << pattern.toUpper();
    }
    return translated("Pictures (%1)").arg(patterns.join(' ')) + ";;" + translated("All files (*)");
}

} // namespace

std::filesystem::path withExtension(std::filesystem::path path, const ExportFormatInfo& format)
{
    if (exportFormatOfExtension(path.extension().string()) != format.format)
        path += "." + std::string(format.ext);
    return path;
}

std::vector<std::filesystem::path> QtPanels::picturesToOpen()
{
    QFileDialog dialog(m_window, translated("Choose an image to edit."), m_openFolder,
                       pictureFilter());
    dialog.setFileMode(QFileDialog::ExistingFile);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    m_openFolder = dialog.directory().path();
    std::vector<std::filesystem::path> paths;
    for (const QString& file : dialog.selectedFiles())
        paths.push_back(pathFromText(file));
    return paths;
}

std::optional<std::filesystem::path> QtPanels::exportTarget(const std::filesystem::path& suggestion,
                                                            const ExportFormatInfo& format)
{
    const QString extension = QString::fromUtf8(format.ext.data(), qsizetype(format.ext.size()));
    const QString name = QString::fromUtf8(format.name.data(), qsizetype(format.name.size()));
    const std::filesystem::path start = std::filesystem::absolute(suggestion);
    QFileDialog dialog(m_window, translated("Export Image"), textFromPath(start.parent_path()),
                       name + " (*." + extension + ")");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    // The dialog would ask for the name as typed, which may not be the one that is written.
    dialog.setOption(QFileDialog::DontConfirmOverwrite);
    dialog.selectFile(textFromPath(start.filename()));
    while (dialog.exec() == QDialog::Accepted && !dialog.selectedFiles().isEmpty()) {
        const auto target =
            withExtension(pathFromText(dialog.selectedFiles().constFirst()), format);
        std::error_code none;
        if (!std::filesystem::exists(target, none)
            || confirm(translated("Replace “%1”?").arg(textFromPath(target.filename())),
                       translated("A file of this name is there already."), translated("Replace")))
            return target;
    }
    return {};
}

void QtPanels::alert(const QString& message, const QString& informative)
{
    QMessageBox box(QMessageBox::NoIcon, QString(), message, QMessageBox::Ok, m_window);
    box.setInformativeText(informative);
    box.exec();
}

bool QtPanels::confirm(const QString& message, const QString& informative, const QString& action)
{
    QMessageBox box(QMessageBox::NoIcon, QString(), message, QMessageBox::Cancel, m_window);
    box.setInformativeText(informative);
    const auto* agree = box.addButton(action, QMessageBox::AcceptRole);
    box.setDefaultButton(QMessageBox::Cancel);
    box.exec();
    return box.clickedButton() == agree;
}

} // namespace orvane
