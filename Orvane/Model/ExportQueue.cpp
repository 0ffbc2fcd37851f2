#include "ExportQueue.h"

#include "AtomicFile.h"
#include "FileSystem.h"

#include <QMetaObject>

#include <exception>
#include <utility>

namespace orvane {

namespace {

/// Share of an export's time that passes while rows are drawn. HEIF's encoder begins with the last
/// row, and takes some ten times as long as all that comes before it.
double shareOfRows(ExportFormat format)
{
    return format == ExportFormat::heic ? 0.1 : 1;
}

} // namespace

class ExportQueue::Ticket {
public:
    explicit Ticket(Observer hears)
        : observer(std::move(hears))
    {
    }

    /// Of the two, only one can succeed, and only once.
    bool finish() { return leaveRunning(Phase::Finishing); }
    bool cancel()
    {
        if (!leaveRunning(Phase::Cancelled))
            return false;
        token.cancel();
        return true;
    }
    bool isCancelled() const { return m_phase == Phase::Cancelled; }

    const Observer observer;
    CancellationToken token;
    std::atomic<double> progress = 0;
    std::atomic<bool> isMessageUnderWay = false;

private:
    enum class Phase { Running, Finishing, Cancelled };
    bool leaveRunning(Phase phase)
    {
        Phase running = Phase::Running;
        return m_phase.compare_exchange_strong(running, phase);
    }
    std::atomic<Phase> m_phase = Phase::Running;
};

ExportQueue::ExportQueue()
{
    m_pool.setMaxThreadCount(1);
}

ExportQueue::~ExportQueue()
{
    m_pool.clear();
    for (const auto& each : m_tickets) {
        if (const auto ticket = each.lock())
            ticket->cancel();
    }
    m_pool.waitForDone();
}

std::shared_ptr<ExportQueue::Ticket> ExportQueue::start(Job job, Observer observer)
{
    auto ticket = std::make_shared<Ticket>(std::move(observer));
    std::erase_if(m_tickets, [](const auto& each) { return each.expired(); });
    m_tickets.push_back(ticket);
    m_pool.start([this, ticket, job = std::move(job)] {
        if (ticket->isCancelled())
            return;
        ExportEnd end;
        // What throws here is memory alone.
        try {
            end = bake(job, ticket);
        } catch (const std::exception&) {
            end = {ExportEnd::Kind::NotEncoded, "There is not enough memory."};
        }
        // From here on its end is known, whatever it is, and will be told.
        ticket->finish();
        const auto deliver = [ticket, end = std::move(end)] {
            if (!ticket->isCancelled())
                ticket->observer.done(end);
        };
        QMetaObject::invokeMethod(&m_receiver, deliver, Qt::QueuedConnection);
    });
    return ticket;
}

bool ExportQueue::cancel(const std::shared_ptr<Ticket>& ticket)
{
    return ticket && ticket->cancel();
}

ExportEnd ExportQueue::bake(const Job& job, const std::shared_ptr<Ticket>& ticket)
{
    // An export that was killed has left its unfinished file.
    if (std::filesystem::path folder = folderOf(job.target); folder != m_tidiedFolder) {
        removeAbandonedTemporaries(folder);
        m_tidiedFolder = std::move(folder);
    }
    const CIImage source = job.pixels ? m_ahead.take(job.pixels) : job.source;
    m_ahead.prepare(job.next);
    const double share = shareOfRows(job.options.format);
    ExportWatch watch;
    watch.drawing.cancellation = &ticket->token;
    watch.progress = [&](double rows) { tellProgress(ticket, rows * share); };
    watch.mayFinish = [&] { return ticket->finish(); };
    watch.replaces = job.replaces;
    ExportEnd end =
        bakeFile(finishedImage(source, job.state, job.lut), job.options, job.target, watch);
    // Nobody will come for the next picture.
    if (ticket->isCancelled())
        m_ahead.prepare(nullptr);
    return end;
}

/// One message at a time is under way, and takes the newest figure with it: a busy main thread
/// finds one, not a queue of old ones.
void ExportQueue::tellProgress(const std::shared_ptr<Ticket>& ticket, double share)
{
    ticket->progress = share;
    if (ticket->isMessageUnderWay.exchange(true))
        return;
    const auto deliver = [ticket] {
        ticket->isMessageUnderWay = false;
        if (!ticket->isCancelled())
            ticket->observer.progress(ticket->progress);
    };
    QMetaObject::invokeMethod(&m_receiver, deliver, Qt::QueuedConnection);
}

} // namespace orvane
