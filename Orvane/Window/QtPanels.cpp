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

std::optional<std::filesystem::path> QtPanels::exportTarget(const std::string& suggestedName,
                                                            const ExportFormatInfo& format)
{
    const QString extension = QString::fromUtf8(format.ext.data(), qsizetype(format.ext.size()));
    const QString name = QString::fromUtf8(format.name.data(), qsizetype(format.name.size()));
    QFileDialog dialog(m_window, translated("Export Image"), m_exportFolder,
                       name + " (*." + extension + ")");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setDefaultSuffix(extension);
    dialog.selectFile(textFromPath(suggestedName));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    m_exportFolder = dialog.directory().path();
    return pathFromText(dialog.selectedFiles().constFirst());
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
    box.exec();
    return box.clickedButton() == agree;
}

} // namespace orvane
