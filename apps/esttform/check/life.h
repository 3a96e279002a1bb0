// Life: one instance of the block under check from set-up to terminate, with what a strict host looks at on the way.
#pragma once

#include "check/case.h"
#include "matches/points.h"

#include <string>
#include <vector>

namespace esttform::check {

/// What a step gave, to the bit. TForm comes first, then the mask of the step's pairs.
struct StepRecord {
    std::vector<double> tform;            ///< column by column
    std::vector<std::uint8_t> bytes;      ///< of both outputs
    std::vector<std::uint8_t> mask;
    std::string error;                    ///< identifier of the error; empty for none
    std::string warnings;

    bool isZero() const;
    bool operator==(const StepRecord& other) const;
};

/// Throws a Finding when something is not as the host's interface and the block's documentation say.
class Life {
public:
    /// Sets the block up and starts it.
    Life(const std::string& path, const Case& c);
    Life(const Case& c, blockhost::BlockSetup setup);

    /// One step on the pairs, after seeding the C library's generator. The inputs must stay as they are, outputs of
    /// a refused step too, and of the mask what lies beyond the pairs.
    ///
    /// @param missingNum  points that are left out at the end of the second input
    StepRecord step(const std::vector<app::Pair>& pairs, unsigned seed, int missingNum = 0);
    /// Ends it: the block must forget its user data.
    void end();
    blockhost::Block& block() { return mBlock; }

private:
    Case mCase;
    blockhost::Block mBlock;
};

/// Sets a block up as far as it goes and ends it.
///
/// @return why it stopped, empty when it started
/// @throws Finding  the block breaks the host's rules, or keeps user data after terminate
std::string stopOf(blockhost::Block& block);

/// Ends a block at any point of its life.
void endOf(blockhost::Block& block);

/// TForm is all finite or all zero (without robust estimation only of ordinary points), the mask holds 0 and 1, and no
/// inlier without a transformation. A similarity or an affine map of all inliers onto the origin is all zero, too.
void expectPromise(const StepRecord& record, const Case& c, const std::vector<app::Pair>& pairs);

/// Two steps that must be equal to the bit.
void expectSame(const StepRecord& record, const StepRecord& expected, const std::string& what);

}  // namespace esttform::check
