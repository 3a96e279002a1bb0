#include "literal.h"

#include "c_type.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace blockhost::c99 {

namespace {

template <typename T>
std::string shortest(T value)
{
    char buffer[64];
    const std::to_chars_result end = std::to_chars(buffer, buffer + sizeof(buffer), value);
    return std::string(buffer, end.ptr);
}

std::string realText(const CG::Type* type, double value)
{
    const bool isSingle = CG::SingleType::isa(type);
    if (!std::isfinite(value)) {
        const std::string sign = std::isinf(value) && value < 0.0 ? "-" : "";
        return sign + "(" + cTypeName(type) + ")" + (std::isnan(value) ? "NAN" : "INFINITY");
    }
    std::string text = isSingle ? shortest(static_cast<float>(value)) : shortest(value);
    if (text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return isSingle ? text + "F" : text;
}

}  // namespace

std::string literalText(const CG::Type* type, double value)
{
    if (CG::isBoolean(type))
        return value != 0.0 ? "true" : "false";
    if (CG::isReal(type))
        return realText(type, value);
    if (value == static_cast<double>(std::numeric_limits<std::int32_t>::min()))
        return "(-2147483647 - 1)";
    return shortest(static_cast<std::int64_t>(value)) + (isUnsigned(type) ? "U" : "");
}

bool needsMathHeader(const CG::Type* type, double value)
{
    return CG::isReal(type) && !std::isfinite(value);
}

}  // namespace blockhost::c99
