#include "JSONReader.h"

namespace orvane {

bool JSONReader::fail(std::string_view complaint)
{
    // Only the first stands where the fault is: callers that give up may complain again further
    // out.
    if (!m_error)
        m_error = m_path.error(complaint);
    return false;
}

std::optional<JSONView> JSONReader::required(const JSONView& object, std::string_view key)
{
    const std::optional<JSONView> member = object.member(key);
    // The path names what is missing, not the object that it is missing from.
    if (!member)
        at(key, [&] { return fail("is missing"); });
    return member;
}

} // namespace orvane
