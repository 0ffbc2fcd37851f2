#include "InstanceCaller.h"

#include "InstanceMessage.h"

#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <array>
#include <cerrno>

#include <sys/socket.h>
#include <unistd.h>

namespace orvane {

namespace {

/// A caller that says nothing for so long is not one of ours.
constexpr int patienceMilliseconds = 5000;

/// A caller that gave up has closed its end: what it said is not meant any more.
bool isStillThere(int connection)
{
    char next = 0;
    return ::recv(connection, &next, 1, MSG_PEEK) < 0 && errno == EAGAIN;
}

} // namespace

InstanceCaller::InstanceCaller(int connection, InstanceListener::OnFiles onFiles, QObject* parent)
    : QObject(parent)
    , m_connection(connection)
    , m_onFiles(std::move(onFiles))
    , m_notifier(new QSocketNotifier(connection, QSocketNotifier::Read, this))
{
    connect(m_notifier, &QSocketNotifier::activated, this, &InstanceCaller::read);
    QTimer::singleShot(patienceMilliseconds, this, &InstanceCaller::end);
}

InstanceCaller::~InstanceCaller()
{
    ::close(m_connection);
}

void InstanceCaller::read()
{
    std::array<char, 65536> chunk{};
    const ssize_t count = ::recv(m_connection, chunk.data(), chunk.size(), 0);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0) {
        end();
        return;
    }
    m_bytes.append(chunk.data(), size_t(count));
    const InstanceMessage::Decoded message = InstanceMessage::decoded(m_bytes);
    if (message.state == InstanceMessage::State::Complete)
        answer(message.files);
    else if (message.state == InstanceMessage::State::Broken)
        end();
}

void InstanceCaller::answer(const std::vector<std::filesystem::path>& files)
{
    const bool isMeant = isStillThere(m_connection)
        && ::send(m_connection, &InstanceMessage::taken, 1, MSG_NOSIGNAL) == 1;
    // The files may raise a question, and this must not wait for it.
    const auto onFiles = m_onFiles;
    end();
    if (isMeant && onFiles)
        onFiles(files);
}

void InstanceCaller::end()
{
    m_notifier->setEnabled(false);
    deleteLater();
}

} // namespace orvane
