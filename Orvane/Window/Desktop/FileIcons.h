#pragma once

#include "Icon.h"

#include <QAbstractFileIconProvider>
#include <QDir>
#include <QIcon>

namespace orvane {

/// Our icons for the file dialog. It asks from the thread that reads folders, so they are made
/// beforehand.
class FileIcons final : public QAbstractFileIconProvider {
public:
    QIcon icon(IconType type) const override
    {
        switch (type) {
        case Folder:
            return m_folder;
        case Computer:
        case Drive:
        case Network:
            return m_disk;
        default:
            return m_file;
        }
    }
    QIcon icon(const QFileInfo& info) const override
    {
        if (info.isRoot())
            return m_disk;
        if (info.isDir())
            return info.absoluteFilePath() == m_home ? m_house : m_folder;
        return m_file;
    }

private:
    const QIcon m_folder = orvane::icon("folder");
    const QIcon m_disk = orvane::icon("hard-drive");
    const QIcon m_house = orvane::icon("house");
    const QIcon m_file = orvane::icon("image");
    const QString m_home = QDir::homePath();
};

} // namespace orvane
