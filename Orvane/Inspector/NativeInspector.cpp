#include "NativeInspector.h"

#include "FoldingSection.h"
#include "HeadingLabel.h"
#include "HistorySection.h"
#include "LooksSection.h"
#include "NameDialog.h"
#include "Theme.h"

#include <QApplication>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace orvane {

namespace {

constexpr int focusMargin = 40; ///< kept between a focused control and the panel's edges
constexpr int margin = 10;
constexpr int barWidth = 10; ///< of the scroll bar, whose place is kept while there is none
constexpr int sectionGap = 4;
constexpr int headingGap = 14;

/// One sheet for the whole panel: a sheet for each control would be read anew each time.
QString look()
{
    return QString("QScrollBar:vertical { background: transparent; width: %1px; margin: 2px; }"
                   "QScrollBar::handle:vertical { background: %2; border-radius: 3px;"
                   " min-height: 32px; }"
                   "QScrollBar::handle:vertical:hover { background: %3; }"
                   "QScrollBar::add-line, QScrollBar::sub-line { height: 0; }"
                   "QScrollBar::add-page, QScrollBar::sub-page { background: none; }")
               .arg(barWidth)
               .arg(Theme::hover.name(), Theme::disabledText.name())
        + QString("orvane--ValueField:read-only { background: transparent;"
                  " border-color: transparent; }"
                  "orvane--ValueField:read-only:hover { background: %1; }"
                  "orvane--ValueField:read-only:focus { border-color: %2; }")
              .arg(Theme::raised.name(), Theme::accent.name())
        + QString("#headingButton { background: transparent; border: 1px solid transparent;"
                  " padding: 1px 6px; font-size: 11px; color: %1; }"
                  "#headingButton:hover { background: %2; color: %3; }"
                  "#headingButton:focus { border-color: %4; }")
              .arg(Theme::secondaryText.name(), Theme::raised.name(), Theme::text.name(),
                   Theme::accent.name());
}

} // namespace

NativeInspector::NativeInspector(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_scroll(new QScrollArea)
    , m_watch([this] { refresh(); })
{
    setFixedWidth(panelWidth);
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->setFocusPolicy(Qt::NoFocus);
    m_scroll->setAccessibleName(tr("Inspector"));
    auto* frame = new QVBoxLayout(this);
    frame->setContentsMargins(0, 0, 0, 0);
    frame->addWidget(m_scroll);
    connect(qApp, &QApplication::focusChanged, this,
            [this](const QWidget*, QWidget* now) { showFocused(now); });
    m_watch.watch(model.session, model.adjust, model.curve, model.history);
    refresh();
}

NativeInspector::~NativeInspector()
{
    // What is in it loses the focus when only a plain widget is left of it.
    disconnect(qApp, nullptr, this, nullptr);
}

void NativeInspector::build()
{
    setStyleSheet(look());
    auto* content = new QWidget;
    content->setFixedWidth(panelWidth - barWidth);
    m_column = new QVBoxLayout(content);
    m_column->setContentsMargins(margin, 0, 0, margin);
    m_column->setSpacing(sectionGap);
    for (const InspectorHeading& heading : inspectorLayout(m_model.schema))
        addHeading(heading);
    m_column->addSpacing(headingGap);
    m_history = addSection({.name = tr("History"), .make = [](AppModel& m, QWidget* p) {
                                return new HistorySection(m, p);
                            }});
    m_column->addStretch(1);
    m_scroll->setWidget(content);
    m_scroll->setWidgetResizable(true);
}

void NativeInspector::addHeading(const InspectorHeading& heading)
{
    auto* button = new QPushButton;
    button->setObjectName("headingButton");
    auto* row = new QHBoxLayout;
    row->setContentsMargins(2, headingGap, 0, 0);
    row->setSpacing(6);
    row->addWidget(new HeadingLabel(heading.title));
    row->addStretch(1);
    row->addWidget(button);
    m_column->addLayout(row);

    Heading shown{.title = heading.title, .names = {}, .button = button};
    for (const InspectorSection& section : heading.sections)
        shown.names.push_back(section.name);
    m_headings.push_back(shown);
    connect(button, &QPushButton::clicked, this, [this, shown] { toggleAll(shown); });
    for (const InspectorSection& section : heading.sections)
        addSection(section);
    showHeadings();
}

FoldingSection* NativeInspector::addSection(const InspectorSection& section)
{
    auto* widget = new FoldingSection(
        section.name, [this, make = section.make](QWidget* p) { return made(make, p); },
        m_expanded.contains(section.name));
    m_column->addWidget(widget);
    m_sections.push_back({section, widget});
    connect(widget, &FoldingSection::expandedChanged, this,
            [this, name = section.name](bool isOpen) { takeExpanded(name, isOpen); });
    connect(widget, &FoldingSection::resetAsked, this, [this, reset = section.reset] {
        if (reset)
            reset(m_model);
    });
    return widget;
}

QWidget* NativeInspector::made(const decltype(InspectorSection::make)& make, QWidget* under)
{
    QWidget* content = make(m_model, under);
    if (auto* looks = qobject_cast<LooksSection*>(content))
        connect(looks, &LooksSection::nameAsked, this, &NativeInspector::askForName);
    return content;
}

// ---- Folding ----

FoldingSection* NativeInspector::section(const QString& name) const
{
    const auto found = std::find_if(m_sections.begin(), m_sections.end(),
                                    [&](const Shown& s) { return s.section.name == name; });
    return found == m_sections.end() ? nullptr : found->widget;
}

void NativeInspector::setExpanded(const QString& name, bool expanded)
{
    if (FoldingSection* found = section(name))
        found->setExpanded(expanded);
}

void NativeInspector::reveal(const QString& name)
{
    FoldingSection* found = section(name);
    if (!found)
        return;
    found->setExpanded(true);
    // Once it has its full height.
    QTimer::singleShot(FoldingSection::openingTime, found,
                       [this, found] { m_scroll->ensureWidgetVisible(found, 0, 8); });
}

void NativeInspector::takeExpanded(const QString& name, bool isExpanded)
{
    if (isExpanded)
        m_expanded.insert(name);
    else
        m_expanded.erase(name);
    showHeadings();
}

bool NativeInspector::isAllExpanded(const Heading& heading) const
{
    return !heading.names.empty()
        && std::all_of(heading.names.begin(), heading.names.end(),
                       [this](const QString& name) { return m_expanded.contains(name); });
}

void NativeInspector::toggleAll(const Heading& heading)
{
    const bool expands = !isAllExpanded(heading);
    for (const QString& name : heading.names)
        setExpanded(name, expands);
}

void NativeInspector::showHeadings()
{
    for (const Heading& heading : m_headings) {
        const bool isAll = isAllExpanded(heading);
        heading.button->setText(isAll ? tr("Collapse All") : tr("Expand All"));
        const QString help = isAll ? tr("Collapse all in %1") : tr("Expand all in %1");
        heading.button->setToolTip(help.arg(heading.title));
        heading.button->setAccessibleName(heading.button->toolTip());
    }
}

void NativeInspector::askForName()
{
    auto* dialog = new NameDialog(
        tr("Name this look"),
        tr("It saves the whole grade — light, colour, curves, effects — but not the crop or the "
           "lights you placed on this photo."),
        tr("Save"), {}, this);
    dialog->onAccept([this](const QString& name) { m_model.saveLook(name.toStdString()); });
    dialog->open();
}

/// Scrolls to what has got the focus, once it has its place. Not under a button that is held: what
/// a press takes must not move away from the pointer.
void NativeInspector::showFocused(QWidget* focused)
{
    if (!focused || !m_scroll->isAncestorOf(focused)
        || QApplication::mouseButtons() != Qt::NoButton)
        return;
    QTimer::singleShot(0, focused,
                       [this, focused] { m_scroll->ensureWidgetVisible(focused, 0, focusMargin); });
}

bool NativeInspector::focusNextPrevChild(bool next)
{
    // Controls that were made since come last in the window's order; those in the panel follow its
    // own, which is that of its tree.
    QWidget* before = nullptr;
    for (QWidget* child : findChildren<QWidget*>()) {
        if (child->focusPolicy() == Qt::NoFocus || child->window() != window())
            continue;
        if (before)
            setTabOrder(before, child);
        before = child;
    }
    return QWidget::focusNextPrevChild(next);
}

void NativeInspector::refresh()
{
    const bool isOpen = !m_model.session.value().empty();
    if (isOpen && m_sections.empty())
        build();
    if (m_scroll->widget())
        m_scroll->widget()->setVisible(isOpen);
    if (!isOpen)
        return;
    const auto& history = m_model.history.value();
    m_history->setVisible(history.undoStack().size() + history.redoStack().size() > 1);
    for (const Shown& shown : m_sections) {
        if (shown.section.isEdited)
            shown.widget->setEdited(shown.section.isEdited(m_model));
    }
}

} // namespace orvane
