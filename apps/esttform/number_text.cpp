#include "number_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>

namespace esttform::app {

namespace {

constexpr std::size_t QUOTED_MAX = 40;
/// Whole numbers up to 2^53 are exact in a double.
constexpr double WHOLE_MAX = 9007199254740992.0;

/// A number that T cannot hold is either huge or tiny; the wider type tells which.
bool isTiny(std::string_view text) noexcept
{
    long double wide = 0.0L;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), wide);
    return code == std::errc() && std::fabs(wide) < 1.0L;
}

}  // namespace

template <typename T>
NumberFault parseReal(std::string_view text, T& value) noexcept
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    T parsed = T(0);
    const char* const textEnd = text.data() + text.size();
    const auto [end, code] = std::from_chars(text.data(), textEnd, parsed);
    if (code == std::errc::invalid_argument || end != textEnd)
        return NumberFault::NotANumber;
    if (code == std::errc::result_out_of_range) {
        if (!isTiny(text))
            return NumberFault::OutOfRange;
        parsed = T(0);
    }
    value = parsed;
    return NumberFault::None;
}

template NumberFault parseReal<float>(std::string_view text, float& value) noexcept;
template NumberFault parseReal<double>(std::string_view text, double& value) noexcept;

std::optional<double> parseReal(std::string_view text) noexcept
{
    double value = 0.0;
    if (parseReal(text, value) != NumberFault::None)
        return std::nullopt;
    return value;
}

std::optional<std::int64_t> parseWhole(std::string_view text) noexcept
{
    const std::optional<double> value = parseReal(text);
    if (!value || !(std::fabs(*value) <= WHOLE_MAX) || *value != std::trunc(*value))
        return std::nullopt;
    return static_cast<std::int64_t>(*value);
}

std::string exactText(double value)
{
    return fmt::format("{}", value);
}

std::string shortNumber(double value)
{
    return fmt::format("{:.9g}", value + 0.0);
}

std::optional<std::array<double, 2>> parseTwoReals(std::string_view text, char separator) noexcept
{
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos)
        return std::nullopt;
    const auto first = parseReal(text.substr(0, at)), second = parseReal(text.substr(at + 1));
    return first && second ? std::optional(std::array<double, 2>{*first, *second}) : std::nullopt;
}

std::string inQuotes(std::string_view text)
{
    std::string shown = "\"";
    for (const char c : text.substr(0, QUOTED_MAX)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7f)
            shown += fmt::format("\\x{:02x}", byte);
        else
            shown += c;
    }
    return shown + (text.size() > QUOTED_MAX ? "...\"" : "\"");
}

std::string validText(const std::string& text)
{
    using nlohmann::json;
    return json::parse(json(text).dump(-1, ' ', false, json::error_handler_t::replace)).get<std::string>();
}

std::string fileNameOf(const std::string& path)
{
    return validText(path.substr(path.rfind('/') + 1));
}

std::string counted(std::int64_t num, const char* noun)
{
    return fmt::format("{} {}{}", num, noun, num == 1 ? "" : "s");
}

}  // namespace esttform::app
