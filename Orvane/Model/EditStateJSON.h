#pragma once

#include "EditState.h"
#include "JSONCoding.h"

namespace orvane {

/// The stored form of an edit: an object of exactly the sixteen fields, each a required read. The
/// defaults of a new state never fill a gap in a file.
template <> struct JSONCoding<EditState> {
    static bool read(JSONReader& reader, const JSONView& json, EditState& state);
    static JSON written(const EditState& state);
};

/// Curve points are stored by other records too: {"x": 0, "y": 255}.
template <> struct JSONRecord<EditState::CurvePoint> {
    static void fields(auto& field, auto& point)
    {
        field("x", point.x);
        field("y", point.y);
    }
};

/// The error names the place: "lights[2].radius: expected a number".
Result<EditState> decodeEditState(std::string_view text);

/// All sixteen fields, the empty ones too. Fails on a number that is not finite and on a text that
/// is not UTF-8, which no JSON can hold.
Result<std::string> encodedEditState(const EditState& state);

} // namespace orvane
