#include "HistorySection.h"

#include "Icon.h"
#include "PanelControls.h"
#include "Theme.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QWheelEvent>

namespace orvane {

namespace {

constexpr int rowHeight = 26;
constexpr int iconSize = 14;
constexpr int textFrom = 26;

/// A row: a dot for the edit as it is, circles for the others, and what the step changed.
class StepDelegate final : public QStyledItemDelegate {
public:
    explicit StepDelegate(HistorySection* list)
        : QStyledItemDelegate(list)
        , m_list(list)
    {
    }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        return {100, rowHeight};
    }
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const bool hasFocus = option.state & QStyle::State_HasFocus;
        painter->setPen(hasFocus ? QPen(Theme::accent, 1) : QPen(Qt::NoPen));
        painter->setBrush(option.state & QStyle::State_MouseOver ? QBrush(Theme::raised)
                                                                 : QBrush(Qt::NoBrush));
        painter->drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);

        // What redo would bring back is dimmed.
        const int current = m_list->currentRow();
        const QColor color = index.row() < current ? Theme::secondaryText : Theme::text;
        const QPointF centre(option.rect.left() + 12, option.rect.center().y() + 0.5);
        if (index.row() == current)
            drawIcon(*painter, icon("circle-dot", Theme::accent), centre, iconSize);
        else
            drawIcon(*painter, icon("circle", Theme::secondaryText), centre, iconSize);
        painter->setPen(color);
        const QRect text = option.rect.adjusted(textFrom, 0, -4, 0);
        painter->drawText(
            text, Qt::AlignVCenter | Qt::AlignLeft,
            option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight, text.width()));
        painter->restore();
    }

private:
    HistorySection* m_list;
};

QStringList newestFirst(const std::vector<std::string>& labels)
{
    QStringList texts;
    for (auto label = labels.rbegin(); label != labels.rend(); ++label)
        texts << QString::fromStdString(*label);
    return texts;
}

} // namespace

HistorySection::HistorySection(AppModel& model, QWidget* parent)
    : QListView(parent)
    , m_model(model)
    , m_steps(new QStringListModel(this))
    , m_watch([this] { refresh(); })
{
    setModel(m_steps);
    setItemDelegate(new StepDelegate(this));
    setUniformItemSizes(true);
    setFrameShape(QFrame::NoFrame);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleName(tr("History"));
    setTabKeyNavigation(false);
    viewport()->setAutoFillBackground(false);
    viewport()->setAttribute(Qt::WA_Hover);
    connect(this, &QListView::clicked, this, &HistorySection::jumpTo);
    m_watch.watch(model.history);
    refresh();
}

QSize HistorySection::sizeHint() const
{
    return {200, rowHeight * m_steps->rowCount()};
}

int HistorySection::currentRow() const
{
    return int(m_model.history.value().redoStack().size());
}

void HistorySection::refresh()
{
    const QStringList texts = newestFirst(m_labels.of(m_model.history.value().timeline()));
    if (texts.size() != m_steps->rowCount()) {
        m_steps->setStringList(texts);
        updateGeometry();
    } else if (texts != m_steps->stringList()) {
        for (int row = 0; row < texts.size(); ++row)
            m_steps->setData(m_steps->index(row), texts[row]);
    }
    setCurrentIndex(m_steps->index(currentRow()));
    viewport()->update();
}

void HistorySection::jumpTo(const QModelIndex& row)
{
    if (row.isValid())
        m_model.jumpHistory(m_steps->rowCount() - 1 - row.row());
}

void HistorySection::wheelEvent(QWheelEvent* event)
{
    event->ignore(); // all rows are in sight: the panel scrolls
}

void HistorySection::keyPressEvent(QKeyEvent* event)
{
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space)
        jumpTo(currentIndex());
    else
        QListView::keyPressEvent(event);
}

void HistorySection::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QListView::currentChanged(current, previous);
    if (!hasFocus())
        return;
    for (QWidget* above = parentWidget(); above; above = above->parentWidget()) {
        auto* panel = qobject_cast<QScrollArea*>(above);
        if (!panel)
            continue;
        const QPoint middle = mapTo(panel->widget(), visualRect(current).center());
        panel->ensureVisible(middle.x(), middle.y(), 0, rowHeight);
        return;
    }
}

} // namespace orvane
