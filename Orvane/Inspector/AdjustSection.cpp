#include "AdjustSection.h"

#include "HueRow.h"
#include "ModelSlider.h"
#include "PanelControls.h"

#include <QVBoxLayout>

#include <algorithm>

namespace orvane {

double adjusted(const AppModel& model, const AppModel::AdjustKey& key)
{
    const auto& values = model.adjust.value();
    const auto found = values.find(key.key);
    return found == values.end() ? key.def : found->second;
}

bool isEdited(const AppModel& model, const std::vector<AppModel::AdjustKey>& keys)
{
    return std::any_of(keys.begin(), keys.end(), [&](const AppModel::AdjustKey& key) {
        return adjusted(model, key) != key.def;
    });
}

ModelSlider* makeAdjustRow(AppModel& model, const AppModel::AdjustKey& key, const QString& label)
{
    return new ModelSlider(
        model, label, {.minimum = key.min, .maximum = key.max, .rest = key.def},
        {.read = [&model, key] { return adjusted(model, key); },
         .write = [&model, id = key.key](double value) { model.setAdjust(id, value); }});
}

AdjustSection::AdjustSection(AppModel& model, const AppModel::AdjustGroup& group, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_watch([this] { refresh(); })
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    if (group.label == "Color") {
        column->addWidget(makeWhiteBalance());
        column->addSpacing(6);
    }
    for (const AppModel::AdjustKey& key : group.keys) {
        if (HueRow::isHue(key)) {
            m_hues.push_back(new HueRow(model, key));
            column->addWidget(m_hues.back());
        } else {
            m_rows.push_back(makeAdjustRow(model, key, QString::fromStdString(key.label)));
            column->addWidget(m_rows.back());
        }
    }
    m_watch.watch(model.adjust);
}

QWidget* AdjustSection::makeWhiteBalance()
{
    auto* button = new PanelButton(
        "pipette", {}, tr("Click a neutral part of the image and the colour cast is removed"));
    button->setCheckable(true);
    connect(button, &QPushButton::clicked, this, [this] { m_model.pickWhiteBalance(); });
    m_pickWatch = std::make_unique<FieldWatch>([this, button] {
        button->setChecked(m_model.pickingWhite);
        button->setText(m_model.pickingWhite ? tr("Click something grey…") : tr("White Balance"));
        button->setAccessibleName(button->text());
    });
    m_pickWatch->watch(m_model.pickingWhite);
    m_pickWatch->refresh();
    return button;
}

void AdjustSection::refresh()
{
    for (ModelSlider* row : m_rows)
        row->refresh();
    for (HueRow* row : m_hues)
        row->refresh();
}

} // namespace orvane
