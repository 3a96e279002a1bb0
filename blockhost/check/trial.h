// Trial: a block that a check opens, feeds and watches.
#pragma once

#include "../block.h"

#include <array>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace blockhost::check {

/// What is wrong with the block.
class Finding : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

using Pair = std::array<double, 4>;  ///< x1, y1, x2, y2
using Matches = std::vector<Pair>;

/// Scattered whole-pixel points, all within 0 and 100, and their images under a shift by (2, 3).
Matches shiftedMatches(int num);
/// Points as they should not be: few or many, repeated, on a line, huge, not finite (real types), unrelated.
Matches badMatches(std::mt19937& random, int num, bool isReal);

/// Settings without chance: projective, cyclic sampling of 20 samples, points of double.
esttform::Settings plainSettings();
/// Any settings.
esttform::Settings randomSettings(std::mt19937& random);

struct TrialOptions {
    int maxPtsNum = 12;
    bool isVariableSize = false;
    std::vector<Offer> offerOrder = {};
};

/// Outcome of a step: error identifier, or the bytes of the outputs.
struct Outcome {
    std::string error;
    std::vector<unsigned char> outputs;
    bool operator==(const Outcome& other) const { return error == other.error && outputs == other.outputs; }
    bool operator!=(const Outcome& other) const { return !(*this == other); }
};

class Trial {
public:
    /// Loads the block; it is not opened. @throws Error (Load)
    ///
    /// @param trace   receives the calls between host and block
    /// @param inputs  in place of the points that the settings ask for, when not empty
    Trial(const std::string& path, const esttform::Settings& settings, const TrialOptions& options = {},
          std::function<void(std::string_view)> trace = {}, const std::vector<Signal>& inputs = {});

    Block& block() noexcept { return mBlock; }
    /// Opens the block. @throws Error: what it reports
    void open() { mBlock.open(); }
    /// One step. @throws Finding  an input changed
    Outcome step(const Matches& matches);
    /// The same step twice over outputs that hold something else. @throws Finding  also for results that differ
    Outcome stepTwice(const Matches& matches);
    /// Element idx of TForm, widened.
    double tform(int idx) const;
    /// Sizes, types and modes of all ports as propagation settled them.
    std::string portsText() const;

private:
    void writeInputs(const Matches& matches);
    std::vector<unsigned char> inputBytes() const;
    Outcome stepOver(int pattern);

    esttform::Settings mSettings;
    TrialOptions mOptions;
    Block mBlock;
};

/// A set-up that must succeed. @throws Finding with the reason when it does not
void openOrFind(Trial& trial, const std::string& what);

}  // namespace blockhost::check
