// The checks, each a function that examines one side of a block. Run in a process of its own with guard zones on.
#pragma once

#include "check/isolated.h"

#include <cstdint>
#include <string>
#include <vector>

namespace esttform::check {

/// What a check is told.
struct CheckInput {
    std::string path;          ///< of the block
    std::uint32_t seed = 0;    ///< of the random checks
    Note note;                 ///< to be told before every part that may not come back
};

/// One check. run gives a line on what was examined, or throws a Finding or Error: what was found.
struct Check {
    const char* name;
    bool isRandom;             ///< what it examines follows from the seed
    const char* text;          ///< what it examines
    std::string (*run)(const CheckInput& input);
};

/// All of them, in the order of a run.
const std::vector<Check>& allChecks();

// ---- Lifecycle
std::string checkLoad(const CheckInput& input);
std::string checkOrder(const CheckInput& input);
std::string checkEarlyEnds(const CheckInput& input);
std::string checkManyLives(const CheckInput& input);
std::string checkInstances(const CheckInput& input);
// ---- Propagation
std::string checkPropagation(const CheckInput& input);
std::string checkRandomPropagation(const CheckInput& input);
// ---- Refusals
std::string checkRefusals(const CheckInput& input);
std::string checkRefusedSteps(const CheckInput& input);
// ---- Odd parameters and signals
std::string checkParameters(const CheckInput& input);
std::string checkRandomParameters(const CheckInput& input);
std::string checkTunable(const CheckInput& input);
std::string checkSignals(const CheckInput& input);
// ---- Memory
std::string checkGuardZones(const CheckInput& input);
std::string checkInputPages(const CheckInput& input);
// ---- Steps
std::string checkTruth(const CheckInput& input);
std::string checkSteps(const CheckInput& input);
// ---- Code generation
std::string checkDescription(const CheckInput& input);

}  // namespace esttform::check
