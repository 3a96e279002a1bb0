// Conversion of real values to integers, defined for every value.
// A plain cast is undefined out of range, and parameters and quotients may hold anything.
#pragma once

#include <cstdint>
#include <limits>

/// value truncated toward zero; out of range, infinite or not a number: the most negative integer.
template <typename Int, typename Real>
constexpr Int truncateTo(Real value)
{
    static_assert(std::numeric_limits<Int>::is_signed && std::numeric_limits<Int>::is_integer);
    constexpr Real LOWEST = static_cast<Real>(std::numeric_limits<Int>::min());      // a power of two, exact
    // Every value in (LOWEST - 1, LOWEST) truncates to the most negative integer, as does all that is out of range.
    return value >= LOWEST && value < -LOWEST ? static_cast<Int>(value) : std::numeric_limits<Int>::min();
}
