#include "SegmentedPicker.h"

#include "Theme.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPushButton>

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

SegmentedPicker::SegmentedPicker(const QString& name, Choices choices, QWidget* parent)
    : QWidget(parent)
    , m_choices(std::move(choices))
    , m_group(new QButtonGroup(this))
{
    setAccessibleName(name);
    setStyleSheet(look());
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(2);
    for (int i = 0; i < int(m_choices.size()); ++i) {
        auto* button = new QPushButton(m_choices[size_t(i)].second);
        button->setCheckable(true);
        button->setChecked(i == 0);
        button->setFixedHeight(24);
        button->setAccessibleName(tr("%1: %2").arg(name, button->text()));
        m_group->addButton(button, i);
        row->addWidget(button, 1);
    }
    connect(m_group, &QButtonGroup::idToggled, this, [this](int id, bool isOn) {
        if (isOn)
            Q_EMIT picked(m_choices[size_t(id)].first);
    });
}

QString SegmentedPicker::chosen() const
{
    return m_choices[size_t(m_group->checkedId())].first;
}

void SegmentedPicker::choose(const QString& key)
{
    const QSignalBlocker silently(m_group);
    for (int i = 0; i < int(m_choices.size()); ++i) {
        if (m_choices[size_t(i)].first == key)
            m_group->button(i)->setChecked(true);
    }
}

} // namespace orvane
