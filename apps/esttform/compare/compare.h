// Comparison of two results step by step: how far the corners of the picture lie apart, and whether the inliers agree.
#pragma once

#include "compare/result_reader.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

/// Two sets of inliers over the same pairs.
struct Agreement {
    std::int64_t aNum = 0, bNum = 0, bothNum = 0;

    /// Pairs in both sets by pairs in any of them, from 0 to 1 (Jaccard index); 1 if both are empty.
    double share() const noexcept;
};

/// One step of A and its counterpart in B.
struct StepComparison {
    std::int64_t step = 0;                 ///< of A, or of B if A has no such step
    std::optional<std::int64_t> frame;
    std::optional<std::string> file;
    bool isInA = false, isInB = false;         ///< there is such a step
    bool isFoundA = false, isFoundB = false;
    double meanPx = 0.0, maxPx = 0.0;      ///< distance of the corners, if both found a map; infinite if one maps a corner to infinity
    std::optional<Agreement> inliers;      ///< empty unless both have masks of as many pairs
    std::optional<std::array<std::size_t, 2>> otherMaskSizes;   ///< pairs of A's and of B's mask, if they differ

    bool hasDistance() const noexcept { return isFoundA && isFoundB; }
};

/// First and last corner: the centres of the top-left and of the bottom-right pixel.
struct Corners {
    double left = 0.0, top = 0.0, right = 0.0, bottom = 0.0;
};

/// Distances of the four corners under two maps, in pixels of the second picture: mean and largest.
///
/// A corner that a map takes to infinity or beyond it (w <= 0) is infinitely far.
std::array<double, 2> cornerDistances(const PointMap& a, const PointMap& b, const Corners& corners) noexcept;

/// Compares all steps, matched by file where both have files, by frame number where both have them, else by step. What
/// occurs several times is matched in order. In ascending order, steps that only one of them has included.
std::vector<StepComparison> compareResults(const ReadResult& a, const ReadResult& b, const Corners& corners);

}  // namespace esttform::app
