#include "ThreadPool.h"

#include <algorithm>
#include <atomic>

namespace orvane {

ThreadPool::ThreadPool(int workers)
{
    const int count = workers > 0 ? workers : std::max(1, int(std::thread::hardware_concurrency()));
    for (int i = 1; i < count; ++i)
        m_threads.emplace_back([this, i] { serve(i); });
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

void ThreadPool::serve(int worker)
{
    uint64_t seen = 0;
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [&] { return m_stopping || m_round != seen; });
        if (m_stopping)
            return;
        seen = m_round;
        const auto* body = m_body;
        lock.unlock();
        (*body)(worker);
        lock.lock();
        if (--m_running == 0)
            m_changed.notify_all();
    }
}

void ThreadPool::runOnAll(const std::function<void(int)>& body)
{
    const std::lock_guard callers(m_callers);
    {
        const std::lock_guard lock(m_mutex);
        m_body = &body;
        m_running = int(m_threads.size());
        ++m_round;
    }
    m_changed.notify_all();
    body(0);
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return m_running == 0; });
    m_body = nullptr;
}

void ThreadPool::forEach(int count, const std::function<void(int, int)>& body)
{
    std::atomic<int> next = 0;
    runOnAll([&](int worker) {
        for (int i = next.fetch_add(1); i < count; i = next.fetch_add(1))
            body(i, worker);
    });
}

} // namespace orvane
