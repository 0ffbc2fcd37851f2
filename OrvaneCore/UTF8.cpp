#include "UTF8.h"

namespace orvane {

size_t utf8Length(std::string_view text, size_t at)
{
    const auto byte = [&](size_t k) { return static_cast<unsigned char>(text[at + k]); };
    const unsigned lead = byte(0);
    if (lead < 0x80)
        return 1;
    const size_t length = lead < 0xe0 ? 2 : lead < 0xf0 ? 3 : 4;
    if (lead < 0xc2 || lead > 0xf4 || text.size() - at < length)
        return 0;
    for (size_t k = 1; k < length; ++k) {
        if ((byte(k) & 0xc0) != 0x80)
            return 0;
    }
    // The second byte's bounds keep out overlong forms, surrogates and what lies past U+10FFFF.
    const unsigned second = byte(1);
    if ((lead == 0xe0 && second < 0xa0) || (lead == 0xed && second > 0x9f)
        || (lead == 0xf0 && second < 0x90) || (lead == 0xf4 && second > 0x8f))
        return 0;
    return length;
}

bool isUTF8(std::string_view text)
{
    size_t at = 0;
    while (at < text.size()) {
        const size_t length = utf8Length(text, at);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

} // namespace orvane
