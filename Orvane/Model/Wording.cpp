#include "Wording.h"

#include <QString>
#include <QTextBoundaryFinder>
#include <QUuid>

namespace orvane {

std::string inQuotes(std::string_view name)
{
    return "“" + std::string(name) + "”";
}

std::string trimmed(const std::string& text)
{
    return QString::fromStdString(text).trimmed().toStdString();
}

bool isSameName(const std::string& a, const std::string& b)
{
    return QString::fromStdString(a).compare(QString::fromStdString(b), Qt::CaseInsensitive) == 0;
}

std::string firstCharacters(const std::string& text, int count)
{
    const QString whole = QString::fromStdString(text);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, whole);
    for (int i = 0; i < count && finder.toNextBoundary() != -1; ++i) { }
    return finder.position() < 0 ? text : whole.left(finder.position()).toStdString();
}

std::string newID(std::string_view prefix)
{
    return std::string(prefix) + newUUID().substr(0, 8);
}

std::string newUUID()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toStdString();
}

} // namespace orvane
