#include "InstanceChannel.h"

#include "InstanceCaller.h"
#include "InstanceMessage.h"

#include <QSocketNotifier>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <optional>
#include <thread>

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace orvane {

namespace {

using Clock = std::chrono::steady_clock;
constexpr auto patience = std::chrono::seconds(2);
/// More at a time come from no person.
constexpr int mostCallers = 32;

std::optional<sockaddr_un> addressOf(const std::filesystem::path& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.empty() || path.native().size() >= sizeof address.sun_path)
        return std::nullopt;
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    return address;
}

int newSocket()
{
    return ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
}

const sockaddr* asAddress(const sockaddr_un& address)
{
    return reinterpret_cast<const sockaddr*>(&address);
}

bool isOfThisUser(int connection)
{
    ucred peer{};
    socklen_t size = sizeof peer;
    return ::getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0
        && peer.uid == ::geteuid();
}

/// Whether the socket is ready before the deadline.
bool waitFor(int socket, short event, Clock::time_point deadline)
{
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    pollfd wanted{socket, event, 0};
    return left > 0 && ::poll(&wanted, 1, int(left)) == 1;
}

/// The message out and the answer in.
bool converse(int socket, std::string_view message, Clock::time_point deadline)
{
    while (!message.empty()) {
        const ssize_t sent = ::send(socket, message.data(), message.size(), MSG_NOSIGNAL);
        if (sent > 0)
            message.remove_prefix(size_t(sent));
        else if (errno != EAGAIN || !waitFor(socket, POLLOUT, deadline))
            return false;
    }
    char answer = 0;
    return waitFor(socket, POLLIN, deadline) && ::recv(socket, &answer, 1, 0) == 1
        && answer == InstanceMessage::taken;
}

} // namespace

InstanceListener::InstanceListener(const std::filesystem::path& socket, OnFiles onFiles)
    : m_path(socket)
    , m_onFiles(std::move(onFiles))
{
    const auto address = addressOf(socket);
    m_socket = address ? newSocket() : -1;
    if (m_socket < 0)
        return;
    ::unlink(socket.c_str());
    if (::bind(m_socket, asAddress(*address), sizeof *address) != 0
        || ::chmod(socket.c_str(), 0600) != 0 || ::listen(m_socket, mostCallers) != 0)
        return;
    auto* notifier = new QSocketNotifier(m_socket, QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &InstanceListener::accept);
}

InstanceListener::~InstanceListener()
{
    if (m_socket < 0)
        return;
    ::unlink(m_path.c_str());
    ::close(m_socket);
}

void InstanceListener::accept()
{
    const int connection = ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (connection < 0)
        return;
    if (m_callers >= mostCallers || !isOfThisUser(connection)) {
        ::close(connection);
        return;
    }
    ++m_callers;
    auto* caller = new InstanceCaller(connection, m_onFiles, this);
    connect(caller, &QObject::destroyed, this, [this] { --m_callers; });
}

bool sendToInstance(const std::filesystem::path& path, std::string_view message)
{
    const auto address = addressOf(path);
    const auto deadline = Clock::now() + patience;
    while (address && Clock::now() < deadline) {
        const int socket = newSocket();
        if (socket < 0)
            return false;
        const bool connected = ::connect(socket, asAddress(*address), sizeof *address) == 0;
        const bool taken = connected && isOfThisUser(socket) && converse(socket, message, deadline);
        ::close(socket);
        if (connected)
            return taken;
        // The first one may have its lock already and not yet listen.
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

} // namespace orvane
