// The command 'esttform check': examines a block as a strict host would.
#pragma once

#include "failure.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace esttform::app {

struct CheckOptions {
    std::string path;                     ///< empty: the block that the other commands use
    std::vector<std::string> only;        ///< names of checks; empty for all
    std::optional<std::uint32_t> seed;
    double timeout = 10.0;                ///< seconds that each check may take
    std::string format = "text";
    bool isList = false, isQuiet = false;
};

/// Adds the command's options. `options` must outlive the parsing.
void addCheckOptions(CLI::App& command, CheckOptions& options);

/// Runs the checks, each in a process of its own, and prints what they found.
///
/// @return CheckFailed unless all pass
/// @throws Failure  also when the block cannot be loaded at all
ExitCode runCheck(const CheckOptions& options);

}  // namespace esttform::app
