// The wrapper of every host function: phase check, test refusals, trace, and keeping exceptions on the host's side.
// Arguments after the body are what the trace shows.
#pragma once

#include "block_instance.h"

namespace blockhost {

/// Runs the body of a host function for an instance.
///
/// @tparam ResultText  how the trace shows the result, constructed from it; the plain value by default
/// @param phases       mask of the phases in which the block may call the function
/// @return the body's result; a zero value, and a fault recorded, when the phase is wrong or the body throws
template <typename ResultText = void, typename Body, typename... Args>
auto hostCall(sysobj::SysObjAdaptorSFun* S, const char* function, unsigned phases, Body body,
              const Args&... args) noexcept -> decltype(body())
{
    using Result = decltype(body());
    try {
        const bool isAllowed = S->mayCall(function, phases);
        if constexpr (std::is_void_v<Result>) {
            if (isAllowed)
                body();
            S->trace.call(function, args...);
        } else {
            const Result result = isAllowed ? body() : Result{};
            if constexpr (std::is_void_v<ResultText>)
                S->trace.callWithResult(result, function, args...);
            else
                S->trace.callWithResult(ResultText{result}, function, args...);
            return result;
        }
    } catch (...) {
        S->recordFault(std::current_exception());
        return Result();
    }
}

/// As hostCall, for functions that may refuse by giving 0 or false: a test can make them.
template <typename Body, typename... Args>
auto hostRequest(sysobj::SysObjAdaptorSFun* S, const char* function, unsigned phases, Body body,
                 const Args&... args) noexcept -> decltype(body())
{
    using Result = decltype(body());
    return hostCall(
        S, function, phases, [&] { return S->isRefusalDue(function) ? Result{} : body(); }, args...);
}

/// As hostCall, for functions that give an address, shown by the name of what is there.
template <typename Body, typename... Args>
auto hostAddress(sysobj::SysObjAdaptorSFun* S, const char* function, unsigned phases, Body body,
                 const Args&... args) noexcept -> decltype(body())
{
    decltype(body()) address = nullptr;
    try {
        if (S->mayCall(function, phases))
            address = body();
        if (S->trace.isOn())
            S->trace.callWithResult(NameText{S->nameOf(address)}, function, args...);
    } catch (...) {
        S->recordFault(std::current_exception());
    }
    return address;
}

}  // namespace blockhost
