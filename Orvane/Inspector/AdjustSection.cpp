#include "AdjustSection.h"

#include "ModelSlider.h"

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
    , m_watch([this] { refresh(); })
{
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    for (const AppModel::AdjustKey& key : group.keys) {
        m_rows.push_back(makeAdjustRow(model, key, QString::fromStdString(key.label)));
        column->addWidget(m_rows.back());
    }
    m_watch.watch(model.adjust);
}

void AdjustSection::refresh()
{
    for (ModelSlider* row : m_rows)
        row->refresh();
}

} // namespace orvane
