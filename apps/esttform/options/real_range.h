// RealRange: the real numbers that an option takes.
#pragma once

#include <fmt/format.h>

#include <limits>
#include <string>

namespace esttform::app {

struct RealRange {
    double lowest, highest;
    const char* unit;   ///< empty for none

    bool admits(double value) const noexcept { return value >= lowest && value <= highest; }

    /// "a number from 0 to 100 (percent)"
    std::string text() const
    {
        const std::string numbers = highest == std::numeric_limits<double>::infinity()
                                        ? fmt::format("a number of at least {}", lowest)
                                        : fmt::format("a number from {} to {}", lowest, highest);
        return *unit == '\0' ? numbers : fmt::format("{} ({})", numbers, unit);
    }
};

}  // namespace esttform::app
