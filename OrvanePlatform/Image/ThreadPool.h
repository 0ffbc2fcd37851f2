#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace orvane {

/// A fixed set of threads that run one body together. The calling thread takes part, so a pool of
/// one starts no thread at all. Calls from several threads run one after another.
class ThreadPool {
public:
    /// 0: as many workers as the machine has processors.
    explicit ThreadPool(int workers);
    ~ThreadPool();
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    int workers() const { return int(m_threads.size()) + 1; }

    /// Runs body(worker) once on each worker, worker in 0 .. workers() - 1; returns when all are
    /// done.
    void runOnAll(const std::function<void(int)>& body);
    /// Runs body(index, worker) for every index below count, handed out in order.
    void forEach(int count, const std::function<void(int, int)>& body);

private:
    void serve(int worker);

    std::vector<std::thread> m_threads;
    std::mutex m_callers;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    const std::function<void(int)>* m_body = nullptr;
    uint64_t m_round = 0;
    int m_running = 0;
    bool m_stopping = false;
};

} // namespace orvane
