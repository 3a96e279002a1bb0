// The options that set up a block, shared by every command that runs or describes one.
// They are kept as given until they are resolved, so that a contradiction can be named instead of being settled silently.
#pragma once

#include "blockhost/estimator.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace esttform::app {

/// What the user said; empty where nothing was said.
struct BlockOptions {
    std::string type = "projective";
    bool isNotRobust = false;
    std::optional<std::string> method;
    std::optional<double> threshold;
    std::optional<double> thresholdPx;
    std::optional<std::uint32_t> sampleNum;
    std::optional<std::uint32_t> maxSampleNum;
    std::optional<double> confidence;
    std::optional<double> stopAtInliers;
    bool isRefine = false;
    bool isNoRefine = false;
    bool isNoInlierOutput = false;
    std::optional<std::string> sampling;
    std::string layout = "columns";
    std::string pointsType = "double";
    std::optional<std::string> tformType;
    std::vector<std::string> params;       ///< "NAME=VALUE" or "INDEX=VALUE", applied last
    std::optional<std::uint32_t> seed;
    std::string blockPath;
};

/// A block's set-up, complete: the dialog values and what follows from them by the block's own reading rules.
struct BlockSetup {
    Params params{};
    DataType pointsType = DataType::Double;
    Options options;                       ///< block path and seed; the caller adds the rest
    int transformType = 3;                 ///< parameter 0 as a code
    bool isRobust = true;
    bool hasInlierOutput = true;

    /// Point pairs that the transformation needs; 0 for a code that the block refuses.
    int sampleSize() const noexcept;
    /// Squared algebraic distance up to which a pair is an inlier; empty when the method has none.
    std::optional<double> threshold() const noexcept;
    /// "similarity", "affine" or "projective".
    const char* typeText() const noexcept;
};

/// Samplings of the median method unless said otherwise: it has no adaptive number, and its inliers are half the pairs.
constexpr std::uint32_t MEDIAN_SAMPLE_NUM = 1000;

/// Adds the options to a command. `options` must outlive the parsing.
void addBlockOptions(CLI::App& command, BlockOptions& options);

/// @throws Failure  options that contradict each other, a --param that names no parameter or gives no number
BlockSetup resolveBlockOptions(const BlockOptions& options);

}  // namespace esttform::app
