#include "ExifBlock.h"

#include <exception>
#include <limits>
#include <mutex>

namespace orvane {

static void lockXmp(void* mutex, bool lock)
{
    auto& xmpMutex = *static_cast<std::recursive_mutex*>(mutex);
    if (lock)
        xmpMutex.lock();
    else
        xmpMutex.unlock();
}

void prepareMetadataLibrary()
{
    static std::recursive_mutex xmpMutex;
    static std::once_flag once;
    std::call_once(once, [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::XmpParser::initialize(lockXmp, &xmpMutex);
    });
}

bool isMakerNote(const Exiv2::Exifdatum& entry)
{
    const std::string group = entry.groupName();
    return group == "MakerNote" || (group == "Photo" && entry.tag() == 0x927c)
        || Exiv2::ExifTags::isMakerGroup(group);
}

std::optional<ExifBlock> parsedExif(const std::vector<uint8_t>& bytes)
{
    prepareMetadataLibrary();
    if (bytes.size() < 8 || bytes.size() > std::numeric_limits<uint32_t>::max())
        return std::nullopt;
    try {
        ExifBlock block;
        block.byteOrder =
            Exiv2::ExifParser::decode(block.data, bytes.data(), uint32_t(bytes.size()));
        if (block.byteOrder == Exiv2::invalidByteOrder || block.data.empty())
            return std::nullopt;
        return block;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

std::vector<uint8_t> encodedExif(const ExifBlock& block, const std::vector<uint8_t>& original)
{
    try {
        Exiv2::Blob blob;
        std::vector<uint8_t> updated = original; // the library may write into it
        const Exiv2::WriteMethod method = Exiv2::ExifParser::encode(
            blob, updated.data(), uint32_t(updated.size()), block.byteOrder, block.data);
        return method == Exiv2::wmNonIntrusive ? updated : blob;
    } catch (const std::exception&) {
        return {};
    }
}

std::vector<uint8_t> exifAtMost(const std::vector<uint8_t>& bytes, size_t limit)
{
    if (bytes.size() <= limit)
        return bytes;
    std::optional<ExifBlock> block = parsedExif(bytes);
    if (!block)
        return {};
    // From nothing rather than from the old layout: bytes that no tag owns go as well.
    Exiv2::ExifThumb(block->data).erase();
    std::vector<uint8_t> smaller = encodedExif(*block, {});
    if (smaller.size() > limit) {
        eraseWhere(block->data, isMakerNote);
        smaller = encodedExif(*block, {});
    }
    if (smaller.size() > limit)
        smaller.clear();
    return smaller;
}

} // namespace orvane
