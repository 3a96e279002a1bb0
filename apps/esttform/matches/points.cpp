#include "matches/points.h"

#include "number_text.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>

namespace esttform::app {

namespace {

/// Calls f with a value of the C++ type that stands for the data type.
template <typename F>
auto withType(DataType type, F f)
{
    switch (type) {
    case DataType::Single: return f(float());
    case DataType::Int8: return f(std::int8_t());
    case DataType::Uint8: return f(std::uint8_t());
    case DataType::Int16: return f(std::int16_t());
    case DataType::Uint16: return f(std::uint16_t());
    case DataType::Int32: return f(std::int32_t());
    case DataType::Uint32: return f(std::uint32_t());
    case DataType::Double: break;
    }
    return f(double());
}

template <typename T>
std::optional<double> parseAs(std::string_view text) noexcept
{
    if constexpr (std::is_integral_v<T>) {
        double value = 0.0;
        if (parseReal(text, value) != NumberFault::None || value != std::trunc(value)
            || !(value >= double(std::numeric_limits<T>::min()) && value <= double(std::numeric_limits<T>::max())))
            return std::nullopt;
        return value + 0.0;                              // -0 has no place in an integer
    } else {
        T value = T(0);
        if (parseReal(text, value) != NumberFault::None)
            return std::nullopt;
        return double(value);
    }
}

template <typename T>
void packAs(const std::vector<Pair>& pairs, int setIdx, Layout layout, T* points) noexcept
{
    const std::size_t ptsNum = pairs.size();
    const std::size_t first = 2 * static_cast<std::size_t>(setIdx);
    const bool isColumns = layout == Layout::Columns;
    for (std::size_t i = 0; i < ptsNum; ++i) {
        points[isColumns ? 2 * i : i] = static_cast<T>(pairs[i][first]);
        points[isColumns ? 2 * i + 1 : ptsNum + i] = static_cast<T>(pairs[i][first + 1]);
    }
}

}  // namespace

const std::vector<std::string>& typeNames()
{
    static const std::vector<std::string> NAMES{"double", "single", "int8", "uint8", "int16", "uint16", "int32", "uint32"};
    return NAMES;
}

const char* typeName(DataType type) noexcept
{
    return typeNames()[static_cast<std::size_t>(type)].c_str();
}

std::optional<DataType> typeOfName(std::string_view name)
{
    for (std::size_t i = 0; i < typeNames().size(); ++i)
        if (typeNames()[i] == name)
            return static_cast<DataType>(i);
    return std::nullopt;
}

std::optional<double> parseCoordinate(std::string_view text, DataType type) noexcept
{
    return withType(type, [text](auto zero) { return parseAs<decltype(zero)>(text); });
}

std::string refusalOf(std::string_view text, DataType type)
{
    if (text.empty())
        return "empty, expected a number";
    const std::string expected = withType(type, [&](auto zero) -> std::string {
        using T = decltype(zero);
        if constexpr (std::is_integral_v<T>)
            return fmt::format("a whole number from {} to {} ({})", +std::numeric_limits<T>::min(),
                               +std::numeric_limits<T>::max(), typeName(type));
        else if (parseReal(text, zero) == NumberFault::OutOfRange)
            return fmt::format("a number of at most {:.2g} ({})", double(std::numeric_limits<T>::max()), typeName(type));
        else
            return "a number";
    });
    return fmt::format("got {}, expected {}", inQuotes(text), expected);
}

bool isFinite(const Pair& pair) noexcept
{
    return std::isfinite(pair[0]) && std::isfinite(pair[1]) && std::isfinite(pair[2]) && std::isfinite(pair[3]);
}

void packPoints(const std::vector<Pair>& pairs, int setIdx, DataType type, Layout layout, void* points) noexcept
{
    withType(type, [&](auto zero) { packAs(pairs, setIdx, layout, static_cast<decltype(zero)*>(points)); });
}

}  // namespace esttform::app
