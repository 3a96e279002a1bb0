// The outcome of a run of checks, as a table for people or as JSON.
#pragma once

#include "check/checks.h"
#include "check/isolated.h"

#include <cstdint>
#include <string>
#include <vector>

namespace esttform::check {

struct CheckResult {
    const Check* check;
    Outcome outcome;
};

struct RunResult {
    std::string path;
    std::uint32_t seed;
    std::vector<CheckResult> results;

    int failedNum() const;
};

/// One line a check: name, verdict, what was found; then a summary, and the commands that repeat the findings.
std::string toTable(const RunResult& run);

/// One object on one line, with line end. Keys: block, checkNum, failedNum, checks, a list of name, verdict ("ok", "failed",
/// "crashed", "timed out"), found, seed (null for a check that is not random).
std::string toJson(const RunResult& run);

/// Name and purpose of every check, one line each.
std::string listText();

}  // namespace esttform::check
