// FrameSource: the steps of a run with the bound of their sizes, which the block must know before the first of them.
// With a bound from the user the input is streamed; without one it is read to its end first.
#pragma once

#include "match_reader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace esttform::app {

/// The options that say what is read.
struct InputOptions {
    std::string path;
    std::vector<std::string> columns;
    std::optional<std::int32_t> maxPtsNum;
};

/// Adds the input file and its options to a command. `options` must outlive the parsing.
void addInputOptions(CLI::App& command, InputOptions& options);

class FrameSource {
public:
    /// Opens the input; without a bound reads all of it.
    ///
    /// @param sampleSize  pairs that the transformation needs: the least bound, and the least number of pairs of an
    ///                    input without frames
    /// @throws Failure  as MatchReader; too few pairs; a step with more pairs than the bound
    FrameSource(const InputOptions& input, const ReaderOptions& options, int sampleSize, const char* typeText);

    /// The next step's rows, null at the end. Valid until the next call. Throws as MatchReader::next.
    const MatchFrame* next();

    /// Bound of the pairs of a step.
    std::int32_t maxPtsNum() const noexcept { return mMaxPtsNum; }
    /// False when every step has exactly maxPtsNum pairs.
    bool isVariableSize() const noexcept { return mIsStreamed || mReader.hasFrames(); }
    const MatchReader& reader() const noexcept { return mReader; }
    /// Pairs with a coordinate that is not finite, in the steps handed out.
    std::int64_t nonFiniteNum() const noexcept { return mNonFiniteNum; }
    /// All pairs of the steps handed out.
    std::int64_t pairNum() const noexcept { return mPairNum; }

private:
    bool read(MatchFrame& frame);

    MatchReader mReader;
    bool mIsStreamed;
    int mSampleSize;
    const char* mTypeText;
    std::int32_t mMaxPtsNum = 0;
    std::vector<MatchFrame> mFrames;   ///< all steps, or the one that is streamed
    std::size_t mNextIdx = 0;
    std::int64_t mNonFiniteNum = 0;
    std::int64_t mPairNum = 0;
};

}  // namespace esttform::app
