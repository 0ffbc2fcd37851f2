#include "FoldingSection.h"

#include "Chevron.h"
#include "FoldClip.h"
#include "Theme.h"

#include <QAbstractButton>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>
#include <QVariantAnimation>

#include <utility>

namespace orvane {

namespace {

constexpr int headerHeight = 32;
constexpr double chevron = 12;
constexpr int padding = 10; ///< between the edges and what lies within
constexpr int ringInset = 4; ///< of the header's focus ring

/// A chevron that points down while it is checked, and a title.
class HeaderButton final : public QAbstractButton {
public:
    explicit HeaderButton(const QString& title)
    {
        setText(title);
        setAccessibleName(title);
        setCheckable(true);
        setFocusPolicy(Qt::StrongFocus);
        setFixedHeight(headerHeight);
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (hasFocus()) {
            painter.setPen(QPen(Theme::accent, 1));
            constexpr double inset = ringInset + 0.5;
            painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                                    Theme::radius, Theme::radius);
        }
        const QColor color = underMouse() ? Theme::text.lighter(115) : Theme::text;
        drawChevron(painter, {padding + chevron / 2, height() / 2.0}, isChecked() ? 90 : 0, color);

        QFont heading = font();
        heading.setWeight(QFont::Medium);
        painter.setFont(heading);
        painter.setPen(color);
        painter.drawText(rect().adjusted(padding + int(chevron) + 6, 0, 0, 0),
                         Qt::AlignVCenter | Qt::AlignLeft, text());
    }
};

} // namespace

FoldingSection::FoldingSection(const QString& title, Maker make, bool isExpanded, QWidget* parent)
    : QWidget(parent)
    , m_header(new HeaderButton(title))
    , m_mark(new QLabel(tr("Edited")))
    , m_reset(new QPushButton(tr("Reset")))
    , m_column(new QVBoxLayout(this))
    , m_make(std::move(make))
    , m_animation(new QVariantAnimation(this))
{
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(0);
    m_column->addWidget(makeHeader(title));
    setEdited(false);
    setExpanded(isExpanded);

    connect(m_header, &QAbstractButton::toggled, this, &FoldingSection::expandedChanged);
    connect(m_reset, &QPushButton::clicked, this, &FoldingSection::resetAsked);
    fold(isExpanded);
    connect(m_header, &QAbstractButton::toggled, this, &FoldingSection::fold);
    m_animation->setDuration(openingTime);
    m_animation->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_animation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& share) { m_clip->setShare(share.toDouble()); });
    connect(m_animation, &QVariantAnimation::finished, this, [this] {
        m_clip->setVisible(this->isExpanded());
        m_clip->setShare(1);
    });
}

void FoldingSection::fold(bool isOpen)
{
    if (isOpen && !m_content)
        makeContent();
    if (!m_clip)
        return;
    m_animation->stop();
    const bool moves = isVisible() && QApplication::isEffectEnabled(Qt::UI_General)
        && style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, this) > 0;
    if (moves)
        animate(isOpen);
    else
        m_clip->setVisible(isOpen);
}

void FoldingSection::animate(bool isOpen)
{
    m_clip->setShare(isOpen ? 0 : 1);
    m_clip->show();
    m_animation->setStartValue(isOpen ? 0.0 : 1.0);
    m_animation->setEndValue(isOpen ? 1.0 : 0.0);
    m_animation->start();
}

void FoldingSection::makeContent()
{
    auto* padded = new QWidget;
    auto* column = new QVBoxLayout(padded);
    column->setContentsMargins(padding, 2, padding, padding);
    m_content = m_make(padded);
    column->addWidget(m_content);
    m_clip = new FoldClip(padded);
    m_column->addWidget(m_clip);
    // Tab goes from the header into what came after the rest of the window was there.
    QWidget* before = m_reset;
    for (QWidget* child : m_clip->findChildren<QWidget*>()) {
        if (child->focusPolicy() != Qt::NoFocus && child->window() == window()) {
            setTabOrder(before, child);
            before = child;
        }
    }
    Q_EMIT contentMade(m_content);
}

void FoldingSection::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::section);
    painter.drawRoundedRect(rect(), Theme::radius, Theme::radius);
}

QWidget* FoldingSection::makeHeader(const QString& title)
{
    Theme::makeSecondary(*m_mark);
    m_reset->setStyleSheet(QString("QPushButton { background: transparent; border: 1px solid"
                                   " transparent; padding: 1px 6px; font-size: 11px; }"
                                   "QPushButton:hover { background: %1; }"
                                   "QPushButton:focus { border-color: %2; }")
                               .arg(Theme::raised.name(), Theme::accent.name()));
    m_reset->setAccessibleName(tr("Reset %1").arg(title));
    auto* header = new QWidget;
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, ringInset, 0);
    row->setSpacing(6);
    row->addWidget(m_header, 1);
    row->addWidget(m_mark);
    row->addWidget(m_reset);
    return header;
}

bool FoldingSection::isExpanded() const
{
    return m_header->isChecked();
}

void FoldingSection::setExpanded(bool expanded)
{
    m_header->setChecked(expanded);
}

void FoldingSection::setEdited(bool edited)
{
    m_mark->setVisible(edited);
    m_reset->setVisible(edited);
}

} // namespace orvane
