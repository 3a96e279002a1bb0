#include "estimate/block_run.h"

#include <utility>

namespace esttform::app {

Estimator openEstimator(const BlockSetup& setup, const FrameSource& source, std::function<void(std::string_view)> trace)
{
    Options options = setup.options;
    options.isVariableSize = source.isVariableSize();
    options.trace = std::move(trace);
    return Estimator(setup.params, setup.pointsType, source.maxPtsNum(), options);
}

const StepResult& runStep(Estimator& estimator, const BlockSetup& setup, const MatchFrame& frame,
                          std::function<void(std::string_view)> trace)
{
    const auto ptsNum = static_cast<std::int32_t>(frame.pairs.size());
    if (ptsNum > estimator.maxPtsNum())
        growEstimator(estimator, setup, ptsNum, std::move(trace));
    packPoints(frame.pairs, 0, estimator.pointsType(), estimator.layout(), estimator.pts1Buffer());
    packPoints(frame.pairs, 1, estimator.pointsType(), estimator.layout(), estimator.pts2Buffer());
    return estimator.step(ptsNum);
}

}  // namespace esttform::app
