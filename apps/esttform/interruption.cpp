#include "interruption.h"

#include "failure.h"

#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

namespace esttform::app {

namespace {

/// Time for the outputs to be put in order; a pipe that nobody reads takes for ever.
constexpr unsigned FINISH_SECONDS = 2;

volatile std::sig_atomic_t gHoldNum = 0;
volatile std::sig_atomic_t gIsInterrupted = 0;
void (*gFinish)() noexcept = nullptr;
pthread_t gMainThread;

void onSignal(int signal)
{
    const int errorCode = errno;
    if (::pthread_equal(::pthread_self(), gMainThread) == 0) {
        ::pthread_kill(gMainThread, signal);             // threads of libraries know nothing of holds
    } else {
        std::signal(signal, SIG_DFL);
        gIsInterrupted = 1;
        if (gHoldNum == 0)
            endInterrupted();
    }
    errno = errorCode;
}

}  // namespace

void watchInterruption(void (*finish)() noexcept) noexcept
{
    gFinish = finish;
    gMainThread = ::pthread_self();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        ::sigaction(signal, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = onSignal;
        action.sa_flags = SA_NODEFER;                    // a second signal is not put off; writing that waits is interrupted
        ::sigaction(signal, &action, nullptr);
    }
}

bool isInterrupted() noexcept
{
    return gIsInterrupted != 0;
}

void endInterrupted() noexcept
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        std::signal(signal, SIG_IGN);                    // outputs are put in order once
    std::signal(SIGALRM, [](int) { ::_exit(static_cast<int>(ExitCode::Interrupted)); });
    ::alarm(FINISH_SECONDS);
    if (gFinish != nullptr)
        gFinish();
    ::_exit(static_cast<int>(ExitCode::Interrupted));
}

InterruptionHold::InterruptionHold() noexcept
{
    gHoldNum = gHoldNum + 1;
    std::atomic_signal_fence(std::memory_order_seq_cst);  // what is held must not move out of it
}

InterruptionHold::~InterruptionHold()
{
    std::atomic_signal_fence(std::memory_order_seq_cst);
    gHoldNum = gHoldNum - 1;
    if (gHoldNum == 0 && isInterrupted())
        endInterrupted();
}

}  // namespace esttform::app
