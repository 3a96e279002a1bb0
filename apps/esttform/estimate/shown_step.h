// ShownStep: the step of a run that is drawn and reported, chosen while the steps go by.
#pragma once

#include "plot/plot_scene.h"
#include "report/report.h"

#include <cstdint>
#include <optional>

namespace esttform::app {

class ShownStep {
public:
    /// @param wanted  the step asked for; empty: the first with a result, else the first
    explicit ShownStep(std::optional<std::int64_t> wanted) : mWanted(wanted) {}

    /// Takes the step's data over if it is the one, or a better one than before.
    void offer(const StepLabel& label, const MatchFrame& frame, const StepResult& result, Layout layout, const BlockSetup& setup,
               std::vector<DiagnosisNote> diagnosis = {});

    /// Scene and result of the step; names, counts and notes are left to the caller.
    ///
    /// @throws Failure  the step asked for did not come
    Report& report(std::int64_t stepNum);

private:
    std::optional<std::int64_t> mWanted;
    std::optional<Report> mReport;
};

}  // namespace esttform::app
