#pragma once

#include "InstanceChannel.h"

#include <string>

class QSocketNotifier;

namespace orvane {

/// One connection to the listener, read until its message is whole or broken; deletes itself then.
class InstanceCaller final : public QObject {
    Q_OBJECT

public:
    /// The connection is this object's to close.
    InstanceCaller(int connection, InstanceListener::OnFiles onFiles, QObject* parent);
    ~InstanceCaller() override;

private:
    void read();
    void answer(const std::vector<std::filesystem::path>& files);
    void end();

    int m_connection;
    InstanceListener::OnFiles m_onFiles;
    QSocketNotifier* m_notifier;
    std::string m_bytes;
};

} // namespace orvane
