// Checks of a block: what a strict host would try on it. Each is a function that says what it found.
// This header needs nothing but the standard library; programs link with libblockhost.
#pragma once

#include "estimator.h"

#include <string>
#include <vector>

namespace esttform {

/// One check.
struct BlockCheck {
    const char* name;
    const char* what;       ///< what is tried, and what is expected
    bool isRandom;          ///< it makes trials from the seed on
};

/// All checks, the basic ones first.
ESTTFORM_API const std::vector<BlockCheck>& blockChecks();

/// Runs a check in this process, which it may bring down when the block is at fault: run it in one of its own.
///
/// @param name       of blockChecks
/// @param blockPath  the block's library
/// @param seed       first seed of a random check, which tries a number of them one after the other
/// @return what is wrong with the block in one line; empty when nothing was found
/// @throws Error  Load: the library or a callback of it is missing; Usage: there is no such check
ESTTFORM_API std::string runBlockCheck(const std::string& name, const std::string& blockPath, unsigned seed);

}  // namespace esttform
