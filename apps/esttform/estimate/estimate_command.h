// The command 'esttform estimate': reads matched pairs, runs the block on every step, writes what it found.
#pragma once

#include "estimate/result_writer.h"
#include "failure.h"
#include "matches/frame_source.h"
#include "options/block_options.h"

#include <cstdint>
#include <optional>
#include <string>

namespace esttform::app {

struct EstimateOptions {
    InputOptions input;
    BlockOptions block;
    std::string format = "text";
    std::string outputPath = "-";
    std::string inliersPath;                ///< empty: none
    std::string plotPath;                   ///< empty: none
    std::string reportPath;                 ///< empty: none
    std::optional<std::int64_t> plotStep;   ///< empty: the first step with a result
    std::string image1Path, image2Path;     ///< empty: none
    bool isDiagnosed = false;               ///< asked for; without either, text and reports are diagnosed
    bool isNotDiagnosed = false;
    bool isQuiet = false;
};

/// Adds the command's options. `options` must outlive the parsing.
void addEstimateOptions(CLI::App& command, EstimateOptions& options);

/// Runs the command. Files appear only when every step has been written; standard output is written step by step. A signal
/// that ends the program keeps the finished steps of results and inliers; plot and report do not appear.
///
/// @return Done, or NothingFound if no step found a transformation
/// @throws Failure, Error
ExitCode runEstimate(const EstimateOptions& options);

}  // namespace esttform::app
