#pragma once

#include <QObject>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace orvane {

/// Where the first program listens. Needs an event loop. Whatever else is sent there is refused
/// and forgotten; only programs of the same user are heard.
class InstanceListener : public QObject {
    Q_OBJECT

public:
    using OnFiles = std::function<void(const std::vector<std::filesystem::path>&)>;
    /// Takes the path's place from whatever is left of an earlier run. A path that no socket can
    /// have leaves it deaf.
    InstanceListener(const std::filesystem::path& socket, OnFiles onFiles);
    ~InstanceListener() override;

private:
    void accept();

    std::filesystem::path m_path;
    OnFiles m_onFiles;
    int m_socket = -1;
    int m_callers = 0; ///< with a message under way
};

/// Sends a message to a listener and waits for its answer, for two seconds in all, in which the
/// listener may also come into being.
bool sendToInstance(const std::filesystem::path& socket, std::string_view message);

} // namespace orvane
