#include "JSONReader.h"

namespace orvane {

bool JSONReader::fail(std::string_view complaint)
{
    if (!m_error)
        m_error = m_path.error(complaint);
    return false;
}

std::optional<JSONView> JSONReader::required(const JSONView& object, std::string_view key)
{
    const std::optional<JSONView> member = object.member(key);
    if (!member)
        at(key, [&] { return fail("is missing"); });
    return member;
}

} // namespace orvane
