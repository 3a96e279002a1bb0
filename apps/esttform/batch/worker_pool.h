// WorkerPool: processes that work on numbered tasks; the answers come back in the order of the numbers.
// Processes, not threads: the random generator belongs to a process, and a fault in one task leaves the others alone.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace esttform::app {

class WorkerPool {
public:
    /// One task, in a worker. What is thrown ends the worker.
    using Work = std::function<std::string(std::int64_t task)>;
    /// One answer. Empty text never is an answer: the worker ended over the task, for the reason given.
    using Take = std::function<void(std::int64_t task, const std::string& answer, const std::string& fault)>;

    /// Forks the workers. They ignore Ctrl-C, which reaches them with the whole group, and end with this process.
    ///
    /// @throws Failure  the system has no more processes or pipes
    WorkerPool(int workerNum, Work work);
    /// Ends the workers at once.
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    /// Works on tasks begin to end - 1 and hands their answers on in this order. Memory holds the answers of a window of
    /// tasks, whatever their number.
    ///
    /// @param tick  called several times a second
    /// @return false if a signal ended it before all was done, see isInterrupted
    bool run(std::int64_t begin, std::int64_t end, const Take& take, const std::function<void()>& tick);

private:
    struct Worker {
        pid_t process = -1;
        int tasks = -1;                     ///< pipe to the worker
        int answers = -1;                   ///< pipe from the worker
        std::deque<std::int64_t> running;   ///< handed out, not answered yet
        std::string received;
    };
    struct Answer {
        std::string text, fault;
    };

    void start(Worker& worker);
    void serve(int tasks, int answers) const;
    void hand(Worker& worker, std::size_t taskNum, std::int64_t end);
    void receive(Worker& worker);
    void replace(Worker& worker);
    std::string stop(Worker& worker) const;

    Work mWork;
    std::vector<Worker> mWorkers;
    std::int64_t mHandedNum = 0;            ///< tasks before this one have been handed out
    std::deque<std::int64_t> mReturned;     ///< tasks of a worker that ended over another
    std::map<std::int64_t, Answer> mDone;   ///< answered, not yet handed on
};

}  // namespace esttform::app
