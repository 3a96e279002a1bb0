// The command 'esttform codegen': writes a folder of C99 sources that estimate as the block does.
#pragma once

#include "failure.h"
#include "options/block_options.h"

#include <cstdint>
#include <string>

namespace esttform::app {

struct CodegenOptions {
    BlockOptions block;
    std::int32_t maxPtsNum = 0;
    bool isVariableSize = false;
    std::string name = "esttform";
    bool withMain = false;
    bool isDumpIr = false;
    bool isForced = false;
    std::string outputPath;                 ///< empty: none given
};

/// Adds the command's options. `options` must outlive the parsing.
void addCodegenOptions(CLI::App& command, CodegenOptions& options);

/// Writes the folder, or with isDumpIr what the block described to standard output. The folder appears when all its files
/// are written.
///
/// @throws Failure, Error
ExitCode runCodegen(const CodegenOptions& options);

}  // namespace esttform::app
