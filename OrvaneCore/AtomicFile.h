#pragma once

#include "Result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// A file that comes into being whole or not at all. The bytes go to a temporary file in the
/// target's own folder; commit() puts it in the target's place, and until then an old file stays as
/// it was. The temporary file is removed when the object goes without a commit.
///
/// A symbolic link is followed: the file that it points to is replaced and the link stays. A
/// replaced file hands its permission bits on; a new one gets those of the process's umask.
class AtomicFile {
public:
    /// Errors say why nothing can be written there: no folder, no permission, a folder in the way.
    static Result<AtomicFile> create(const std::filesystem::path& target);

    AtomicFile(AtomicFile&& other) noexcept;
    AtomicFile& operator=(AtomicFile&& other) noexcept;
    ~AtomicFile();

    /// The temporary file, open for reading and writing, for encoders that stream and seek. It
    /// stays this object's to close; a writer with buffers of its own flushes them before commit().
    int descriptor() const { return m_descriptor; }

    /// Appends the bytes at the descriptor's position.
    Result<void> write(const void* data, size_t size);

    /// Brings the bytes to the disk: what takes long in commit(). On failure the temporary file is
    /// gone.
    Result<void> sync();

    /// What becomes of a file that is in the target's place.
    enum class Existing { Replaced, Respected };
    /// Brings the bytes to the disk and puts them in the target's place. On failure the temporary
    /// file is gone and the old one untouched, unless it was only the folder that could not be
    /// brought to the disk after the exchange. Only once, and not after cancel().
    Result<void> commit(Existing existing = Existing::Replaced);

    /// Removes the temporary file; the target stays as it was. Harmless when done twice.
    void cancel();

private:
    AtomicFile() = default;
    Error failure(int code) const;

    std::filesystem::path m_target; ///< with the last link followed
    std::filesystem::path m_temporary;
    int m_descriptor = -1;
};

/// The bytes as the whole content of `target`, through an AtomicFile.
Result<void> writeFile(const std::filesystem::path& target, std::string_view bytes);

/// What kept a file from being read: the file, or the system, which was short of descriptors or
/// memory or out of touch with a server. Then the file may be as good as ever.
enum class ReadFault { File, System };

/// The whole content of a file; an error when it is larger than maxBytes, when there is no memory
/// for it or when it is no regular file. Sets the fault, if asked for, when it fails.
Result<std::vector<uint8_t>> readFile(const std::filesystem::path& path, size_t maxBytes,
                                      ReadFault* fault = nullptr);
Result<std::string> readTextFile(const std::filesystem::path& path, size_t maxBytes,
                                 ReadFault* fault = nullptr);

/// Removes the temporary files in a folder whose writer was killed before it could.
void removeAbandonedTemporaries(const std::filesystem::path& folder);

} // namespace orvane
