#pragma once

#include <QString>
#include <QUrl>

#include <filesystem>

namespace orvane {

/// "file:///..." for a path, absolute or not. Every byte that is no plain letter is written as "%"
/// and two digits, so names that are not UTF-8 arrive as they are.
inline QString fileAddress(const std::filesystem::path& path)
{
    std::error_code none;
    const std::filesystem::path whole = std::filesystem::absolute(path, none);
    const QByteArray bytes = QByteArray::fromStdString(whole.string());
    return "file://" + QString::fromLatin1(bytes.toPercentEncoding("/"));
}

/// The path of such an address, byte for byte; empty for one that names no file of this machine.
inline std::filesystem::path pathOfFileAddress(const QString& address)
{
    const QByteArray bytes = address.trimmed().toUtf8();
    for (const char* start : {"file://localhost/", "file:///"}) {
        if (bytes.startsWith(start))
            return QByteArray::fromPercentEncoding(bytes.mid(qsizetype(qstrlen(start)) - 1))
                .toStdString();
    }
    return {};
}

} // namespace orvane
