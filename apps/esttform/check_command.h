// The command 'esttform check': examines a block as a strict host would.
#pragma once

#include "failure.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace esttform::app {

struct CheckOptions {
    std::string blockPath;
    std::vector<std::string> only;          ///< names of checks; empty: all
    unsigned seed = 1;
    int timeout = 60;                       ///< seconds for one check
    std::string format = "text";
    bool isList = false;
};

/// Adds the command's options. `options` must outlive the parsing.
void addCheckOptions(CLI::App& command, CheckOptions& options);

/// Runs the checks, each in a process of its own, and prints a table, or JSON lines.
///
/// @return Done when all passed, else NothingFound
/// @throws Failure, Error (Load)
ExitCode runCheck(const CheckOptions& options);

}  // namespace esttform::app
