// The report: one HTML page about a step, with settings, result, warnings, diagnosis and picture. It needs no network, no
// scripts and no other file, follows the reader's choice of light or dark, and prints.
#pragma once

#include "diagnosis/diagnosis.h"
#include "options/block_settings.h"
#include "output/warnings.h"
#include "plot/plot.h"

#include <cstdint>
#include <string>
#include <vector>

namespace esttform::app {

/// The result of the step that is shown, with copies of what the next step would overwrite.
struct ShownResult {
    std::int64_t ptsNum = 0;
    std::vector<std::vector<double>> tform;  ///< rows of TForm as the block gave it
    std::string equation;                    ///< what TForm stands for
    std::string error;                       ///< "id: text" of a step that was refused
};

ShownResult shownResultOf(const StepResult& result, Layout layout);

struct Report {
    std::string inputName;
    PlotScene scene;
    ShownResult result;
    std::int64_t stepNum = 1, foundNum = 0;  ///< steps of the run, and those with a result
    std::vector<DiagnosisNote> diagnosis;       ///< empty: the page has no such section
    std::vector<Warnings::Entry> warnings;
};

/// The page, without a date: programs that differ in nothing else write the same bytes.
///
/// @throws Failure  as renderPlot
std::string renderReport(const Report& report, const BlockSetup& setup);

}  // namespace esttform::app
