// The command 'esttform register': finds and matches features of two pictures, estimates, and draws the outcome.
#pragma once

#include "failure.h"
#include "options/block_options.h"
#include "registering/vision.h"

#include <string>

namespace esttform::app {

struct RegisterOptions {
    std::string image1Path, image2Path;
    FeatureOptions features;
    BlockOptions block;
    std::string format = "text";
    std::string outputPath = "-";
    std::string matchesPath, plotPath, warpedPath, blendedPath, reportPath;   ///< empty: none
    bool isQuiet = false;
};

/// Adds the command's options. `options` must outlive the parsing.
void addRegisterOptions(CLI::App& command, RegisterOptions& options);

/// Runs the command. Files appear when all is done.
///
/// @return Done, or NothingFound if the block found no transformation; pictures that need one are not written then
/// @throws Failure  also (NothingFound) when there are fewer matches than the transformation needs
ExitCode runRegister(const RegisterOptions& options);

}  // namespace esttform::app
