#include "DroppedItems.h"

#include "FileAddress.h"

#include <QMimeData>

namespace orvane {

// The bytes of the list, not QUrl's reading of them: names that are not UTF-8 arrive as they are.
std::vector<std::filesystem::path> draggedFiles(const QMimeData& data)
{
    std::vector<std::filesystem::path> files;
    const QString list = QString::fromLatin1(data.data("text/uri-list"));
    for (const QString& line : list.split('\n')) {
        if (std::filesystem::path path = pathOfFileAddress(line); !path.empty())
            files.push_back(std::move(path));
    }
    return files;
}

std::vector<std::string> draggedPhotos(const QMimeData& data)
{
    std::vector<std::string> identifiers;
    for (const QByteArray& line : data.data(photosMimeType).split('\n')) {
        if (!line.trimmed().isEmpty())
            identifiers.push_back(line.trimmed().toStdString());
    }
    return identifiers;
}

} // namespace orvane
