// Points of every element type: names of the types, coordinates from text, and the block's two memory layouts.
// A coordinate is held as the double that its points type gives it; every type's values are exact in a double.
#pragma once

#include "blockhost/estimator.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace esttform::app {

/// One matched pair: x1, y1, x2, y2.
using Pair = std::array<double, 4>;

/// "double", "single", "int8", ...
const char* typeName(DataType type) noexcept;
/// The eight type names in the order of DataType.
const std::vector<std::string>& typeNames();
/// The type of a name; empty for any other text.
std::optional<DataType> typeOfName(std::string_view name);

/// A coordinate as the points type holds it.
///
/// Real types round to nearest and admit inf and nan. Integer types admit whole numbers in range however written
/// (12, 12.0, 1.2e1) and nothing else.
///
/// @return empty if the type does not hold the number; refusalOf says why
std::optional<double> parseCoordinate(std::string_view text, DataType type) noexcept;

/// 'got "12.5", expected a whole number from 0 to 255 (uint8)' for a text that parseCoordinate refuses.
std::string refusalOf(std::string_view text, DataType type);

/// True if the four coordinates are finite.
bool isFinite(const Pair& pair) noexcept;

/// Writes one set of points in the block's element type and layout.
///
/// @param setIdx  0: the first points of the pairs, 1: the second
/// @param points  out, 2*pairs.size() elements of the type; see Layout for their order
void packPoints(const std::vector<Pair>& pairs, int setIdx, DataType type, Layout layout, void* points) noexcept;

}  // namespace esttform::app
