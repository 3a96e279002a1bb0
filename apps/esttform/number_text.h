// Numbers from text and back, independent of the locale, and text from outside made fit for a message.
// Every reader and writer of the program uses these, so that a number means the same everywhere.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace esttform::app {

enum class NumberFault {
    None,
    NotANumber,  ///< something else, or more than a number
    OutOfRange,  ///< a number too large for the type
};

/// Reads a whole text as one decimal number, infinity ("inf") or NaN ("nan"); a leading '+' is admitted, space is not.
/// A number too small for T becomes 0. T is float or double; rounding is to nearest, in one step.
///
/// @param value  out, changed only when the result is None
template <typename T>
NumberFault parseReal(std::string_view text, T& value) noexcept;

/// As parseReal for double, without the reason.
std::optional<double> parseReal(std::string_view text) noexcept;

/// Reads a whole number written in any way a real may be written ("7", "7.0", "7e0").
std::optional<std::int64_t> parseWhole(std::string_view text) noexcept;

/// Shortest text that reads back to the same double.
std::string exactText(double value);

/// A number for people: nine digits are more than any coordinate needs, and a zero has no sign.
std::string shortNumber(double value);

/// Two numbers with a separator in between ("0.5,0.5", "640x480").
std::optional<std::array<double, 2>> parseTwoReals(std::string_view text, char separator) noexcept;

/// Text from outside in quotes for a message: at most 40 bytes of it, bytes that do not print as \xNN.
std::string inQuotes(std::string_view text);

/// Text from outside as valid UTF-8: what is not becomes U+FFFD.
std::string validText(const std::string& text);

/// The last part of a path, as validText.
std::string fileNameOf(const std::string& path);

/// "1 pair", "2 pairs".
std::string counted(std::int64_t num, const char* noun);

}  // namespace esttform::app
