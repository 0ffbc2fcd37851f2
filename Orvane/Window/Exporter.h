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

    /// What came of a job: the file is there, or why not; neither when it was cancelled.
    struct End {
        bool isWritten = false;
        std::string failure = {}; ///< one sentence
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
    void finished(const orvane::Exporter::End& end);

private:
    QThreadPool& m_pool;
    std::shared_ptr<CancellationToken> m_token;
};

} // namespace orvane
