#include "SessionRules.h"

namespace orvane::SessionRules {

bool needsCollectionForVariant(const std::optional<std::string>& source, bool inCollection)
{
    return source.has_value() && !inCollection;
}

LutState lutState(std::string_view id, bool canLoad)
{
    if (id.empty())
        return LutState::None;
    return canLoad ? LutState::Loaded : LutState::Missing;
}

} // namespace orvane::SessionRules
