// FrameSource: the steps of a run with the bound of their sizes, which the block wants before the first of them.
// Memory holds one step. A file is read twice when there is no bound from the user; a stream has none but what came so far.
#pragma once

#include "matches/match_reader.h"

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
    bool isFollowed = false;
};

/// Adds --columns to a group of a command's options. `columns` must outlive the parsing.
void addColumnsOption(CLI::App& command, std::vector<std::string>& columns, const char* group);

/// Adds the input file and its options to a command. `options` must outlive the parsing.
void addInputOptions(CLI::App& command, InputOptions& options);

class FrameSource {
public:
    /// Opens the input. Without a bound from the user a file with frames is read once to find it, of a stream the first step.
    ///
    /// @param sampleSize  pairs that the transformation needs: the least bound, and the least number of pairs of an
    ///                    input without frames
    /// @throws Failure  as MatchReader; too few pairs; a step with more pairs than the bound; a followed input without
    ///                  frames, of which no step would be complete
    FrameSource(const InputOptions& input, const ReaderOptions& options, int sampleSize, const char* typeText);

    /// The next step's rows, null at the end. Valid until the next call. Throws as MatchReader::next.
    const MatchFrame* next();

    /// Bound of the pairs of a step. It grows with the steps of a stream without a bound from the user.
    std::int32_t maxPtsNum() const noexcept { return mMaxPtsNum; }
    /// False when every step has exactly maxPtsNum pairs.
    bool isVariableSize() const noexcept { return mReader.hasFrames() || mIsBounded; }
    /// True when somebody may wait for each step: the input is no file, or is followed, or steps were asked for as they come.
    bool isStreamed() const noexcept { return mIsStreamed; }
    /// All steps; 0 when their number is not known before the last.
    std::int64_t stepNum() const noexcept { return mStepNum; }
    const MatchReader& reader() const noexcept { return mReader; }
    /// Pairs with a coordinate that is not finite, in the steps handed out.
    std::int64_t nonFiniteNum() const noexcept { return mNonFiniteNum; }
    /// All pairs of the steps handed out.
    std::int64_t pairNum() const noexcept { return mPairNum; }

private:
    bool read(MatchReader& reader, MatchFrame& frame);

    bool mIsBounded;                   ///< by the user
    bool mIsStreamed;
    int mSampleSize;
    const char* mTypeText;
    std::int32_t mMaxPtsNum;
    MatchReader mReader;
    MatchFrame mFrame;
    bool mHasFrame = false;            ///< mFrame was read ahead
    std::int64_t mStepNum = 0;
    std::int64_t mNonFiniteNum = 0;
    std::int64_t mPairNum = 0;
};

}  // namespace esttform::app
