#include "options/option_checks.h"

#include "number_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace esttform::app {

namespace {

template <typename Admits>
CLI::Validator check(const std::string& name, const std::string& expected, Admits admits)
{
    return CLI::Validator(
        [expected, admits](std::string& text) {
            return admits(text) ? std::string() : fmt::format("got {}, expected {}", inQuotes(text), expected);
        },
        "", name);
}

}  // namespace

CLI::Validator realWithin(const RealRange& range)
{
    return check("REAL", range.text(), [range](const std::string& text) {
        const auto value = parseReal(text);
        return value && range.admits(*value);
    });
}

CLI::Validator wholeBetween(std::int64_t lowest, std::int64_t highest)
{
    return check("WHOLE", fmt::format("a whole number from {} to {}", lowest, highest), [=](const std::string& text) {
        std::int64_t value = 0;
        const char* const end = text.data() + text.size();
        const auto parsed = std::from_chars(text.data(), end, value);
        return parsed.ec == std::errc() && parsed.ptr == end && value >= lowest && value <= highest;
    });
}

CLI::Validator oneOf(const std::vector<std::string>& words)
{
    return check(fmt::format("{}", fmt::join(words, "|")), fmt::format("{}", fmt::join(words, ", ")), [words](const std::string& text) {
        return std::find(words.begin(), words.end(), text) != words.end();
    });
}

}  // namespace esttform::app
