#pragma once

#include "EditImage.h"

#include <QAbstractListModel>

namespace orvane {

/// What the filmstrip shows of one image.
struct FilmstripCell {
    std::string id;
    QString name;
    Thumbnail thumb; ///< may be null
    bool isActive = false;
    bool isUnsaved = false;

    bool operator==(const FilmstripCell&) const = default;
};

/// The cells as a list. Setting them anew moves only what is different, so that a view keeps its
/// place.
class FilmstripModel final : public QAbstractListModel {
    Q_OBJECT

public:
    explicit FilmstripModel(QObject* parent = nullptr);

    void setCells(std::vector<FilmstripCell> cells);
    const FilmstripCell& cell(int row) const { return m_cells[size_t(row)]; }
    /// -1 without an active one.
    int activeRow() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void replaceRange(int first, int oldEnd, std::vector<FilmstripCell> fresh);

    std::vector<FilmstripCell> m_cells;
};

} // namespace orvane
