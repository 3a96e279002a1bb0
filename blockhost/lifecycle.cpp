#include "lifecycle.h"

#include <fmt/format.h>

namespace blockhost {

namespace {

struct Rule {
    Call call;
    const char* callback;  ///< as messages name the call
    const char* method;    ///< what the caller has to call for it
    State needs;           ///< state that must be reached
    State leadsTo;         ///< state afterwards; equal to needs for a call that may be repeated
};

constexpr Rule RULES[CALL_NUM] = {
    {Call::InitializeSizes, "mdlInitializeSizes", "initializeSizes", State::Created, State::Sized},
    {Call::CheckParameters, "mdlCheckParameters", "checkParameters", State::Sized, State::Checked},
    {Call::InitializeSampleTimes, "mdlInitializeSampleTimes", "initializeSampleTimes", State::Sized, State::Sized},
    {Call::Propagate, "propagation", "propagate", State::Checked, State::Settled},
    {Call::SetWorkWidths, "mdlSetWorkWidths", "setWorkWidths", State::Settled, State::Prepared},
    {Call::Start, "mdlStart", "start", State::Prepared, State::Running},
    {Call::Outputs, "mdlOutputs", "step", State::Running, State::Running},
    {Call::ProcessParameters, "mdlProcessParameters", "setParam", State::Running, State::Running},
    {Call::Describe, "mdlVektCG", "describe", State::Prepared, State::Prepared},
    {Call::Terminate, "mdlTerminate", "terminate", State::Sized, State::Terminated},
};

const Rule& ruleOf(Call call) noexcept
{
    return RULES[static_cast<std::size_t>(call)];
}

/// The call that leads to a state.
const Rule& ruleReaching(State state) noexcept
{
    const Rule* found = &RULES[0];
    for (const Rule& rule : RULES)
        if (rule.leadsTo == state && rule.needs != state)
            found = &rule;
    return *found;
}

}  // namespace

const char* stateName(State state) noexcept
{
    constexpr const char* NAMES[STATE_NUM] = {"created",  "sized",   "checked",    "settled",
                                              "prepared", "running", "terminated", "failed"};
    return NAMES[static_cast<std::size_t>(state)];
}

std::string Lifecycle::objection(Call call) const
{
    const Rule& rule = ruleOf(call);
    const auto text = [&](const std::string& when, const std::string& remedy) {
        return fmt::format("{} called {} (state: {}); {}", rule.callback, when, stateName(mState), remedy);
    };
    const auto before = [&](const Rule& missing) {
        return text(fmt::format("before {}", missing.callback), fmt::format("call {}() first", missing.method));
    };
    if (mState == State::Terminated)
        return text(call == Call::Terminate ? "again" : "after mdlTerminate", "open another block");
    if (mState == State::Failed)
        return call == Call::Terminate ? ""
                                       : text(fmt::format("after {} failed", ruleOf(mFailed).callback),
                                              "call terminate() and open another block");
    if (mState < rule.needs)
        return before(ruleReaching(rule.needs));
    if (call == Call::Start && !mHasSampleTimes)
        return before(ruleOf(Call::InitializeSampleTimes));
    if (call == Call::Describe && mState > rule.needs)
        return text("after mdlStart", "a block that runs describes nothing, open another block");
    const bool isRepeated = call == Call::InitializeSampleTimes ? mHasSampleTimes
                                                                : mState >= rule.leadsTo && rule.leadsTo != rule.needs;
    return isRepeated ? text("again", "a block is set up once, open another block") : "";
}

bool Lifecycle::admit(Call call)
{
    const std::string reason = objection(call);
    if (reason.empty())
        return true;
    bool& isReported = mIsReported[static_cast<std::size_t>(call)][static_cast<std::size_t>(mState)];
    if (isReported)
        return false;
    isReported = true;
    throw esttform::Error(esttform::ErrorKind::Usage, reason);
}

void Lifecycle::succeed(Call call) noexcept
{
    if (call == Call::InitializeSampleTimes)
        mHasSampleTimes = true;
    else
        mState = ruleOf(call).leadsTo;
}

void Lifecycle::fail(Call call) noexcept
{
    mFailed = call;
    mState = call == Call::Terminate ? State::Terminated : State::Failed;
}

}  // namespace blockhost
