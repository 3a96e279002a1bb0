// The command 'esttform stabilise': the path of a camera from matches of neighbouring pictures, the path smoothed, and what
// brings each picture onto it.
#pragma once

#include "failure.h"
#include "matches/frame_source.h"
#include "options/block_options.h"

#include <cstdint>
#include <optional>
#include <string>

namespace esttform::app {

struct StabiliseOptions {
    InputOptions input;
    BlockOptions block;
    std::string smoothing = "gaussian";
    std::uint32_t radius = 30;
    std::optional<std::int32_t> minInlierNum;   ///< empty: 10
    std::optional<std::string> centre;          ///< "X,Y"; empty: middle of the first points
    std::string outputPath = "-";
    std::string plotPath;                       ///< empty: none
    bool isQuiet = false;
};

/// Adds the command's options. `options` must outlive the parsing.
void addStabiliseOptions(CLI::App& command, StabiliseOptions& options);

/// @return Done, or NothingFound if no frame has a transformation
/// @throws Failure, Error
ExitCode runStabilise(const StabiliseOptions& options);

}  // namespace esttform::app
