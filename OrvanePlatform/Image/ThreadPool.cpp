#include "ThreadPool.h"

#include <algorithm>
#include <system_error>

namespace orvane {

struct ThreadPool::Running {
    const Job* job = nullptr;
    int underWay = 0;
    bool finished = false;
    std::exception_ptr failure;
};

ThreadPool::ThreadPool(int workers)
{
    const int count = workers > 0 ? workers : std::max(1, int(std::thread::hardware_concurrency()));
    m_threads.reserve(size_t(count));
    try {
        for (int slot = 1; slot < count; ++slot)
            m_threads.emplace_back([this, slot] { serve(slot); });
    } catch (const std::system_error&) {
        // The system gives no more: those that run do the work.
    }
}

ThreadPool::~ThreadPool()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

ThreadPool::Step ThreadPool::doStep(Running& running, int slot, std::unique_lock<std::mutex>& lock)
{
    if (running.finished)
        return Step::Finished;
    ++running.underWay;
    lock.unlock();
    Step step = Step::Finished;
    std::exception_ptr failure;
    try {
        step = (*running.job)(slot);
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    --running.underWay;
    if (failure && !running.failure)
        running.failure = failure;
    running.finished = running.finished || step == Step::Finished;
    if (step != Step::Waiting || running.finished) {
        ++m_changes;
        m_changed.notify_all();
    }
    return step;
}

void ThreadPool::serve(int slot)
{
    std::unique_lock lock(m_mutex);
    while (!m_stopping) {
        const uint64_t seen = m_changes;
        bool worked = false;
        for (size_t i = m_jobs.size(); i > 0 && !worked;) {
            const std::shared_ptr<Running> running = m_jobs[i - 1];
            worked = doStep(*running, slot, lock) == Step::Worked;
            // The list may have changed while the step was under way; then `seen` has, too.
            i = std::min(i - 1, m_jobs.size());
        }
        if (!worked)
            m_changed.wait(lock, [&] { return m_stopping || m_changes != seen; });
    }
}

void ThreadPool::run(const Job& job)
{
    const auto running = std::make_shared<Running>();
    running->job = &job;
    std::unique_lock lock(m_mutex);
    m_jobs.push_back(running);
    ++m_changes;
    m_changed.notify_all();
    while (!running->finished) {
        const uint64_t seen = m_changes;
        if (doStep(*running, 0, lock) == Step::Waiting)
            m_changed.wait(lock, [&] { return running->finished || m_changes != seen; });
    }
    m_jobs.erase(std::find(m_jobs.begin(), m_jobs.end(), running));
    m_changed.wait(lock, [&] { return running->underWay == 0; });
    if (running->failure)
        std::rethrow_exception(running->failure);
}

} // namespace orvane
