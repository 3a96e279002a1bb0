// Runs one check of a block in a process of its own, so that a crash or a hang of the block is a finding like any other.
#pragma once

#include <string>

namespace esttform::app {

enum class Verdict { Passed, Failed, Crashed, TimedOut };

struct CheckResult {
    Verdict verdict = Verdict::Passed;
    std::string text;   ///< what was found; empty when passed
};

/// @param timeout  seconds that the check may take
/// @throws Failure  no process could be made
/// @throws Error    Load: the library or a callback of it is missing
CheckResult runCheckApart(const std::string& name, const std::string& blockPath, unsigned seed, int timeout);

}  // namespace esttform::app
