#pragma once

#include "BakeChain.h"
#include "CIContext.h"

#include <QObject>

#include <memory>

class QThreadPool;

namespace orvane {

/// Writes finished files in the background, one at a time. What it is given are value copies: the
/// edit may go on meanwhile.
class Exporter final : public QObject {
    Q_OBJECT

public:
    struct Job {
        CIImage source;
        EditState state;
        ExportOptions options;
        std::filesystem::path target;
    };

    /// The pool must outlive the exporter, and be empty before the program ends.
    explicit Exporter(QThreadPool& pool);
    ~Exporter() override;

    bool isRunning() const { return m_token != nullptr; }
    /// Only when none is running.
    void start(Job job);
    /// finished() still comes, when the engine has let go. The target is as it was.
    void cancel();

Q_SIGNALS:
    /// An empty text: written, or cancelled; otherwise why not.
    void finished(const std::string& failure);

private:
    QThreadPool& m_pool;
    std::shared_ptr<CancellationToken> m_token;
};

} // namespace orvane
