#include "callback_runner.h"

#include <fmt/format.h>

#include <utility>

namespace blockhost {

using esttform::Error;
using esttform::ErrorKind;

namespace {

[[noreturn]] void throwFault(const std::exception_ptr& fault, const char* name)
{
    try {
        std::rethrow_exception(fault);
    } catch (const Error&) {
        throw;
    } catch (const std::exception& exception) {
        throw Error(ErrorKind::Internal, fmt::format("the host failed in {}: {}", name, exception.what()));
    } catch (...) {
        throw Error(ErrorKind::Internal, fmt::format("the host failed in {}", name));
    }
}

/// Makes a failure of the trace a fault of the instance.
void recordTraceFailure(sysobj::SysObjAdaptorSFun& S, const std::exception_ptr& failure) noexcept
{
    try {
        std::rethrow_exception(failure);
    } catch (const std::exception& exception) {
        S.recordFault(fmt::format("trace sink failed: {}", exception.what()));
    } catch (...) {
        S.recordFault("trace sink failed");
    }
}

}  // namespace

CallbackScope::CallbackScope(sysobj::SysObjAdaptorSFun& S, Phase phase) noexcept
    : mInstance(S), mOuterInstance(runningInstance()), mOuterPhase(S.phase)
{
    runningInstance() = &S;
    S.phase = phase;
    S.trace.enter();
}

CallbackScope::~CallbackScope()
{
    mInstance.trace.leave();
    mInstance.phase = mOuterPhase;
    runningInstance() = mOuterInstance;
}

void recordEscapedException(sysobj::SysObjAdaptorSFun& S, const char* name) noexcept
{
    try {
        throw;
    } catch (const std::exception& exception) {
        S.recordFault(fmt::format("{} let an exception out: {}", name, exception.what()));
    } catch (...) {
        S.recordFault(fmt::format("{} let an exception out", name));
    }
}

std::optional<PendingError> finishCallback(sysobj::SysObjAdaptorSFun& S, const char* name)
{
    S.checkGuardZones(name);
    if (const std::exception_ptr failure = S.trace.takeFailure())
        recordTraceFailure(S, failure);
    std::optional<PendingError> error = std::move(S.pendingError);
    S.pendingError.reset();
    if (S.fault)
        throwFault(std::exchange(S.fault, nullptr), name);
    return error;
}

void throwIfStopped(const sysobj::SysObjAdaptorSFun& S, const char* name, const std::optional<PendingError>& error)
{
    const std::string refusal = S.refusals.empty() ? "" : S.refusals.front();
    if (error)
        throw Error(ErrorKind::Usage, error->text + (refusal.empty() ? "" : " (" + refusal + ")"));
    if (!refusal.empty())
        throw Error(ErrorKind::Usage, fmt::format("{} stopped: {}", name, refusal));
}

}  // namespace blockhost
