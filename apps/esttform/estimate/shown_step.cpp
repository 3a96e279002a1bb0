#include "estimate/shown_step.h"

#include "failure.h"

#include <fmt/format.h>

#include <utility>

namespace esttform::app {

void ShownStep::offer(const StepLabel& label, const MatchFrame& frame, const StepResult& result, Layout layout,
                      const BlockSetup& setup, std::vector<DiagnosisNote> diagnosis)
{
    const bool isBetter = mWanted ? label.step == *mWanted : !mReport || (!mReport->scene.map && result.isFound());
    if (!isBetter)
        return;
    mReport.emplace();
    mReport->scene = sceneOf(label, frame.pairs, result, layout, setup);
    mReport->result = shownResultOf(result, layout);
    mReport->diagnosis = std::move(diagnosis);
}

Report& ShownStep::report(std::int64_t stepNum)
{
    if (!mReport)
        throw Failure(fmt::format("--plot-step: got {}, expected a step from 0 to {}", mWanted.value_or(0), stepNum - 1));
    mReport->stepNum = stepNum;
    return *mReport;
}

}  // namespace esttform::app
