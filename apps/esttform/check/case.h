// Case: one set-up of the block under check, and what its dialog values mean by the documented rules.
#pragma once

#include "blockhost/block.h"
#include "blockhost/dialog_params.h"

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace esttform::check {

/// The generator of every random choice. Its numbers are the same everywhere; the standard's distributions are not.
class Random {
public:
    explicit Random(std::uint32_t seed) : mGenerator(seed) {}
    /// A whole number from 0 to num - 1.
    int below(int num) { return static_cast<int>(mGenerator() % static_cast<std::uint32_t>(num)); }
    /// A number from lowest to highest.
    double between(double lowest, double highest)
    {
        return lowest + (highest - lowest) * (static_cast<double>(mGenerator()) / 4294967296.0);
    }

private:
    std::mt19937 mGenerator;
};

/// How candidates are found and scored.
enum class Scheme { AllPairs, FixedNumber, Confidence, Median };
constexpr int SCHEME_NUM = 4;

struct Case {
    Params params{};
    DataType pointsType = DataType::Double;
    int ptsNum = 0;                       ///< point pairs; with variable size the bound
    bool isVariable = false;

    int transformType() const { return static_cast<int>(params[TRANSFORM_TYPE]); }
    int sampleSize() const { return transformType() + 1; }
    bool isRobust() const { return params[EXCLUDE_OUTLIERS] != 0.0; }
    bool hasMask() const { return isRobust() && params[OUTPUT_INLIERS] != 0.0; }
    Layout layout() const { return params[POINTS_IN_ROWS] != 0.0 ? Layout::Rows : Layout::Columns; }
    bool isReal() const { return pointsType == DataType::Double || pointsType == DataType::Single; }
    DataType tformType() const;
    blockhost::Dims sizeOf(int pairNum) const;
    /// "affine, rows, uint8, median, 12 pairs, variable size".
    std::string text() const;
};

Case makeCase(int transformType, Layout layout, Scheme scheme, DataType pointsType, int ptsNum, bool isVariable);
/// 48 cases: every type, layout, scheme and kind of size, every type of points, both types of TForm.
std::vector<Case> variety();
/// Any case of 1 to 40 samples' worth of pairs.
Case randomCase(Random& random);

/// The signal that a point input of the case is connected to.
blockhost::Signal signalOf(const Case& c);
/// The set-up with both inputs connected.
blockhost::BlockSetup setupOf(const std::string& path, const Case& c);
/// The set-up with nothing connected, for dialog values of any kind.
blockhost::BlockSetup openSetup(const std::string& path, const Params& params);

}  // namespace esttform::check
