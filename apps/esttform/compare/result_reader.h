// Reads results back for comparing them: JSON lines of 'estimate', or a file with the known truth.
#pragma once

#include "geometry/point_map.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

/// One step of a result or of a truth.
struct ReadStep {
    std::int64_t step = 0;                   ///< of a truth its position, counted from 0
    std::optional<std::int64_t> frame;
    std::optional<std::string> file;         ///< that it was estimated from, of a result of many files
    std::optional<PointMap> map;             ///< empty if no transformation was found or none is known
    std::vector<std::uint8_t> inliers;       ///< 0 or 1 per pair; empty without a mask
};

struct ReadResult {
    std::string name;                        ///< as messages show it
    bool isTruth = false;
    std::vector<ReadStep> steps;
    std::optional<std::array<int, 2>> size;  ///< width and height of the first picture, from a truth
};

/// Reads a file. A truth is one JSON object with "matrix" (row by row, 3-by-3) or "matrices", one a frame from 0, and
/// perhaps "size1" or "frame_size", [width, height].
///
/// @param path         "-" for standard input
/// @param isInRows     a 3-by-3 TForm is of points in rows, that is transposed; smaller ones tell by their shape
/// @throws Failure     with file and line: not readable, or neither of the two
ReadResult readResult(const std::string& path, bool isInRows);

}  // namespace esttform::app
