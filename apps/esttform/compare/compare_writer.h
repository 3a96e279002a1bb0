// What 'compare' says about the steps of two results: text for people, or one JSON object.
#pragma once

#include "compare/compare.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

/// The whole of a comparison in figures.
struct ComparisonSummary {
    std::int64_t comparedNum = 0;           ///< steps with a transformation in both
    std::int64_t neitherNum = 0;            ///< steps without one in any
    std::int64_t onlyANum = 0, onlyBNum = 0;
    double medianPx = 0.0, maxMeanPx = 0.0; ///< of the compared steps' mean corner distances
    Agreement inliers;                      ///< sums
    bool hasInliers = false;
    std::optional<double> tolerance;        ///< pixels
    std::int64_t differingNum = 0;          ///< steps beyond the tolerance
};

/// @param isMissingIgnored  a step that has a transformation in one result only is not beyond the tolerance
ComparisonSummary summaryOf(const std::vector<StepComparison>& steps, std::optional<double> tolerance, bool isMissingIgnored);

struct ComparisonNames {
    std::string a, b;
    std::array<int, 2> size;
};

std::string comparisonText(const std::vector<StepComparison>& steps, const ComparisonSummary& summary,
                           const ComparisonNames& names);

/// One object: a, b, size, steps (one a line; distances null where there is none or it is infinite), summary.
std::string comparisonJson(const std::vector<StepComparison>& steps, const ComparisonSummary& summary,
                           const ComparisonNames& names);

}  // namespace esttform::app
