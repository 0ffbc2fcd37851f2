#include "FilmstripModel.h"

#include <algorithm>

namespace orvane {

FilmstripModel::FilmstripModel(QObject* parent)
    : QAbstractListModel(parent)
{
}

int FilmstripModel::activeRow() const
{
    const auto found = std::find_if(m_cells.begin(), m_cells.end(),
                                    [](const FilmstripCell& cell) { return cell.isActive; });
    return found == m_cells.end() ? -1 : int(found - m_cells.begin());
}

int FilmstripModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_cells.size());
}

QVariant FilmstripModel::data(const QModelIndex& index, int role) const
{
    const FilmstripCell& shown = cell(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return shown.name;
    case Qt::AccessibleTextRole:
        return shown.isUnsaved ? tr("%1, edits not saved").arg(shown.name) : shown.name;
    case Qt::AccessibleDescriptionRole:
        return shown.isActive ? tr("On the canvas") : QString();
    default:
        return {};
    }
}

// Images come and go in one place at a time: what is before and after it stays.
void FilmstripModel::setCells(std::vector<FilmstripCell> cells)
{
    const auto sameImage = [](const FilmstripCell& a, const FilmstripCell& b) {
        return a.id == b.id;
    };
    const auto differ =
        std::mismatch(m_cells.begin(), m_cells.end(), cells.begin(), cells.end(), sameImage);
    const auto first = int(differ.first - m_cells.begin());
    const auto tail =
        std::mismatch(m_cells.rbegin(), std::make_reverse_iterator(differ.first), cells.rbegin(),
                      std::make_reverse_iterator(differ.second), sameImage);
    const auto kept = int(tail.first - m_cells.rbegin());
    const auto freshEnd = cells.end() - kept;
    replaceRange(first, int(m_cells.size()) - kept, {differ.second, freshEnd});

    for (int row = 0; row < int(cells.size()); ++row) {
        if (m_cells[size_t(row)] == cells[size_t(row)])
            continue;
        m_cells[size_t(row)] = std::move(cells[size_t(row)]);
        Q_EMIT dataChanged(index(row), index(row));
    }
}

void FilmstripModel::replaceRange(int first, int oldEnd, std::vector<FilmstripCell> fresh)
{
    if (oldEnd > first) {
        beginRemoveRows({}, first, oldEnd - 1);
        m_cells.erase(m_cells.begin() + first, m_cells.begin() + oldEnd);
        endRemoveRows();
    }
    if (!fresh.empty()) {
        beginInsertRows({}, first, first + int(fresh.size()) - 1);
        m_cells.insert(m_cells.begin() + first, fresh.begin(), fresh.end());
        endInsertRows();
    }
}

} // namespace orvane
