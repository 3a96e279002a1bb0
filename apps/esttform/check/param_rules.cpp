#include "check/param_rules.h"

#include "blockhost/dialog_params.h"

#include <cmath>
#include <limits>

namespace esttform::check {

namespace {

enum class Kind { Code, Checkbox, Number, WholeNumber, Percentage, Unchecked };

struct Rule {
    Kind kind;
    int highest;   ///< of a code, which begins at 1
};

constexpr Rule RULES[PARAM_NUM] = {
    {Kind::Code, 3},        {Kind::Checkbox, 0},   {Kind::Code, 2},     {Kind::Number, 0},   {Kind::Number, 0},
    {Kind::Code, 2},        {Kind::WholeNumber, 0}, {Kind::WholeNumber, 0}, {Kind::Percentage, 0}, {Kind::Checkbox, 0},
    {Kind::Percentage, 0},  {Kind::Checkbox, 0},   {Kind::Checkbox, 0}, {Kind::Code, 3},     {Kind::Code, 2},
    {Kind::Checkbox, 0},    {Kind::Unchecked, 0},  {Kind::Unchecked, 0}};

const Rule& ruleOf(int idx) noexcept
{
    return RULES[static_cast<std::size_t>(idx)];
}

bool isNumber(int idx) noexcept
{
    const Kind kind = ruleOf(idx).kind;
    return kind == Kind::Number || kind == Kind::WholeNumber || kind == Kind::Percentage;
}

bool isWhole(double value) noexcept
{
    return std::isfinite(value) && std::trunc(value) == value;
}

}  // namespace

const std::array<double, 22> ODD_VALUES = {
    0.0, -0.0, 1.0, 2.0, 3.0, 4.0, 0.5, 1.9, -1.0, 99.9, 100.0, 100.5, 255.0, 256.0, 2147483648.0, 4294967296.0, 1e19, 1e308,
    std::numeric_limits<double>::denorm_min(), std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
    std::numeric_limits<double>::quiet_NaN()};

bool isFlagSet(double value) noexcept
{
    return std::fabs(value) < 9223372036854775808.0 && (static_cast<std::int64_t>(value) & 0xFF) != 0;
}

bool isInUse(int idx, const Params& params) noexcept
{
    const bool isThreshold = isFlagSet(params[EXCLUDE_OUTLIERS]) && std::trunc(params[METHOD]) == 1.0;
    const bool isMedian = isFlagSet(params[EXCLUDE_OUTLIERS]) && std::trunc(params[METHOD]) == 2.0;
    const bool isConfidence = isThreshold && std::trunc(params[SAMPLE_NUM_SOURCE]) == 2.0;
    switch (idx) {
    case DIS_THR_PROJECTIVE: return isThreshold && std::trunc(params[TRANSFORM_TYPE]) == 3.0;
    case DIS_THR_AFFINE: return isThreshold && std::trunc(params[TRANSFORM_TYPE]) != 3.0;
    case SAMPLE_NUM_SOURCE: return isThreshold;
    case MAX_RANDOM_SAMPLING:
    case DESIRED_CONFIDENCE: return isConfidence;
    case NUM_RANDOM_SAMPLING: return isMedian || (isThreshold && !isConfidence);
    case INLIER_PERCENTAGE: return isThreshold && isFlagSet(params[BREAK_BY_PERCENTAGE]);
    default: return true;
    }
}

bool isAdmitted(int idx, const Params& params) noexcept
{
    const double value = params[static_cast<std::size_t>(idx)];
    if (!isInUse(idx, params))
        return true;
    switch (ruleOf(idx).kind) {
    case Kind::Code: return isWhole(value) && value >= 1.0 && value <= ruleOf(idx).highest;
    case Kind::Checkbox: return value == 0.0 || value == 1.0;
    case Kind::Number: return value >= 0.0;
    case Kind::WholeNumber: return isWhole(value) && value >= 0.0;
    case Kind::Percentage: return value >= 0.0 && value <= 100.0;
    case Kind::Unchecked: break;
    }
    return true;
}

bool isTunable(int idx, const Params& params) noexcept
{
    return isNumber(idx) && isInUse(idx, params);
}

}  // namespace esttform::check
