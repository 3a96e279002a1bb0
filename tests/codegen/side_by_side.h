// SideBySide: engine and generated code of one block setting, stepped over the same matches with the same random numbers.
// Both draw from this program's rand, which counts and can be scripted; the program needs ENABLE_EXPORTS.
#pragma once

#include "compiled_model.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace codegentest {

/// x1, y1, x2, y2 of each pair.
using Matches = std::vector<std::array<double, 4>>;

/// Seeded matches of makePointSet; whole numbers when asked for.
Matches randomMatches(std::uint32_t seed, int sampleSize, int ptsNum, double noise, int outlierNum, bool isWhole = false);
/// The first ptsNum rows of a CSV file of x1, y1, x2, y2 with a header.
Matches readMatches(const std::string& path, std::size_t ptsNum);

/// Numbers that rand gives from now on, over and over; none: those of the C library.
void scriptRand(const std::vector<int>& numbers);

/// What one step gave.
struct Outcome {
    int status = 0;                     ///< of the generated step
    std::vector<double> tform;          ///< in storage order, widened
    std::string mask;                   ///< a 0 or 1 for each pair; empty without inlier output
    std::int64_t randCalls = 0;
    std::vector<std::string> messages;  ///< of the engine: identifiers of its error and warnings

    bool isFound() const;
};

class SideBySide {
public:
    /// @throws esttform::Error, std::runtime_error
    SideBySide(const esttform::Params& params, esttform::DataType pointsType, std::int32_t maxPtsNum, bool isVariable = false);

    /// One step. The generator is seeded, or the script begins anew.
    Outcome engineStep(const Matches& matches);
    Outcome generatedStep(const Matches& matches);

    esttform::Estimator& engine() { return mEngine; }
    CompiledModel& model() { return mModel; }

private:
    /// Points of set 0 or 1 in the block's layout and type.
    std::vector<char> packed(const Matches& matches, std::size_t set) const;

    esttform::DataType mType;
    esttform::Estimator mEngine;
    CompiledModel mModel;
};

}  // namespace codegentest
