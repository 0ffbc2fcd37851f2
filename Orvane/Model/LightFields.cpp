#include "LightFields.h"

#include "Wording.h"

#include <algorithm>
#include <array>
#include <utility>

namespace orvane {

namespace {

/// A number of a stored light.
using Number = double EditState::Light::*;

struct Kind {
    std::string_view name;
    const char* type;
    const char* mode;
    double radius;
    double feather;
    double angle;
};

/// The last one stands for every other name.
constexpr std::array<Kind, 4> kinds = {{{"gradient", "linear", "", 0.3, 0.5, 90},
                                        {"brush", "brush", "paint", 0.06, 0.6, 0},
                                        {"eraser", "brush", "erase", 0.06, 0.6, 0},
                                        {"radial", "radial", "", 0.24, 0.6, 0}}};

/// Strong enough to be seen at once, weak enough to stay.
constexpr double firstBrightness = 28;

constexpr std::array<std::pair<std::string_view, Number>, 9> fields = {
    {{"x", &EditState::Light::x},
     {"y", &EditState::Light::y},
     {"radius", &EditState::Light::radius},
     {"feather", &EditState::Light::feather},
     {"angle", &EditState::Light::angle},
     {"brightness", &EditState::Light::brightness},
     {"warmth", &EditState::Light::warmth},
     {"contrast", &EditState::Light::contrast},
     {"saturation", &EditState::Light::saturation}}};

} // namespace

EditState::Light newLight(std::string_view kind, double x, double y)
{
    const auto* const found =
        std::find_if(kinds.begin(), kinds.end() - 1, [&](const Kind& k) { return k.name == kind; });
    EditState::Light light;
    light.id = "l_" + newUUID().substr(0, 6);
    light.type = found->type;
    light.mode = found->mode;
    light.radius = found->radius;
    light.feather = found->feather;
    light.angle = found->angle;
    light.brightness = firstBrightness;
    light.x = x;
    light.y = y;
    return light;
}

double EditState::Light::*lightField(std::string_view name)
{
    const auto* const found = std::find_if(fields.begin(), fields.end(),
                                           [&](const auto& field) { return field.first == name; });
    return found == fields.end() ? nullptr : found->second;
}

} // namespace orvane
