#pragma once

#include "Desktop.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

class QSettings;
class QString;
class QWidget;

namespace orvane {

class FileDialog;
class FileIcons;

/// "name" with the extension at its end, as it is or in another spelling of the same format ("JPG"
/// and "jpeg" for "jpg").
std::filesystem::path withExtension(std::filesystem::path path, const std::string& extension);

/// The panels that choose files and folders, modal over a window. Each kind starts in the folder
/// where it ended last, also in an earlier run.
class FilePanels {
public:
    explicit FilePanels(QSettings& defaults);
    ~FilePanels();

    std::vector<std::filesystem::path> choose(const OpenPanel& panel, QWidget* over);
    std::optional<std::filesystem::path> chooseTarget(const SavePanel& panel, QWidget* over);

private:
    FileDialog* makeDialog(QWidget* over, const QString& title, const QString& message,
                           const char* folderKey);

    QSettings& m_defaults;
    std::unique_ptr<FileIcons> m_icons; ///< made for the first dialog
};

} // namespace orvane
