// Runs one callback of a block: names the running instance and phase, keeps exceptions apart, and afterwards looks at
// what happened: guard zones, faults, the pending error.
#pragma once

#include "block_instance.h"

namespace blockhost {

/// While it lives, an instance is the running one, in a phase, and its trace is nested one level deeper.
class CallbackScope {
public:
    CallbackScope(sysobj::SysObjAdaptorSFun& S, Phase phase) noexcept;
    ~CallbackScope();
    CallbackScope(const CallbackScope&) = delete;
    CallbackScope& operator=(const CallbackScope&) = delete;

private:
    sysobj::SysObjAdaptorSFun& mInstance;
    sysobj::SysObjAdaptorSFun* mOuterInstance;
    Phase mOuterPhase;
};

/// Records that a callback let an exception out; called from a handler.
void recordEscapedException(sysobj::SysObjAdaptorSFun& S, const char* name) noexcept;

/// What the host does after a callback.
///
/// @return the error that the callback reported, taken from the instance
/// @throws Error  the fault that was recorded during the callback
std::optional<PendingError> finishCallback(sysobj::SysObjAdaptorSFun& S, const char* name);

/// Runs a callback.
///
/// @param invoke  calls the block
/// @param shown   arguments as the trace shows them
/// @return and throws as finishCallback
template <typename Invoke, typename... Shown>
std::optional<PendingError> runCallback(sysobj::SysObjAdaptorSFun& S, Phase phase, const char* name, Invoke invoke,
                                        const Shown&... shown)
{
    S.trace.call(name, shown...);
    {
        const CallbackScope scope(S, phase);
        try {
            invoke();
        } catch (...) {
            recordEscapedException(S, name);
        }
    }
    return finishCallback(S, name);
}

/// Throws what made a set-up callback stop: the error it reported, with the refusal behind it if there is one, or the
/// refusal alone.
///
/// @throws Error (Usage)
void throwIfStopped(const sysobj::SysObjAdaptorSFun& S, const char* name, const std::optional<PendingError>& error);

}  // namespace blockhost
