#include "RetouchSection.h"

#include "ModelSlider.h"
#include "PanelControls.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace orvane {

RetouchSection::RetouchSection(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_heal(new PanelButton("bandage", tr("Heal Blemishes")))
    , m_size(new ModelSlider(model, tr("Brush Size"), {1, 20, 4},
                             {[&model] { return model.healSize.value(); },
                              [&model](double size) { model.healSize = size; }}))
    , m_healed(new QWidget)
    , m_count(new QLabel)
    , m_watch([this] { refresh(); })
{
    m_heal->setCheckable(true);
    m_count->setObjectName("healed");
    Theme::makeSecondary(*m_count);
    auto* undo = new PanelButton("undo-2", tr("Undo Last"));
    auto* clear = new PanelButton("trash-2", tr("Clear"));
    auto* healed = new QVBoxLayout(m_healed);
    healed->setContentsMargins(0, 0, 0, 0);
    healed->setSpacing(6);
    healed->addWidget(m_count);
    healed->addLayout(buttonRow({undo, clear}));

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 2, 0, 2);
    column->setSpacing(6);
    column->addWidget(m_heal);
    column->addWidget(m_size);
    column->addWidget(m_healed);

    connect(m_heal, &QPushButton::clicked, this, [this] { m_model.toggleHeal(); });
    connect(undo, &QPushButton::clicked, this, [this] { m_model.undoLastHeal(); });
    connect(clear, &QPushButton::clicked, this, [this] { m_model.clearHealSpots(); });
    m_watch.watch(model.healing, model.healSize, model.ciHealSpots);
    refresh();
}

void RetouchSection::refresh()
{
    const QString label = m_model.healing ? tr("Click blemishes to heal…") : tr("Heal Blemishes");
    m_heal->setText(label);
    m_heal->setAccessibleName(label);
    m_heal->setChecked(m_model.healing);
    m_size->refresh();
    const size_t spots = m_model.ciHealSpots.value().size();
    m_count->setText(spots == 1 ? tr("1 spot healed") : tr("%1 spots healed").arg(spots));
    m_healed->setVisible(spots > 0);
}

} // namespace orvane
