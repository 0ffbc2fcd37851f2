#include "SingleInstance.h"

#include "InstanceMessage.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace orvane {

namespace {

namespace fs = std::filesystem;

bool isPrivateFolder(const fs::path& folder)
{
    struct stat found { };
    return ::lstat(folder.c_str(), &found) == 0 && S_ISDIR(found.st_mode)
        && found.st_uid == ::geteuid() && (found.st_mode & 0077) == 0;
}

/// A folder that only this user can write to; empty when there is none. In the temporary folder
/// anybody may have made one of that name before.
fs::path privateFolder()
{
    const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
    if (runtime && runtime[0] == '/' && isPrivateFolder(runtime))
        return runtime;
    std::error_code failed;
    const fs::path own =
        fs::temp_directory_path(failed) / ("orvane-" + std::to_string(::geteuid()));
    if (failed)
        return {};
    ::mkdir(own.c_str(), 0700);
    return isPrivateFolder(own) ? own : fs::path();
}

/// The lock's descriptor, or -1. Sets `isTaken` when another holds it.
int lockedFile(const fs::path& path, bool& isTaken)
{
    const int file = ::open(path.c_str(), O_CREAT | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
    if (file < 0)
        return -1;
    if (::flock(file, LOCK_EX | LOCK_NB) == 0)
        return file;
    isTaken = errno == EWOULDBLOCK;
    ::close(file);
    return -1;
}

} // namespace

SingleInstance::SingleInstance(const fs::path& key)
{
    const fs::path folder = privateFolder();
    if (folder.empty())
        return;
    // A socket's path is short: 107 bytes.
    const QByteArray digest = QCryptographicHash::hash(QByteArray::fromStdString(key.string()),
                                                       QCryptographicHash::Sha256);
    const std::string name = "orvane-" + digest.toHex().left(16).toStdString();
    m_socket = folder / (name + ".socket");
    bool isTaken = false;
    m_lock = lockedFile(folder / (name + ".lock"), isTaken);
    m_isFirst = !isTaken;
}

SingleInstance::~SingleInstance()
{
    // The socket goes before the lock, so that it is never the next one's.
    m_listener.reset();
    if (m_lock >= 0)
        ::close(m_lock);
}

bool SingleInstance::handOver(const std::vector<fs::path>& files) const
{
    if (m_isFirst)
        return false;
    std::vector<fs::path> whole;
    for (const fs::path& file : files) {
        std::error_code failed;
        whole.push_back(fs::absolute(file, failed));
        if (failed)
            return false;
    }
    return sendToInstance(m_socket, InstanceMessage::encoded(whole));
}

void SingleInstance::listen(OnFiles onFiles)
{
    if (m_lock >= 0)
        m_listener = std::make_unique<InstanceListener>(m_socket, std::move(onFiles));
}

} // namespace orvane
