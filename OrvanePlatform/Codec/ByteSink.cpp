#include "PictureEncoder.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>

#include <unistd.h>

namespace orvane {

// Large enough that a network disk sees few writes, small enough to stay in the cache.
static constexpr size_t bufferCapacity = size_t(1) << 20;

bool MemoryByteSink::write(const void* data, size_t size)
{
    if (size == 0)
        return true;
    const uint64_t end = m_position + size;
    try {
        if (end > m_bytes.size())
            m_bytes.resize(end);
    } catch (const std::bad_alloc&) {
        return false;
    }
    std::memcpy(m_bytes.data() + m_position, data, size);
    m_position = end;
    return true;
}

bool MemoryByteSink::seek(uint64_t position)
{
    m_position = position;
    return true;
}

size_t MemoryByteSink::read(void* data, size_t size)
{
    if (m_position >= m_bytes.size())
        return 0;
    const size_t count = std::min<uint64_t>(size, m_bytes.size() - m_position);
    std::memcpy(data, m_bytes.data() + m_position, count);
    m_position += count;
    return count;
}

FileByteSink::FileByteSink(int fileDescriptor)
    : m_fileDescriptor(fileDescriptor)
{
    m_buffer.reserve(bufferCapacity);
}

bool FileByteSink::write(const void* data, size_t size)
{
    if (m_position != m_bufferPosition + m_buffer.size() && !flush())
        return false;
    if (m_buffer.size() + size > bufferCapacity && !flush())
        return false;
    const auto* bytes = static_cast<const uint8_t*>(data);
    if (size >= bufferCapacity) {
        if (!writeOut(bytes, size, m_position))
            return false;
        m_bufferPosition = m_position + size;
    } else {
        if (m_buffer.empty())
            m_bufferPosition = m_position;
        m_buffer.insert(m_buffer.end(), bytes, bytes + size);
    }
    m_position += size;
    m_size = std::max(m_size, m_position);
    return m_error == 0;
}

bool FileByteSink::seek(uint64_t position)
{
    m_position = position;
    return m_error == 0;
}

size_t FileByteSink::read(void* data, size_t size)
{
    if (!flush())
        return 0;
    auto* bytes = static_cast<uint8_t*>(data);
    size_t done = 0;
    while (done < size) {
        const ssize_t count =
            ::pread(m_fileDescriptor, bytes + done, size - done, off_t(m_position + done));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        done += size_t(count);
    }
    m_position += done;
    return done;
}

bool FileByteSink::flush()
{
    if (!m_buffer.empty() && writeOut(m_buffer.data(), m_buffer.size(), m_bufferPosition)) {
        m_bufferPosition += m_buffer.size();
        m_buffer.clear();
    }
    return m_error == 0;
}

bool FileByteSink::writeOut(const uint8_t* data, size_t size, uint64_t position)
{
    size_t done = 0;
    while (m_error == 0 && done < size) {
        const ssize_t count =
            ::pwrite(m_fileDescriptor, data + done, size - done, off_t(position + done));
        if (count >= 0)
            done += size_t(count);
        else if (errno != EINTR)
            m_error = errno;
    }
    return m_error == 0;
}

std::string FileByteSink::failure() const
{
    if (m_error == ENOSPC || m_error == EDQUOT)
        return "There is not enough free space on the disk.";
    if (m_error != 0)
        return "The file could not be written: " + std::generic_category().message(m_error) + ".";
    return ByteSink::failure();
}

} // namespace orvane
