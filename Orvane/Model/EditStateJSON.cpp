#include "EditStateJSON.h"

namespace orvane {

/// A pair of numbers, [x, y].
template <> struct JSONCoding<CGPoint> {
    static bool read(JSONReader& reader, const JSONView& json, CGPoint& point)
    {
        std::vector<double> pair;
        if (!JSONCoding<std::vector<double>>::read(reader, json, pair))
            return false;
        if (pair.size() != 2)
            return reader.expected("two numbers");
        point = {pair[0], pair[1]};
        return true;
    }
    static JSON written(const CGPoint& point) { return JSON::Array{point.x, point.y}; }
};

/// The origin and the size, [[x, y], [width, height]].
template <> struct JSONCoding<CGRect> {
    static bool read(JSONReader& reader, const JSONView& json, CGRect& rect)
    {
        std::vector<CGPoint> corners;
        if (!JSONCoding<std::vector<CGPoint>>::read(reader, json, corners))
            return false;
        if (corners.size() != 2)
            return reader.expected("two pairs of numbers");
        rect = CGRect(corners[0].x, corners[0].y, corners[1].x, corners[1].y);
        return true;
    }
    static JSON written(const CGRect& rect)
    {
        return JSON::Array{JSON::Array{rect.origin.x, rect.origin.y},
                           JSON::Array{rect.size.width, rect.size.height}};
    }
};

template <> struct JSONRecord<HealSpot> {
    static void fields(auto& field, auto& spot)
    {
        field("x", spot.x);
        field("y", spot.y);
        field("r", spot.r);
    }
};

template <> struct JSONRecord<EditState::Light> {
    static void fields(auto& field, auto& light)
    {
        field("id", light.id);
        field("type", light.type);
        field("mode", light.mode);
        field("brightness", light.brightness);
        field("warmth", light.warmth);
        field("contrast", light.contrast);
        field("saturation", light.saturation);
        field("radius", light.radius);
        field("feather", light.feather);
        field("invert", light.invert);
        field("x", light.x);
        field("y", light.y);
        field("angle", light.angle);
        field("strokes", light.strokes);
    }
};

template <> struct JSONRecord<EditState::TextLayer> {
    static void fields(auto& field, auto& layer)
    {
        field("id", layer.id);
        field("text", layer.text);
        field("x", layer.x);
        field("y", layer.y);
        field("size", layer.size);
        field("colorHex", layer.colorHex);
        field("font", layer.font);
        field("shadow", layer.shadow);
    }
};

namespace {

/// The table of the sixteen fields. Not a JSONRecord<EditState>: so it stays out of the header, and
/// with it the tables of everything that a state is made of.
void fieldsOf(auto& field, auto& state)
{
    field("adjust", state.adjust);
    field("curve", state.curve);
    field("lights", state.lights);
    field("healSpots", state.healSpots);
    field("crop", state.crop);
    field("rotation", state.rotation);
    field("flipH", state.flipH);
    field("flipV", state.flipV);
    field("aspectId", state.aspectId);
    field("lookStrength", state.lookStrength);
    field("lutID", state.lutID);
    field("lutAmount", state.lutAmount);
    field("canvasAspect", state.canvasAspect);
    field("canvasFill", state.canvasFill);
    field("canvasColor", state.canvasColor);
    field("texts", state.texts);
}

} // namespace

bool JSONCoding<EditState>::read(JSONReader& reader, const JSONView& json, EditState& state)
{
    if (!json.isObject())
        return reader.expected("an object");
    JSONFieldReader field(reader, json);
    fieldsOf(field, state);
    return reader.ok();
}

JSON JSONCoding<EditState>::written(const EditState& state)
{
    JSONFieldWriter field;
    fieldsOf(field, state);
    return std::move(field.object);
}

Result<EditState> decodeEditState(std::string_view text)
{
    return decodedText<EditState>(text);
}

Result<std::string> encodedEditState(const EditState& state)
{
    return encoded(state);
}

} // namespace orvane
