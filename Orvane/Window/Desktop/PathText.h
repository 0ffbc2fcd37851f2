#pragma once

#include <QFile>
#include <QString>

#include <filesystem>

namespace orvane {

/// A path as text to show or to hand to a dialog, and back.
inline QString textFromPath(const std::filesystem::path& path)
{
    return QFile::decodeName(QByteArray::fromStdString(path.string()));
}
inline std::filesystem::path pathFromText(const QString& text)
{
    return QFile::encodeName(text).toStdString();
}

} // namespace orvane
