// Lifecycle: the order of a block's callbacks as a state machine. It admits a call, or says which call is missing.
// Knows nothing of blocks; the caller tells it what came of a call.
#pragma once

#include "estimator.h"

#include <array>
#include <string>

namespace blockhost {

/// What the host does with a block, in order. Sample times may come at any point between the first and Start.
enum class Call {
    InitializeSizes,
    CheckParameters,
    InitializeSampleTimes,
    Propagate,
    SetWorkWidths,
    Start,
    Outputs,
    ProcessParameters,
    Describe,  ///< mdlVektCG, in place of Start and what follows it
    Terminate,
};
constexpr int CALL_NUM = 10;

enum class State { Created, Sized, Checked, Settled, Prepared, Running, Terminated, Failed };
constexpr int STATE_NUM = 8;

const char* stateName(State state) noexcept;

class Lifecycle {
public:
    State state() const noexcept { return mState; }
    /// True when mdlTerminate is owed: mdlInitializeSizes ran, in whatever way it ended.
    bool needsTerminate() const noexcept { return mState != State::Created && mState != State::Terminated; }

    /// Whether a call may be made now.
    ///
    /// @return false when the same call in the same state was refused before
    /// @throws Error (Usage) when it may not: the text names the call that is missing
    bool admit(Call call);
    /// The admitted call was carried out.
    void succeed(Call call) noexcept;
    /// The admitted call failed. Only Terminate is admitted from now on.
    void fail(Call call) noexcept;

private:
    /// Why a call is refused in the present state; empty when it is not.
    std::string objection(Call call) const;

    State mState = State::Created;
    Call mFailed = Call::InitializeSizes;
    bool mHasSampleTimes = false;
    std::array<std::array<bool, STATE_NUM>, CALL_NUM> mIsReported{};
};

}  // namespace blockhost
