#include "FontPicker.h"

#include "Chevron.h"
#include "FontNames.h"
#include "Theme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListView>
#include <QPainter>
#include <QSortFilterProxyModel>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>

namespace orvane {

namespace {

constexpr int rowHeight = 28;
constexpr int visibleRows = 11;
constexpr int sampleSize = 15; ///< pixels, in the list
constexpr int narrowest = 240; ///< of the list
constexpr int inset = 8;

QString listLook()
{
    return QString("QListView { background: %1; }"
                   "QScrollBar:vertical { background: transparent; width: 8px; margin: 0; }"
                   "QScrollBar::handle:vertical { background: %2; border-radius: 3px;"
                   " margin: 1px; min-height: 28px; }"
                   "QScrollBar::handle:vertical:hover { background: %3; }"
                   "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
                   "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }")
        .arg(Theme::section.name(), QColor(0x56, 0x56, 0x56).name(),
             QColor(0x70, 0x70, 0x70).name());
}

/// Draws the rows in sight and measures none, so that hundreds of fonts open at once.
class FamilyDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        return {100, rowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const bool isCurrent = option.state & QStyle::State_Selected;
        if (isCurrent || option.state & QStyle::State_MouseOver) {
            painter->setPen(Qt::NoPen);
            painter->setBrush(isCurrent ? Theme::hover : Theme::raised);
            painter->drawRoundedRect(QRectF(option.rect), 4, 4);
        }
        painter->setFont(fontOfFamily(index.data(Qt::UserRole).toString(), sampleSize));
        painter->setPen(Theme::text);
        const QRect line = option.rect.adjusted(inset, 0, -inset, 0);
        // Fonts have the strangest heights: each name is cut off at its own row.
        painter->setClipRect(option.rect);
        painter->drawText(line, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                          painter->fontMetrics().elidedText(index.data(Qt::DisplayRole).toString(),
                                                            Qt::ElideRight, line.width()));
        painter->restore();
    }
};

} // namespace

FontPopover::FontPopover(const QString& name, const QString& family, QWidget* parent)
    : Popover(name, parent)
    , m_search(new QLineEdit)
    , m_list(new QListView)
    , m_families(new QSortFilterProxyModel(this))
{
    m_families->setSourceModel(new FontNames(this));
    m_families->setFilterCaseSensitivity(Qt::CaseInsensitive);
    m_search->setPlaceholderText(tr("Search"));
    m_search->setAccessibleName(tr("Search fonts"));
    m_search->setFixedHeight(26);
    m_search->installEventFilter(this);

    m_list->setModel(m_families);
    m_list->setItemDelegate(new FamilyDelegate(m_list));
    m_list->setUniformItemSizes(true);
    m_list->setMouseTracking(true);
    m_list->setFrameShape(QFrame::NoFrame);
    m_list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_list->setAccessibleName(name);
    m_list->setStyleSheet(listLook());
    m_list->setFixedHeight(rowHeight * std::min(visibleRows, m_families->rowCount()));
    m_list->installEventFilter(this);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(7, 7, 7, 7);
    column->setSpacing(6);
    column->addWidget(m_search);
    column->addWidget(m_list);
    m_list->setCurrentIndex(m_families->index(FontNames::rowOf(family), 0));

    connect(m_search, &QLineEdit::textChanged, this, &FontPopover::narrow);
    connect(m_list, &QListView::clicked, this, &FontPopover::take);
}

void FontPopover::narrow(const QString& text)
{
    m_families->setFilterFixedString(text.trimmed());
    if (!m_list->currentIndex().isValid())
        m_list->setCurrentIndex(m_families->index(0, 0));
    m_list->scrollTo(m_list->currentIndex());
}

void FontPopover::take(const QModelIndex& index)
{
    if (!index.isValid())
        return;
    const QString family = index.data(Qt::UserRole).toString();
    close();
    Q_EMIT familyPicked(family);
}

void FontPopover::openBeside(const QWidget& anchor)
{
    setFixedWidth(std::max(anchor.width(), narrowest));
    Popover::openBeside(anchor, *m_search);
    m_list->scrollTo(m_list->currentIndex(), QAbstractItemView::PositionAtCenter);
}

/// The list walks while the field has the focus, so that a person types and walks with both hands
/// where they are.
bool FontPopover::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return Popover::eventFilter(watched, event);
    switch (const int key = static_cast<QKeyEvent*>(event)->key()) {
    case Qt::Key_Escape:
        close();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        take(m_list->currentIndex());
        return true;
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        if (watched == m_search) {
            QKeyEvent forList(QEvent::KeyPress, key, Qt::NoModifier);
            QApplication::sendEvent(m_list, &forList);
            return true;
        }
        [[fallthrough]];
    default:
        return Popover::eventFilter(watched, event);
    }
}

// ---- The picker ----

FontPicker::FontPicker(const QString& name, QWidget* parent)
    : QAbstractButton(parent)
{
    setAccessibleName(name);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setFixedHeight(sizeHint().height());
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFamily({});
    connect(this, &QAbstractButton::clicked, this, &FontPicker::open);
}

void FontPicker::setFamily(const QString& family)
{
    m_family = family;
    // Of a font that is not installed here the name is shown all the same.
    setText(family.isEmpty() ? tr("System") : family);
    setAccessibleDescription(text());
    update();
}

void FontPicker::open()
{
    if (m_popover)
        return;
    m_popover = new FontPopover(accessibleName(), m_family, this);
    connect(m_popover, &FontPopover::familyPicked, this, &FontPicker::pick);
    m_popover->openBeside(*this);
}

void FontPicker::pick(const QString& family)
{
    if (family == m_family)
        return;
    setFamily(family);
    Q_EMIT familyPicked(family);
}

void FontPicker::step(int by)
{
    const int last = FontNames().rowCount() - 1;
    pick(FontNames::family(std::clamp(FontNames::rowOf(m_family) + by, 0, last)));
}

void FontPicker::keyPressEvent(QKeyEvent* event)
{
    const bool opens = event->modifiers() & Qt::AltModifier;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return click();
    case Qt::Key_Up:
        return opens ? click() : step(-1);
    case Qt::Key_Down:
        return opens ? click() : step(1);
    default:
        QAbstractButton::keyPressEvent(event);
    }
}

void FontPicker::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(hasFocus() ? Theme::accent : Theme::border, 1));
    painter.setBrush(underMouse() ? Theme::hover : Theme::raised);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::radius,
                            Theme::radius);
    drawChevron(painter, {width() - 14.0, height() / 2.0}, 90, Theme::secondaryText);
    painter.setFont(fontOfFamily(m_family, 13));
    painter.setPen(Theme::text);
    const QRect line = rect().adjusted(inset, 0, -24, 0);
    painter.setClipRect(line);
    painter.drawText(line, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text(), Qt::ElideRight, line.width()));
}

} // namespace orvane
