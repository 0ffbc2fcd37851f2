// The relight tool.

#include "AppModel.h"

#include "Finite.h"
#include "LayerList.h"
#include "LightFields.h"

#include <utility>

namespace orvane {

void AppModel::enterRelight()
{
    relightSession = ModalSession<std::vector<Light>>(lights.value());
    relightHistoryAtStart = history.value();
    relightMode = true;
    cropMode = false;
    cropSession = std::nullopt;
    if (lights.value().empty())
        addLightAt("radial", 0.5, 0.5);
}

void AppModel::exitRelight()
{
    relightMode = false;
    selectedLightID = std::string();
    relightSession = std::nullopt;
    relightHistoryAtStart = std::nullopt;
}

void AppModel::cancelRelight()
{
    const auto tool = relightSession.value();
    if (tool && tool->commits(lights.value())) {
        lights = tool->cancelled();
        if (const auto& start = relightHistoryAtStart.value())
            history = *start;
    }
    exitRelight();
}

void AppModel::addLightAt(const std::string& kind, double x, double y)
{
    if (!areFinite(x, y))
        return;
    Light light = newLight(kind, x, y);
    const std::string id = light.id;
    std::vector<Light> changed = lights.value();
    changed.push_back(std::move(light));
    lights = std::move(changed);
    selectedLightID = id;
    relightMode = true;
    commitHistory();
}

void AppModel::selectLight(const std::string& id)
{
    selectedLightID = id;
}

void AppModel::updateLight(const std::string& id, const std::string& field, double value)
{
    if (!areFinite(value))
        return;
    const auto write = [number = lightField(field), value](Light& light) {
        if (number)
            light.*number = value;
    };
    if (LayerList::changeFirst(lights, id, write))
        pushHistory();
}

void AppModel::setLightInverted(const std::string& id, bool inverted)
{
    if (LayerList::changeFirst(lights, id, [&](Light& light) { light.invert = inverted; }))
        commitHistory();
}

void AppModel::deleteLight(const std::string& id)
{
    LayerList::remove(lights, selectedLightID, id);
    commitHistory();
}

void AppModel::clearLights()
{
    if (lights.value().empty())
        return;
    lights = std::vector<Light>();
    selectedLightID = std::string();
    commitHistory();
}

void AppModel::appendStroke(const std::string& id, const std::vector<CGPoint>& points)
{
    if (points.empty() || !areFinite(points))
        return;
    if (LayerList::changeFirst(lights, id, [&](Light& light) { light.strokes.push_back(points); }))
        commitHistory();
}

} // namespace orvane
