#include "FontNames.h"

#include "AppModel.h"

#include <QApplication>
#include <QFontDatabase>
#include <QHash>

#include <algorithm>

namespace orvane {

int FontNames::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(AppModel::textFonts().size());
}

QVariant FontNames::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    if (role == Qt::DisplayRole)
        return name(index.row());
    return role == Qt::UserRole ? QVariant(family(index.row())) : QVariant();
}

int FontNames::rowOf(const QString& family)
{
    const auto& fonts = AppModel::textFonts();
    const std::string id = family.toStdString();
    const auto found = std::find_if(fonts.begin(), fonts.end(),
                                    [&](const LookItem& font) { return font.id == id; });
    return found == fonts.end() ? 0 : int(found - fonts.begin());
}

QString FontNames::family(int row)
{
    return QString::fromStdString(AppModel::textFonts()[size_t(row)].id);
}

QString FontNames::name(int row)
{
    return QString::fromStdString(AppModel::textFonts()[size_t(row)].name);
}

QFont fontOfFamily(const QString& family, int pixelSize)
{
    // Asking the data base takes longer than drawing the name does.
    static QHash<QString, bool> isLatin;
    QFont font = QApplication::font();
    font.setPixelSize(pixelSize);
    if (family.isEmpty())
        return font;
    auto known = isLatin.find(family);
    if (known == isLatin.end()) {
        const auto systems = QFontDatabase::writingSystems(family);
        known = isLatin.insert(family,
                               systems.contains(QFontDatabase::Latin)
                                   && !systems.contains(QFontDatabase::Symbol));
    }
    if (*known)
        font.setFamilies({family});
    return font;
}

} // namespace orvane
