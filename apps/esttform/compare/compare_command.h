// The command 'esttform compare': how far two results lie apart, or a result from the known truth.
#pragma once

#include "failure.h"

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace esttform::app {

struct CompareOptions {
    std::string aPath, bPath;
    std::string layoutA = "columns", layoutB = "columns";
    std::optional<std::string> size;        ///< "WxH"; empty: from a truth
    std::optional<std::string> origin;      ///< "X,Y" of the first pixel's centre; empty: 0,0
    std::string matchesPath;                ///< empty: none
    std::vector<std::string> columns;       ///< of the matches; empty: found
    std::optional<double> rightPx;          ///< empty: 3
    std::optional<double> tolerance;        ///< pixels; empty: nothing differs too much
    bool isMissingIgnored = false;
    std::string format = "text";
    std::string outputPath = "-";
};

/// Adds the command's options. `options` must outlive the parsing.
void addCompareOptions(CLI::App& command, CompareOptions& options);

/// @return Done, or Differs if a tolerance was given and a step exceeds it
/// @throws Failure
ExitCode runCompare(const CompareOptions& options);

}  // namespace esttform::app
