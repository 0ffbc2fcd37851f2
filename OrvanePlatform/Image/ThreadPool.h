#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace orvane {

/// A fixed set of threads that take part in jobs, one small step at a time, the newest job first: a
/// preview that is asked for during an export is drawn at once, and the export goes on after it on
/// the thread that asked for it.
class ThreadPool {
public:
    enum class Step {
        Worked, ///< there may be more
        Waiting, ///< nothing to do until another step of the job is through
        Finished, ///< no step will find anything to do any more
    };
    /// Does one step. Called from several threads at once, each with a slot of its own, 0 ..
    /// slots() - 1.
    using Job = std::function<Step(int slot)>;

    /// 0: as many workers as the machine has processors. The thread that runs a job is one of its
    /// workers, so a pool of one starts no thread at all.
    explicit ThreadPool(int workers);
    ~ThreadPool();
    ThreadPool(const ThreadPool&) = delete;
    ThreadPool& operator=(const ThreadPool&) = delete;

    int slots() const { return int(m_threads.size()) + 1; }

    /// Returns when a step has said Finished and every other one under way is through. What a step
    /// throws ends the job and is thrown here.
    void run(const Job& job);

private:
    struct Running;

    Step doStep(Running& running, int slot, std::unique_lock<std::mutex>& lock);
    void serve(int slot);

    std::vector<std::thread> m_threads;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::vector<std::shared_ptr<Running>> m_jobs; ///< the newest last
    uint64_t m_changes = 0; ///< counts what may have given a waiting thread something to do
    bool m_stopping = false;
};

} // namespace orvane
