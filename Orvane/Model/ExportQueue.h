#pragma once

#include "BakeChain.h"
#include "SourceAhead.h"

#include <QObject>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace orvane {

/// Bakes pictures into files in the background, strictly one at a time, so that one full-size
/// picture is drawn at once, whoever asks. What it is given are value copies. Its messages come to
/// the thread that it lives on, through its event loop.
class ExportQueue {
public:
    struct Job {
        CIImage source = {}; ///< without one, `pixels` are decoded when it is this job's turn
        SourceAhead::Pixels pixels = {};
        SourceAhead::Pixels next = {}; ///< decoded meanwhile, for the job that follows; may be null
        EditState state;
        std::optional<LUT> lut = {};
        ExportOptions options;
        std::filesystem::path target;
        bool replaces = true; ///< a file that is there gives way
    };
    struct Observer {
        std::function<void(double)> progress; ///< 0..1, rising
        std::function<void(const ExportEnd&)> done;
    };
    /// A job on its way.
    class Ticket;

    ExportQueue();
    /// Drops what waits and cancels what runs. Waits until the engine lets go: HEIF's encoder ends
    /// its picture first.
    ~ExportQueue();
    ExportQueue(const ExportQueue&) = delete;
    ExportQueue& operator=(const ExportQueue&) = delete;

    std::shared_ptr<Ticket> start(Job job, Observer observer);
    /// True: the job is stopped, nothing of it comes into the target's place, and its observer
    /// hears no more; its memory goes when the engine lets go. False: it has just been finished,
    /// and done() will come.
    bool cancel(const std::shared_ptr<Ticket>& ticket);
    /// Lets go of what has been decoded ahead: no job will come for it.
    void forgetNext() { m_ahead.prepare(nullptr); }

private:
    ExportEnd bake(const Job& job, const std::shared_ptr<Ticket>& ticket);
    void tellProgress(const std::shared_ptr<Ticket>& ticket, double share);

    QObject m_receiver;
    std::vector<std::weak_ptr<Ticket>> m_tickets; ///< those that wait or run, and some of the past
    SourceAhead m_ahead;
    std::filesystem::path m_tidiedFolder; ///< by the pool's thread
    QThreadPool m_pool; ///< of one thread; last, so that it is through before the rest goes
};

} // namespace orvane
