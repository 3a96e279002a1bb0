#include "batch/worker_pool.h"

#include "failure.h"
#include "interruption.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#ifdef __linux__
#include <sys/prctl.h>
#endif
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

namespace esttform::app {

namespace {

constexpr std::size_t BLOCK_SIZE = 64 * 1024;
/// Tasks that a worker has at a time, so that it need not wait for the next: more while many are left, when they are handed out
/// in one go; few in the end, so that no worker is left with several.
constexpr std::int64_t TASK_MIN_NUM = 2, TASK_MAX_NUM = 16;
/// Tasks a worker that may be handed out while an earlier one is not done.
constexpr std::int64_t WINDOW_SIZE = 64;
/// A worker gets at most this part of what is left to each.
constexpr std::int64_t SHARE_NUM = 8;
constexpr int TICK_MILLISECONDS = 100;

bool writeAll(int file, const void* data, std::size_t size) noexcept
{
    for (const auto* bytes = static_cast<const char*>(data); size > 0;) {
        const ssize_t written = ::write(file, bytes, size);
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0) {
            bytes += written;
            size -= static_cast<std::size_t>(written);
        }
    }
    return true;
}

bool readAll(int file, void* data, std::size_t size) noexcept
{
    for (auto* bytes = static_cast<char*>(data); size > 0;) {
        const ssize_t got = ::read(file, bytes, size);
        if (got == 0 || (got < 0 && errno != EINTR))
            return false;
        if (got > 0) {
            bytes += got;
            size -= static_cast<std::size_t>(got);
        }
    }
    return true;
}

[[noreturn]] void failToStart(int errorCode)
{
    throw Failure(fmt::format("cannot start a process: {}; fewer --jobs may help", std::strerror(errorCode)), ExitCode::OurFault);
}

}  // namespace

WorkerPool::WorkerPool(int workerNum, Work work) : mWork(std::move(work)), mWorkers(static_cast<std::size_t>(workerNum))
{
    try {
        for (Worker& worker : mWorkers)
            start(worker);
    } catch (...) {
        for (Worker& worker : mWorkers)
            stop(worker);
        throw;
    }
}

WorkerPool::~WorkerPool()
{
    for (Worker& worker : mWorkers)
        stop(worker);
}

void WorkerPool::start(Worker& worker)
{
    std::array<int, 2> tasks{-1, -1}, answers{-1, -1};
    const pid_t parent = ::getpid();
    pid_t process = -1;
    if (::pipe2(tasks.data(), O_CLOEXEC) == 0 && ::pipe2(answers.data(), O_CLOEXEC) == 0)
        process = ::fork();
    if (process == 0) {
        std::signal(SIGINT, SIG_IGN);
        std::signal(SIGTERM, SIG_DFL);
        std::signal(SIGHUP, SIG_DFL);
#ifdef __linux__
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);              // a long task must not outlive the one who asked for it
#endif
        if (::getppid() != parent)
            ::_exit(0);
        for (const Worker& other : mWorkers) {           // a pipe ends when nobody else holds it
            ::close(other.tasks);
            ::close(other.answers);
        }
        ::close(tasks[1]);
        ::close(answers[0]);
        try {
            serve(tasks[0], answers[1]);
        } catch (...) {
            ::_exit(static_cast<int>(ExitCode::OurFault));   // the objects here are the starter's to end
        }
        ::_exit(0);
    }
    const int errorCode = errno;
    ::close(tasks[0]);
    ::close(answers[1]);
    worker.process = process;
    worker.tasks = tasks[1];
    worker.answers = answers[0];
    if (process < 0)
        failToStart(errorCode);
}

/// The life of a worker: until there are no more tasks, or nobody takes the answers.
void WorkerPool::serve(int tasks, int answers) const
{
    std::string answer;
    for (std::int64_t task = 0; readAll(tasks, &task, sizeof task);) {
        const std::string text = mWork(task);
        const std::size_t size = text.size();
        answer.assign(reinterpret_cast<const char*>(&size), sizeof size).append(text);
        if (!writeAll(answers, answer.data(), answer.size()))
            return;
    }
}

/// Ends a worker. @return how it ended
std::string WorkerPool::stop(Worker& worker) const
{
    std::string reason;
    if (worker.process > 0) {
        int status = 0;
        const bool hadEnded = ::waitpid(worker.process, &status, WNOHANG) == worker.process;
        if (!hadEnded) {
            ::kill(worker.process, SIGKILL);
            while (::waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {}
        }
        reason = WIFSIGNALED(status) ? fmt::format("signal {} ({})", WTERMSIG(status), ::strsignal(WTERMSIG(status)))
                                     : fmt::format("exit code {}", WEXITSTATUS(status));
    }
    for (int* const file : {&worker.tasks, &worker.answers})
        if (*file >= 0)
            ::close(std::exchange(*file, -1));
    worker.process = -1;
    return reason;
}

/// A new worker in the place of one that ended over its first task; its other tasks are to be done again.
void WorkerPool::replace(Worker& worker)
{
    siginfo_t info{};                                    // its pipe ends a moment before it does
    while (::waitid(P_PID, static_cast<id_t>(worker.process), &info, WEXITED | WNOWAIT) < 0 && errno == EINTR) {}
    const std::string reason = stop(worker);
    if (!worker.running.empty()) {
        mDone[worker.running.front()].fault = fmt::format("the process that worked on it ended: {}", reason);
        worker.running.pop_front();
    }
    mReturned.insert(mReturned.begin(), worker.running.begin(), worker.running.end());
    worker.running.clear();
    worker.received.clear();
    start(worker);
}

/// Fills up what a worker has to do; a worker that is gone is found by its answers.
void WorkerPool::hand(Worker& worker, std::size_t taskNum, std::int64_t end)
{
    std::vector<std::int64_t> tasks;
    while (worker.running.size() + tasks.size() < taskNum && (!mReturned.empty() || mHandedNum < end)) {
        if (mReturned.empty()) {
            tasks.push_back(mHandedNum++);
        } else {
            tasks.push_back(mReturned.front());
            mReturned.pop_front();
        }
    }
    worker.running.insert(worker.running.end(), tasks.begin(), tasks.end());
    writeAll(worker.tasks, tasks.data(), tasks.size() * sizeof tasks[0]);
}

/// Takes what a worker has sent.
void WorkerPool::receive(Worker& worker)
{
    std::array<char, BLOCK_SIZE> block;
    const ssize_t got = ::read(worker.answers, block.data(), block.size());
    if (got < 0 && errno == EINTR)
        return;
    if (got <= 0) {
        replace(worker);
        return;
    }
    worker.received.append(block.data(), static_cast<std::size_t>(got));
    for (std::size_t size = 0; worker.received.size() >= sizeof size; worker.received.erase(0, sizeof size + size)) {
        std::memcpy(&size, worker.received.data(), sizeof size);
        if (worker.received.size() - sizeof size < size)
            break;
        mDone[worker.running.front()].text = worker.received.substr(sizeof size, size);
        worker.running.pop_front();
    }
}

bool WorkerPool::run(std::int64_t begin, std::int64_t end, const Take& take, const std::function<void()>& tick)
{
    mHandedNum = begin;
    const auto workerNum = static_cast<std::int64_t>(mWorkers.size());
    std::vector<pollfd> files(mWorkers.size());
    for (std::int64_t next = begin; next < end;) {
        const std::int64_t leftNum = end - mHandedNum;
        const std::int64_t taskNum = std::min(std::clamp(leftNum / (SHARE_NUM * workerNum), TASK_MIN_NUM, TASK_MAX_NUM),
                                              std::max<std::int64_t>(1, (leftNum + workerNum - 1) / workerNum));
        for (Worker& worker : mWorkers)
            if (static_cast<std::int64_t>(worker.running.size()) <= taskNum / 2)
                hand(worker, static_cast<std::size_t>(taskNum), std::min(end, next + WINDOW_SIZE * workerNum));
        for (std::size_t i = 0; i < files.size(); ++i)
            files[i] = {mWorkers[i].answers, POLLIN, 0};
        const int readyNum = ::poll(files.data(), files.size(), TICK_MILLISECONDS);
        if (isInterrupted())
            return false;
        for (std::size_t i = 0; readyNum > 0 && i < files.size(); ++i)
            if (files[i].revents != 0)
                receive(mWorkers[i]);
        for (auto done = mDone.begin(); done != mDone.end() && done->first == next; done = mDone.erase(done), ++next)
            take(next, done->second.text, done->second.fault);
        tick();
    }
    return true;
}

}  // namespace esttform::app
