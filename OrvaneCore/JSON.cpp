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

bool isUTF8(std::string_view text)
{
    size_t i = 0;
    while (i < text.size()) {
        const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[k]); };
        const unsigned lead = byte(i);
        const size_t length = lead < 0x80 ? 1
            : lead < 0xc2                 ? 0
            : lead < 0xe0                 ? 2
            : lead < 0xf0                 ? 3
                                          : 4;
        if (length == 0 || lead > 0xf4 || text.size() - i < length)
            return false;
        for (size_t k = 1; k < length; ++k) {
            if ((byte(i + k) & 0xc0) != 0x80)
                return false;
        }
        // The second byte's bounds keep out overlong forms, surrogates and what lies past U+10FFFF.
        const unsigned second = length > 1 ? byte(i + 1) : 0;
        if ((lead == 0xe0 && second < 0xa0) || (lead == 0xed && second > 0x9f)
            || (lead == 0xf0 && second < 0x90) || (lead == 0xf4 && second > 0x8f))
            return false;
        i += length;
    }
    return true;
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
