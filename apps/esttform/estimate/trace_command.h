// The command 'esttform trace': shows the calls between host and block from set-up to terminate.
#pragma once

#include "failure.h"
#include "matches/frame_source.h"
#include "options/block_options.h"

#include <cstdint>

namespace esttform::app {

struct TraceOptions {
    InputOptions input;
    BlockOptions block;
    std::int64_t stepNum = 1;
    std::string outputPath = "-";
};

/// Adds the command's options. `options` must outlive the parsing.
void addTraceOptions(CLI::App& command, TraceOptions& options);

/// Writes one line a call: set-up, the first stepNum steps, terminate. The lines of a set-up that fails are written too.
///
/// @throws Failure, Error
ExitCode runTrace(const TraceOptions& options);

}  // namespace esttform::app
