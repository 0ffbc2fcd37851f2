#include "InstanceMessage.h"

namespace orvane::InstanceMessage {

namespace {

constexpr std::string_view magic = "ORV1";

uint32_t lengthIn(std::string_view header)
{
    uint32_t length = 0;
    for (size_t i = 0; i < 4; ++i)
        length |= uint32_t(uint8_t(header[magic.size() + i])) << (8 * i);
    return length;
}

} // namespace

std::string encoded(const std::vector<std::filesystem::path>& files)
{
    std::string body;
    for (const std::filesystem::path& file : files)
        body += file.string() + '\0';
    std::string message(magic);
    for (int shift = 0; shift < 32; shift += 8)
        message += char(uint8_t(body.size() >> shift));
    return message + body;
}

Decoded decoded(std::string_view bytes)
{
    if (bytes.substr(0, magic.size()) != magic.substr(0, bytes.size()))
        return {State::Broken};
    if (bytes.size() < headerBytes)
        return {State::Incomplete};
    const uint32_t length = lengthIn(bytes);
    std::string_view body = bytes.substr(headerBytes);
    if (length > largestBody || body.size() > length)
        return {State::Broken};
    if (body.size() < length)
        return {State::Incomplete};
    Decoded whole{State::Complete};
    while (!body.empty()) {
        const size_t end = body.find('\0');
        if (end == std::string_view::npos || body[0] != '/')
            return {State::Broken};
        whole.files.emplace_back(std::string(body.substr(0, end)));
        body.remove_prefix(end + 1);
    }
    return whole;
}

} // namespace orvane::InstanceMessage
