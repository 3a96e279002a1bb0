// What the host knows about a data-type id: its name, its size, and how a real value becomes an element of it.
// The one place where dialog values are converted.
#pragma once

#include "host_api.h"

#include <cmath>
#include <cstddef>
#include <limits>

namespace blockhost {

/// True for ids 0 to 8.
bool isDataType(int typeId) noexcept;
/// "double" ... "boolean"; "unset" for -1, "unknown type" for others.
const char* typeName(int typeId) noexcept;
/// Bytes of one element, 0 for an id that is no type.
std::size_t byteNumOf(int typeId) noexcept;

/// Real to integer: truncated toward zero, clamped to the range of Int, NaN gives 0.
template <typename Int>
Int toInteger(double value) noexcept
{
    if (std::isnan(value))
        return 0;
    const double whole = std::trunc(value);
    if (whole <= static_cast<double>(std::numeric_limits<Int>::min()))
        return std::numeric_limits<Int>::min();
    // 2^digits is exact in double where the largest value itself may not be.
    if (whole >= std::ldexp(1.0, std::numeric_limits<Int>::digits))
        return std::numeric_limits<Int>::max();
    return static_cast<Int>(whole);
}

/// Writes a real value as one element of a type.
///
/// @param typeId  id 0 to 8; boolean: 1 unless the value is 0 or NaN
/// @param element out, byteNumOf(typeId) bytes, aligned for the type
void storeReal(double value, int typeId, void* element) noexcept;

}  // namespace blockhost
