#include "Filmstrip.h"

#include "AppModel.h"
#include "FilmstripDelegate.h"
#include "FilmstripModel.h"
#include "Theme.h"
#include "UnsavedImages.h"
#include "Wording.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QScrollBar>

#include <memory>

namespace orvane {

namespace {

constexpr int margin = 8; ///< left of the first cell, besides its own room

QString look()
{
    return QString("QListView { background: transparent; border: none; }"
                   "QScrollBar:horizontal { background: transparent; height: 7px; margin: 0; }"
                   "QScrollBar::handle:horizontal { background: %1; min-width: 32px;"
                   " border-radius: 2px; margin: 0 0 3px 0; }"
                   "QScrollBar::handle:horizontal:hover { background: %2; }"
                   "QScrollBar::add-line, QScrollBar::sub-line { width: 0; }"
                   "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }")
        .arg(Theme::hover.name(), Theme::disabledText.name());
}

std::vector<FilmstripCell> cellsOf(const AppModel& model)
{
    const std::set<std::string> unsaved = unsavedImages(model);
    std::vector<FilmstripCell> cells;
    cells.reserve(model.session.value().size());
    for (const EditImage& image : model.session.value())
        cells.push_back({.id = image.id,
                         .name = QString::fromStdString(image.name),
                         .thumb = image.thumb,
                         .isActive = image.id == model.activeImageID.value(),
                         .isUnsaved = unsaved.contains(image.id)});
    return cells;
}

} // namespace

Filmstrip::Filmstrip(AppModel& model, QWidget* parent)
    : QListView(parent)
    , m_model(model)
    , m_cells(new FilmstripModel(this))
    , m_watch([this] { refresh(); })
{
    setAccessibleName(tr("Images"));
    setModel(m_cells);
    setItemDelegate(new FilmstripDelegate(*m_cells, this));
    setFlow(LeftToRight);
    setSelectionMode(NoSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFrameShape(NoFrame);
    setMouseTracking(true);
    setStyleSheet(look());
    setViewportMargins(margin, 0, 0, 0);
    setFixedHeight(height);
    setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
    setTabKeyNavigation(false);

    connect(this, &QListView::clicked, this, &Filmstrip::choose);
    const auto measureAgain = [this] { updateGeometry(); };
    connect(m_cells, &QAbstractItemModel::dataChanged, this, measureAgain);
    connect(m_cells, &QAbstractItemModel::rowsInserted, this, measureAgain);
    connect(m_cells, &QAbstractItemModel::rowsRemoved, this, measureAgain);
    // A push makes a step in history, so this also follows the edit of the active image.
    m_watch.watch(model.session, model.activeImageID, model.history, model.collections,
                  model.currentCollectionName);
    refresh();
}

QSize Filmstrip::sizeHint() const
{
    int width = margin;
    for (int row = 0; row < m_cells->rowCount(); ++row)
        width += sizeHintForIndex(m_cells->index(row)).width();
    return {width, height};
}

void Filmstrip::refresh()
{
    m_cells->setCells(cellsOf(m_model));
    const std::string active = m_model.activeImageID;
    const int count = m_cells->rowCount();
    if (active == m_shownActive && count == m_shownCount)
        return;
    m_shownActive = active;
    m_shownCount = count;
    if (const int row = m_cells->activeRow(); row >= 0) {
        setCurrentIndex(m_cells->index(row));
        scrollTo(currentIndex());
    }
}

void Filmstrip::choose(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    const std::string id = m_cells->cell(index.row()).id;
    if (id != m_model.activeImageID.value())
        m_model.activate(id, true);
}

void Filmstrip::offerRemoval(const QModelIndex& index, const QPoint& globalPosition)
{
    if (!index.isValid())
        return;
    const QString collection = QString::fromStdString(m_model.currentCollectionName);
    const QString title =
        collection.isEmpty() ? tr("Remove Image") : tr("Remove from “%1”").arg(collection);
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(QString(title).replace('&', "&&"), this,
                    [this, id = m_cells->cell(index.row()).id] { m_model.removeImage(id); });
    menu->popup(globalPosition);
}

void Filmstrip::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        choose(currentIndex());
        return;
    default:
        QListView::keyPressEvent(event);
    }
}

/// The strip has one direction, so that a wheel of any direction moves along it.
void Filmstrip::wheelEvent(QWheelEvent* event)
{
    const QPoint fine = event->pixelDelta();
    const QPoint delta = fine.isNull() ? event->angleDelta() : fine;
    horizontalScrollBar()->setValue(horizontalScrollBar()->value() - delta.x() - delta.y());
    event->accept();
}

void Filmstrip::focusInEvent(QFocusEvent* event)
{
    if (!currentIndex().isValid() && m_cells->activeRow() >= 0)
        setCurrentIndex(m_cells->index(m_cells->activeRow()));
    QListView::focusInEvent(event);
}

void Filmstrip::contextMenuEvent(QContextMenuEvent* event)
{
    if (event->reason() == QContextMenuEvent::Mouse) {
        offerRemoval(indexAt(viewport()->mapFromGlobal(event->globalPos())), event->globalPos());
        return;
    }
    const QPoint middle = visualRect(currentIndex()).center();
    offerRemoval(currentIndex(), viewport()->mapToGlobal(middle));
}

} // namespace orvane
