#pragma once

#include "FieldWatch.h"

#include <QListView>

namespace orvane {

class AppModel;
class FilmstripModel;

/// The open images side by side, the active one framed and in view. A click makes an image the
/// active one; arrow keys walk and Enter or Space chooses; the context menu takes an image out.
class Filmstrip final : public QListView {
    Q_OBJECT

public:
    explicit Filmstrip(AppModel& model, QWidget* parent = nullptr);

    static constexpr int height = 77;
    /// As wide as its cells.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {120, height}; }

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void refresh();
    void choose(const QModelIndex& index);
    void offerRemoval(const QModelIndex& index, const QPoint& globalPosition);

    AppModel& m_model;
    FilmstripModel* m_cells;
    std::string m_shownActive; ///< the active image that was last brought into view
    int m_shownCount = 0; ///< of images, at that time
    FieldWatch m_watch;
};

} // namespace orvane
