#include "estimate/reopening.h"

#include "matches/match_reader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace esttform::app {

namespace {

/// Lets the C library draw from a state of its own for a while, and from the old one afterwards.
class RandomAside {
public:
    RandomAside() noexcept : mOld(::initstate(1, mState.data(), mState.size())) {}
    ~RandomAside() { ::setstate(mOld); }
    RandomAside(const RandomAside&) = delete;
    RandomAside& operator=(const RandomAside&) = delete;

private:
    std::array<char, 128> mState{};
    char* mOld;
};

}  // namespace

std::int32_t grownPtsNum(std::int32_t room, std::int32_t ptsNum) noexcept
{
    const std::int64_t wanted = std::max<std::int64_t>(ptsNum, 2 * static_cast<std::int64_t>(room));
    return static_cast<std::int32_t>(std::min(wanted, static_cast<std::int64_t>(MatchReader::PAIR_MAX_NUM)));
}

void growEstimator(Estimator& estimator, const BlockSetup& setup, std::int32_t ptsNum,
                   std::function<void(std::string_view)> trace)
{
    reopenEstimator(estimator, setup, grownPtsNum(estimator.maxPtsNum(), ptsNum), std::move(trace));
}

void reopenEstimator(Estimator& estimator, const BlockSetup& setup, std::int32_t maxPtsNum,
                     std::function<void(std::string_view)> trace)
{
    const RandomAside aside;                             // opening seeds
    Options options = setup.options;
    options.isVariableSize = true;
    options.trace = std::move(trace);
    estimator = Estimator(setup.params, setup.pointsType, maxPtsNum, options);
}

}  // namespace esttform::app
