// What people say about a block, and the dialog values that stand for it. Shared by the program and the Python module.
// It is kept as given until it is resolved, so that a contradiction can be named instead of being settled silently.
#pragma once

#include "blockhost/estimator.h"
#include "options/real_range.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// The words that options take.
extern const std::vector<std::string> TYPE_WORDS, METHOD_WORDS, SAMPLING_WORDS, LAYOUT_WORDS, TFORM_TYPE_WORDS;
constexpr RealRange SQUARED_UNITS{0.0, std::numeric_limits<double>::infinity(), "squared point units"};
constexpr RealRange POINT_UNITS{0.0, std::numeric_limits<double>::infinity(), "point units"};
constexpr RealRange PERCENT{0.0, 100.0, "percent"};
/// Samplings are counted in a signed 32-bit integer.
constexpr std::int64_t SAMPLE_NUM_MAX = std::numeric_limits<std::int32_t>::max();
/// Samplings of the median method unless said otherwise: it has no adaptive number, and its inliers are half the pairs.
constexpr std::uint32_t MEDIAN_SAMPLE_NUM = 1000;

/// How the caller spells an option, for messages: "--" and its name for the program.
using OptionSpelling = std::string (*)(std::string_view name);
std::string commandLineOption(std::string_view name);

/// @throws Failure  a word or number that an option does not take, options that contradict each other, a --param that names no parameter or gives no number
BlockSetup resolveBlockOptions(const BlockOptions& options, OptionSpelling spelling = commandLineOption);

}  // namespace esttform::app
