#pragma once

#include <QAbstractListModel>
#include <QFont>

namespace orvane {

/// The font families that a text can have, as AppModel::textFonts() lists them. Qt::UserRole is the
/// family, empty for the system's.
class FontNames final : public QAbstractListModel {
    Q_OBJECT

public:
    using QAbstractListModel::QAbstractListModel;
    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

    /// Of a family in the list; the first row, the system's font, for any other.
    static int rowOf(const QString& family);
    static QString family(int row);
    static QString name(int row);
};

/// What the name of a family is written in: the family itself, if it has Latin letters, so that the
/// name of a font of signs can be read as well. `pixelSize` as QFont has it.
QFont fontOfFamily(const QString& family, int pixelSize);

} // namespace orvane
