#include "SegmentedPicker.h"

#include "Theme.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QPushButton>

#include <algorithm>

namespace orvane {

namespace {

QString look()
{
    return QString("QPushButton { background: %1; color: %2; padding: 0; border-radius: 4px;"
                   " border: 1px solid transparent; }"
                   "QPushButton:hover { color: %3; }"
                   "QPushButton:checked { background: %4; color: %3; }"
                   "QPushButton:focus { border-color: %5; }")
        .arg(Theme::field.name(), Theme::secondaryText.name(), Theme::text.name(),
             Theme::hover.name(), Theme::accent.name());
}

} // namespace

void tabToChosen(QButtonGroup& group)
{
    const auto buttons = group.buttons();
    const QAbstractButton* chosen = group.checkedButton();
    for (QAbstractButton* button : buttons) {
        const bool isReached = button == (chosen ? chosen : buttons.front());
        button->setFocusPolicy(isReached ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

SegmentedPicker::SegmentedPicker(const QString& name, Choices choices, int columns, QWidget* parent)
    : QWidget(parent)
    , m_choices(std::move(choices))
    , m_group(new QButtonGroup(this))
{
    setAccessibleName(name);
    setStyleSheet(look());
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(2);
    const int width = columns > 0 ? columns : std::max(1, int(m_choices.size()));
    for (int i = 0; i < int(m_choices.size()); ++i) {
        auto* button = new QPushButton(m_choices[size_t(i)].second);
        button->setCheckable(true);
        button->setChecked(i == 0);
        button->setFixedHeight(24);
        button->setAccessibleName(tr("%1: %2").arg(name, button->text()));
        m_group->addButton(button, i);
        grid->addWidget(button, i / width, i % width);
        grid->setColumnStretch(i % width, 1);
    }
    tabToChosen(*m_group);
    connect(m_group, &QButtonGroup::idToggled, this, [this](int id, bool isOn) {
        tabToChosen(*m_group);
        if (isOn)
            Q_EMIT picked(m_choices[size_t(id)].first);
    });
}

QString SegmentedPicker::chosen() const
{
    const int id = m_group->checkedId();
    return id < 0 ? QString() : m_choices[size_t(id)].first;
}

void SegmentedPicker::choose(const QString& key)
{
    if (key == chosen())
        return;
    const QSignalBlocker silently(m_group);
    m_group->setExclusive(false);
    for (int i = 0; i < int(m_choices.size()); ++i)
        m_group->button(i)->setChecked(m_choices[size_t(i)].first == key);
    m_group->setExclusive(true);
    tabToChosen(*m_group);
}

} // namespace orvane
