#include "JSON.h"

namespace orvane {

JSON::JSON(const JSON&) = default;
JSON::JSON(JSON&&) noexcept = default;
JSON& JSON::operator=(const JSON&) = default;
JSON& JSON::operator=(JSON&&) noexcept = default;
JSON::~JSON() = default;
bool JSON::operator==(const JSON& other) const
{
    return m_content == other.m_content;
}

Error JSONPath::error(std::string_view complaint) const
{
    std::string text;
    for (const Step& step : m_steps) {
        if (step.key.data() == nullptr) {
            ((text += '[') += std::to_string(step.index)) += ']';
        } else {
            if (!text.empty())
                text += '.';
            text += step.key;
        }
    }
    if (!text.empty())
        text += ": ";
    return {text += complaint};
}

} // namespace orvane
