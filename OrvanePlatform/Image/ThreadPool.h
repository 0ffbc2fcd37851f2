#pragma once

#include <condition_variable>
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

    struct Running;
    /// Begins a job that the other threads work at whenever newer ones leave them idle. The job
    /// must outlive it, and `finish` must be called.
    std::shared_ptr<Running> start(const Job& job);
    /// Works at a started job until `enough` says so or it has finished. `enough` is asked after
    /// steps of this pool; it must not call back into it.
    void help(Running& running, const std::function<bool()>& enough);
    /// To a started job's end, as `run`.
    void finish(Running& running);
    /// Has those who wait look again, after something outside of any step gave a job more to do.
    void notify();

    /// body(index, slot) for every index below count, handed out in order.
    void forEach(int count, const std::function<void(int, int)>& body);

private:
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
