#include "RowList.h"

#include "Icon.h"
#include "PanelControls.h"
#include "Theme.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

namespace orvane {

namespace {

constexpr int rowHeight = 28;
constexpr int pictureSize = 16;

} // namespace

class RowList::RowButton final : public QAbstractButton {
public:
    RowButton()
    {
        setCheckable(true);
        setFixedHeight(rowHeight);
        setAttribute(Qt::WA_Hover);
        setFocusPolicy(Qt::ClickFocus);
    }
    void setFaint(bool faint)
    {
        m_isFaint = faint;
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(hasFocus() ? QPen(Theme::accent, 1) : QPen(Qt::NoPen));
        if (isChecked())
            painter.setBrush(Theme::hover);
        else if (underMouse())
            painter.setBrush(Theme::raised);
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::radius,
                                Theme::radius);
        int left = 8;
        if (!icon().isNull()) {
            drawIcon(painter, icon(), {left + pictureSize / 2.0, height() / 2.0}, pictureSize);
            left += pictureSize + 8;
        }
        const QRect line = rect().adjusted(left, 0, -6, 0);
        painter.setPen(m_isFaint ? Theme::secondaryText : Theme::text);
        painter.drawText(line, Qt::AlignVCenter | Qt::AlignLeft,
                         fontMetrics().elidedText(text(), Qt::ElideRight, line.width()));
    }

private:
    bool m_isFaint = false;
};

RowList::RowList(const QString& name, int mostVisible, QWidget* parent)
    : QWidget(parent)
    , m_mostVisible(mostVisible)
    , m_scroll(new QScrollArea(this))
{
    setAccessibleName(name);
    auto* content = new QWidget;
    m_column = new QVBoxLayout(content);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(2);
    m_column->addStretch(1);
    m_scroll->setWidget(content);
    // The ground is the section's.
    content->setAutoFillBackground(false);
    m_scroll->viewport()->setAutoFillBackground(false);
    m_scroll->setWidgetResizable(true);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    auto* frame = new QVBoxLayout(this);
    frame->setContentsMargins(0, 0, 0, 0);
    frame->addWidget(m_scroll);
    // There from the beginning, so that Tab comes here in its turn.
    addLine();
    show({});
}

QAbstractButton* RowList::row(int index) const
{
    return m_lines[size_t(index)].button;
}

GlyphButton* RowList::removeButton(int index) const
{
    return m_lines[size_t(index)].remove;
}

void RowList::addLine()
{
    const size_t index = m_lines.size();
    Line line{new QWidget,
              new RowButton,
              new GlyphButton(icon("circle-x", Theme::secondaryText, IconForm::Filled), {}),
              {}};
    auto* layout = new QHBoxLayout(line.widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(line.button, 1);
    layout->addWidget(line.remove);
    line.remove->setFocusPolicy(Qt::ClickFocus);
    m_column->insertWidget(int(index), line.widget);
    if (index > 0)
        setTabOrder(m_lines.back().remove, line.button);
    setTabOrder(line.button, line.remove);
    line.button->installEventFilter(this);
    line.remove->installEventFilter(this);

    connect(line.button, &QAbstractButton::clicked, this, [this, index] {
        m_lines[index].button->setChecked(!m_lines[index].button->isChecked());
        Q_EMIT picked(m_lines[index].id);
    });
    connect(line.remove, &QAbstractButton::clicked, this,
            [this, index] { Q_EMIT removeAsked(m_lines[index].id); });
    m_lines.push_back(line);
}

void RowList::showRow(Line& line, const Row& row)
{
    line.id = row.id;
    // A text of several lines is one name.
    line.button->setText(row.text.simplified());
    line.button->setAccessibleName(line.button->text());
    // Only another one: it would lay the panel out anew.
    if (line.button->icon().cacheKey() != row.icon.cacheKey())
        line.button->setIcon(row.icon);
    line.button->setFaint(row.isFaint);
    line.button->setChecked(row.isCurrent);
    line.remove->setHelp(row.removeHelp);
    line.remove->setVisible(!row.removeHelp.isEmpty());
}

void RowList::show(const std::vector<Row>& rows)
{
    const int count = int(rows.size());
    rescueFocus(count);
    while (int(m_lines.size()) < count)
        addLine();
    int current = -1;
    int focused = -1;
    for (int i = 0; i < int(m_lines.size()); ++i) {
        Line& line = m_lines[size_t(i)];
        line.widget->setVisible(i < count);
        if (i >= count)
            continue;
        showRow(line, rows[size_t(i)]);
        if (rows[size_t(i)].isCurrent)
            current = i;
        if (line.button->hasFocus() || line.remove->hasFocus())
            focused = i;
    }
    m_count = count;
    makeCurrent(std::max(focused >= 0 ? focused : current, 0));
    const int visible = std::min(count, m_mostVisible);
    setFixedHeight(std::max(0, visible * (rowHeight + 2) - 2));
    setVisible(count > 0);
}

/// What hides loses the focus to wherever Qt likes: here it goes to the last row, if there is one.
void RowList::rescueFocus(int count)
{
    for (int i = count; i < m_count; ++i) {
        const Line& line = m_lines[size_t(i)];
        if (count > 0 && (line.button->hasFocus() || line.remove->hasFocus()))
            m_lines[size_t(count) - 1].button->setFocus();
    }
}

void RowList::makeCurrent(int index)
{
    for (int i = 0; i < int(m_lines.size()); ++i) {
        const auto policy = i == index ? Qt::StrongFocus : Qt::ClickFocus;
        m_lines[size_t(i)].button->setFocusPolicy(policy);
        m_lines[size_t(i)].remove->setFocusPolicy(policy);
    }
}

bool RowList::takeKey(int index, int key)
{
    Line& line = m_lines[size_t(index)];
    const bool isOnRemove = line.remove->hasFocus();
    const auto focusRow = [&](int other) {
        if (other < 0 || other >= m_count)
            return;
        Line& target = m_lines[size_t(other)];
        QWidget* widget = target.button;
        if (isOnRemove)
            widget = target.remove;
        widget->setFocus(Qt::TabFocusReason);
        m_scroll->ensureWidgetVisible(target.widget, 0, 0);
    };
    switch (key) {
    case Qt::Key_Up:
        focusRow(index - 1);
        return true;
    case Qt::Key_Down:
        focusRow(index + 1);
        return true;
    case Qt::Key_Left:
        line.button->setFocus(Qt::TabFocusReason);
        return true;
    case Qt::Key_Right:
        if (line.remove->isVisible())
            line.remove->setFocus(Qt::TabFocusReason);
        return true;
    case Qt::Key_Delete:
        if (line.remove->isVisible())
            line.remove->click();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        qobject_cast<QAbstractButton*>(QApplication::focusWidget())->click();
        return true;
    default:
        return false;
    }
}

bool RowList::eventFilter(QObject* watched, QEvent* event)
{
    const auto line = std::find_if(m_lines.begin(), m_lines.end(), [&](const Line& each) {
        return each.button == watched || each.remove == watched;
    });
    if (line != m_lines.end()) {
        const int index = int(line - m_lines.begin());
        if (event->type() == QEvent::FocusIn)
            makeCurrent(index);
        if (event->type() == QEvent::KeyPress
            && takeKey(index, static_cast<QKeyEvent*>(event)->key()))
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace orvane
