#include "check_run.h"

#include "blockhost/block_check.h"
#include "failure.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>

namespace esttform::app {

namespace {

using Clock = std::chrono::steady_clock;

/// What the child says: nothing but its exit code counts when that is none of these.
constexpr int PASSED = 0;
constexpr int FAILED = 10;
constexpr int NOT_LOADED = 11;

/// The child's part: the check, whose finding goes into the pipe. What the block prints must not spoil the table.
[[noreturn]] void runHere(const std::string& name, const std::string& blockPath, unsigned seed, int pipeEnd)
{
    const int nowhere = ::open("/dev/null", O_WRONLY);
    ::dup2(nowhere, STDOUT_FILENO);
    std::string found;
    int code = FAILED;
    try {
        found = runBlockCheck(name, blockPath, seed);
    } catch (const Error& error) {
        found = error.what();
        code = NOT_LOADED;
    } catch (const std::exception& error) {
        found = error.what();
    } catch (...) {
        found = "the block threw something that is no exception of the standard library";
    }
    [[maybe_unused]] const ssize_t written = ::write(pipeEnd, found.data(), found.size());
    std::_Exit(found.empty() ? PASSED : code);
}

/// Reads the pipe until its end. @return false when the time is over first
bool readAll(int pipeEnd, Clock::time_point end, std::string& text)
{
    std::array<char, 4096> buffer;
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd wanted{pipeEnd, POLLIN, 0};
        const int ready = left > 0 ? ::poll(&wanted, 1, static_cast<int>(left)) : 0;
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        const ssize_t num = ::read(pipeEnd, buffer.data(), buffer.size());
        if (num <= 0)
            return true;
        text.append(buffer.data(), static_cast<std::size_t>(num));
    }
}

CheckResult resultOf(int status, bool isInTime, int timeout, const std::string& text)
{
    if (!isInTime)
        return {Verdict::TimedOut, fmt::format("not done after {} s", timeout)};
    if (WIFSIGNALED(status))
        return {Verdict::Crashed, fmt::format("{} ({})", ::strsignal(WTERMSIG(status)), WTERMSIG(status))};
    if (WEXITSTATUS(status) == PASSED)
        return {Verdict::Passed, ""};
    if (WEXITSTATUS(status) == NOT_LOADED)
        throw Error(ErrorKind::Load, text);
    if (WEXITSTATUS(status) == FAILED)
        return {Verdict::Failed, text};
    return {Verdict::Crashed, fmt::format("ended the process with exit code {}", WEXITSTATUS(status))};
}

}  // namespace

CheckResult runCheckApart(const std::string& name, const std::string& blockPath, unsigned seed, int timeout)
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0)
        throw Failure(fmt::format("cannot make a pipe: {}", std::strerror(errno)), ExitCode::OurFault);
    std::fflush(nullptr);                                // nothing is to be written twice
    const pid_t child = ::fork();
    if (child < 0)
        throw Failure(fmt::format("cannot start a process: {}", std::strerror(errno)), ExitCode::OurFault);
    if (child == 0)
        runHere(name, blockPath, seed, ends[1]);
    ::close(ends[1]);
    std::string text;
    const bool isInTime = readAll(ends[0], Clock::now() + std::chrono::seconds(timeout), text);
    ::close(ends[0]);
    if (!isInTime)
        ::kill(child, SIGKILL);
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return resultOf(status, isInTime, timeout, text);
}

}  // namespace esttform::app
