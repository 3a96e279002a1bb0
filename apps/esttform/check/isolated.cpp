#include "check/isolated.h"

#include "check/child_output.h"
#include "check/finding.h"
#include "failure.h"

#include "blockhost/estimator.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstring>

namespace esttform::check {

namespace {

using Clock = std::chrono::steady_clock;

/// First letter of a line from the child.
enum Mark : char { AT = '@', OK = 'O', FOUND = 'F', STOPPED = 'S', NOT_LOADABLE = 'L' };

// ---- In the child

void send(int pipe, Mark mark, std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    text = static_cast<char>(mark) + text + "\n";
    for (std::size_t sent = 0; sent < text.size();) {
        const ssize_t num = write(pipe, text.data() + sent, text.size() - sent);
        if (num < 0 && errno != EINTR)
            return;
        sent += num > 0 ? static_cast<std::size_t>(num) : 0;
    }
}

/// What the work came to, as the last line.
void report(int pipe, const std::function<std::string(const Note&)>& work)
{
    try {
        send(pipe, OK, work([pipe](const std::string& text) { send(pipe, AT, text); }));
    } catch (const Finding& e) {
        send(pipe, FOUND, e.what());
    } catch (const Error& e) {
        send(pipe, e.kind() == ErrorKind::Load ? NOT_LOADABLE : STOPPED, e.what());
    } catch (const std::exception& e) {
        send(pipe, STOPPED, e.what());
    } catch (...) {
        send(pipe, STOPPED, "an exception of unknown type came out of the block");
    }
}

[[noreturn]] void runChild(const std::function<std::string(const Note&)>& work, int resultPipe, int outputPipe, pid_t parent)
{
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent)
        _exit(1);
    const rlimit noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    const int nothing = open("/dev/null", O_RDONLY);
    dup2(nothing, STDIN_FILENO);
    dup2(outputPipe, STDOUT_FILENO);
    dup2(outputPipe, STDERR_FILENO);
    report(resultPipe, work);
    _exit(0);                                            // nothing of the parent's is flushed or cleaned up twice
}

// ---- In the parent

struct Pipe {
    int ends[2] = {-1, -1};

    Pipe()
    {
        if (pipe2(ends, O_CLOEXEC) != 0)
            throw app::Failure(fmt::format("cannot open a pipe: {}", std::strerror(errno)), app::ExitCode::OurFault);
    }
    ~Pipe()
    {
        closeEnd(0);
        closeEnd(1);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    void closeEnd(int idx) noexcept
    {
        if (ends[idx] >= 0)
            close(ends[idx]);
        ends[idx] = -1;
    }
};

/// What the child has said so far.
struct Report {
    std::string rest;   ///< of a line that is not complete
    std::string at;     ///< the last note
    std::string last;   ///< the last line, with its mark; empty before it came

    void take(const char* bytes, std::size_t num)
    {
        rest.append(bytes, num);
        for (std::size_t end = rest.find('\n'); end != std::string::npos; end = rest.find('\n')) {
            const std::string line = rest.substr(0, end);
            rest.erase(0, end + 1);
            if (!line.empty() && line[0] == AT)
                at = line.substr(1);
            else
                last = line;
        }
    }
};

/// Waits for the last line, the end of the pipe or the deadline. @return false at the deadline
bool listen(const Pipe& result, const Pipe& output, Report& said, ChildOutput& printed, Clock::time_point deadline)
{
    pollfd sources[2] = {{result.ends[0], POLLIN, 0}, {output.ends[0], POLLIN, 0}};
    char bytes[4096];
    while (said.last.empty()) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        if (left <= 0)
            return false;
        if (poll(sources, 2, static_cast<int>(std::min<decltype(left)>(left + 1, 60000))) <= 0)
            continue;
        if (sources[1].revents != 0 && !printed.takeFrom(sources[1].fd))
            sources[1].fd = -1;
        if (sources[0].revents == 0)
            continue;
        const ssize_t num = read(sources[0].fd, bytes, sizeof bytes);
        if (num == 0)
            return true;
        if (num > 0)
            said.take(bytes, static_cast<std::size_t>(num));
    }
    return true;
}

/// Waits for the child's end, which follows the end of its pipe. @return false at the deadline
bool awaitEnd(pid_t child, Clock::time_point deadline, int& status)
{
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (Clock::now() >= deadline)
            return false;
        usleep(1000);
    }
    return true;
}

std::string endText(int status)
{
    if (WIFSIGNALED(status))
        return fmt::format("signal {} ({})", WTERMSIG(status), strsignal(WTERMSIG(status)));
    return fmt::format("the process was ended with exit code {}", WEXITSTATUS(status));
}

}  // namespace

const char* verdictText(Verdict verdict) noexcept
{
    switch (verdict) {
    case Verdict::Ok: return "ok";
    case Verdict::Failed: return "failed";
    case Verdict::Crashed: return "crashed";
    case Verdict::TimedOut: break;
    }
    return "timed out";
}

Outcome runIsolated(const std::function<std::string(const Note&)>& work, double secondNum)
{
    Pipe result, output;
    fcntl(output.ends[0], F_SETFL, O_NONBLOCK);
    std::fflush(nullptr);
    const pid_t parent = getpid();
    const pid_t child = fork();
    if (child < 0)
        throw app::Failure(fmt::format("cannot start a process: {}", std::strerror(errno)), app::ExitCode::OurFault);
    if (child == 0)
        runChild(work, result.ends[1], output.ends[1], parent);
    setpgid(child, child);                               // the child does it too: whoever comes first
    result.closeEnd(1);
    output.closeEnd(1);

    const auto deadline = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(secondNum));
    Report said;
    ChildOutput printed;
    int status = 0;
    const bool isInTime = listen(result, output, said, printed, deadline)
                          && (!said.last.empty() || awaitEnd(child, deadline, status));
    printed.takeFrom(output.ends[0]);
    const bool isReaped = isInTime && said.last.empty();
    kill(-child, SIGKILL);                               // also what the work started and left behind
    if (!isReaped)
        waitpid(child, &status, 0);

    const std::string at = said.at.empty() ? "" : fmt::format("; at: {}", said.at);
    if (!isInTime)
        return {Verdict::TimedOut, fmt::format("not done after {} s{}", secondNum, at), false};
    if (said.last.empty()) {
        const std::string summary = printed.summary();
        return {Verdict::Crashed, (summary.empty() ? endText(status) : summary) + at, false};
    }
    const std::string text = said.last.substr(1);
    if (said.last[0] == OK)
        return {Verdict::Ok, text, false};
    return {Verdict::Failed, said.last[0] == STOPPED ? text + at : text, said.last[0] == NOT_LOADABLE};
}

}  // namespace esttform::check
