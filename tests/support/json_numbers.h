// Numbers of test files: JSON numbers, or "nan", "inf" and "-inf" as text.
#pragma once

#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <vector>

using Json = nlohmann::json;

inline double inputValue(const Json& value)
{
    if (value.is_number()) return value.get<double>();
    const std::string text = value.get<std::string>();
    if (text == "nan") return std::numeric_limits<double>::quiet_NaN();
    if (text == "inf") return std::numeric_limits<double>::infinity();
    if (text == "-inf") return -std::numeric_limits<double>::infinity();
    throw std::runtime_error("not a number: " + text);
}

inline std::vector<double> inputValues(const Json& values)
{
    std::vector<double> result;
    for (const Json& value : values) result.push_back(inputValue(value));
    return result;
}
