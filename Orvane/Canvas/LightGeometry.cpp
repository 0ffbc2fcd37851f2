#include "LightGeometry.h"

#include <algorithm>
#include <cmath>

namespace orvane::LightGeometry {

double distance(const CGPoint& a, const CGPoint& b, const CGSize& frame)
{
    const double longEdge = std::max(frame.width, frame.height);
    return std::hypot((a.x - b.x) * frame.width, (a.y - b.y) * frame.height) / longEdge;
}

Grab grab(const CGPoint& at, const Lights& lights, const CGSize& frame)
{
    const Light* nearest = nullptr;
    const Light* ringed = nullptr;
    double least = centreReach;
    for (const Light& light : lights) {
        if (isBrush(light))
            continue;
        const double away = distance({light.x, light.y}, at, frame);
        if (away < least) {
            least = away;
            nearest = &light;
        }
        if (!ringed && std::abs(away - light.radius) < ringReach)
            ringed = &light;
    }
    if (nearest)
        return {Grab::Kind::Centre, nearest->id};
    if (ringed)
        return {Grab::Kind::Ring, ringed->id};
    return {};
}

double radius(const CGPoint& centre, const CGPoint& to, const CGSize& frame)
{
    return std::clamp(distance(centre, to, frame), 0.02, 1.5);
}

bool isBrush(const Light& light)
{
    return light.type == "brush";
}

const Light* find(const Lights& lights, const std::string& id)
{
    const auto found = std::find_if(lights.begin(), lights.end(),
                                    [&](const Light& light) { return light.id == id; });
    return found == lights.end() ? nullptr : &*found;
}

bool extend(std::vector<CGPoint>& stroke, const CGPoint& to, double spacing, const CGSize& frame)
{
    if (!stroke.empty() && distance(stroke.back(), to, frame) < spacing)
        return false;
    stroke.push_back(to);
    return true;
}

} // namespace orvane::LightGeometry
