#include "HueRow.h"

#include "AdjustSection.h"
#include "ColorWell.h"

#include <QHBoxLayout>
#include <QLabel>

#include <cmath>

namespace orvane {

HueRow::HueRow(AppModel& model, const AppModel::AdjustKey& key, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_key(key)
    , m_well(new ColorWell(QString::fromStdString(key.label)))
    , m_step(model)
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(new QLabel(m_well->accessibleName()));
    row->addStretch(1);
    row->addWidget(m_well);
    setFixedHeight(26);
    connect(m_well, &ColorWell::colorPicked, this, &HueRow::pick);
    connect(m_well, &ColorWell::pickEnded, this, [this] { m_step.end(); });
    refresh();
}

QColor HueRow::color(double degrees)
{
    const double turns = degrees / 360;
    return QColor::fromHsvF(float(turns - std::floor(turns)), 0.85F, 0.95F);
}

void HueRow::pick(const QColor& color)
{
    // A grey has no hue.
    if (color.hsvHueF() < 0)
        return;
    m_step.begin();
    m_model.setAdjust(m_key.key, double(color.hsvHueF()) * 360);
}

void HueRow::refresh()
{
    const QColor wanted = color(adjusted(m_model, m_key));
    // The colour being picked has a saturation of its own: only another hue replaces it.
    constexpr float hueStep = 1.0F / 720;
    if (std::abs(wanted.hsvHueF() - m_well->color().hsvHueF()) > hueStep)
        m_well->setColor(wanted);
}

} // namespace orvane
