// Checks of option values, with messages in the words of the project: what was found, what was expected.
// An option that fails reports "--option: got 140, expected a number from 0 to 100 (percent)".
#pragma once

#include "options/real_range.h"

#include <CLI/CLI.hpp>

#include <cstdint>
#include <string>

namespace esttform::app {

/// Admits a real number of the range; NaN fails.
CLI::Validator realWithin(const RealRange& range);

/// Admits a whole number from `lowest` to `highest`, written in digits.
CLI::Validator wholeBetween(std::int64_t lowest, std::int64_t highest);

/// Admits the words given; its name is these joined by '|', from which the shell's completion takes them.
CLI::Validator oneOf(const std::vector<std::string>& words);

}  // namespace esttform::app
