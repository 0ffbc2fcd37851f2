#pragma once

#include <QStyledItemDelegate>

namespace orvane {

class FilmstripModel;

/// Paints the cells of the filmstrip in device pixels. A cell is as wide as its picture asks for at
/// the given height, within limits beyond which the picture's sides are cut off.
class FilmstripDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int cellHeight = 56; ///< of the picture
    static constexpr int rowHeight = 70; ///< with the room above and below

    FilmstripDelegate(const FilmstripModel& model, QObject* parent);

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    const FilmstripModel& m_model;
};

} // namespace orvane
