#include "JSONReader.h"

namespace orvane {

bool JSONReader::fail(std::string_view complaint)
{
    if (!m_error)
        m_error = m_path.error(complaint);
    return false;
}

const JSON* JSONReader::required(const JSON::Object& object, std::string_view key)
{
    const auto member = object.find(key);
    if (member != object.end())
        return &member->second;
    at(key, [&] { return fail("is missing"); });
    return nullptr;
}

} // namespace orvane
