// The command 'esttform batch': one estimate for each of many files, by several processes.
#pragma once

#include "failure.h"
#include "options/block_options.h"

#include <string>
#include <vector>

namespace esttform::app {

struct BatchOptions {
    std::vector<std::string> inputs;      ///< files, folders, patterns
    std::vector<std::string> columns;
    BlockOptions block;
    std::string outputPath;
    int jobNum = 0;                       ///< 0: one a processor
    bool isDiagnosed = false;
    bool isResume = false;
    bool isQuiet = false;
};

/// Adds the command's options. `options` must outlive the parsing.
void addBatchOptions(CLI::App& command, BatchOptions& options);

/// Runs the command. The results stand in the order of the files' names and do not depend on the number of processes.
///
/// @return Done; BadInput if a file could not be read; else NothingFound if no file gave a transformation. Interrupted ends
///         the program when the results so far are written.
/// @throws Failure, Error
ExitCode runBatch(const BatchOptions& options);

}  // namespace esttform::app
