#include "frame_source.h"

#include "failure.h"
#include "number_text.h"
#include "option_checks.h"

#include <fmt/format.h>

#include <algorithm>

namespace esttform::app {

void addInputOptions(CLI::App& command, InputOptions& options)
{
    const char* const INPUT = "Input";
    command.add_option("MATCHES", options.path,
                       "CSV or TSV file of matched pairs, '-' for standard input: columns x1,y1,x2,y2 by name or, without "
                       "a header, in this order; with a column named frame, each run of rows with one frame number is a "
                       "step of its own (a number that is skipped is no step)")
        ->required()->group(INPUT);
    command.add_option("--columns", options.columns,
                       "columns of x1,y1,x2,y2 and perhaps frame: names of the header or positions counted from 1")
        ->delimiter(',')->allow_extra_args(false)->type_name("LIST")->group(INPUT);
    command.add_option("--max-points", options.maxPtsNum,
                       "most pairs of a step, so that steps run as they are read (default: the largest step of the input)")
        ->check(wholeBetween(1, static_cast<std::int64_t>(MatchReader::PAIR_MAX_NUM)))->type_name("N")->group(INPUT);
}

FrameSource::FrameSource(const InputOptions& input, const ReaderOptions& options, int sampleSize, const char* typeText)
    : mReader(input.path, options), mIsStreamed(input.maxPtsNum.has_value()), mSampleSize(sampleSize), mTypeText(typeText),
      mMaxPtsNum(input.maxPtsNum.value_or(sampleSize))
{
    if (mIsStreamed) {
        mFrames.resize(1);
        return;
    }
    for (MatchFrame frame; read(frame); mFrames.push_back(std::move(frame)))
        mMaxPtsNum = std::max(mMaxPtsNum, static_cast<std::int32_t>(frame.pairs.size()));
}

/// Reads one step and refuses it if it can never be carried out.
bool FrameSource::read(MatchFrame& frame)
{
    if (!mReader.next(frame))
        return false;
    const auto pairNum = static_cast<std::int64_t>(frame.pairs.size());
    if (!mReader.hasFrames() && pairNum < mSampleSize)
        throw Failure(fmt::format("{}: {}, {} {} transformation needs at least {}", mReader.name(),
                                  counted(pairNum, "pair"), mTypeText[0] == 'a' ? "an" : "a", mTypeText, mSampleSize));
    if (mIsStreamed && pairNum > mMaxPtsNum)
        throw Failure(fmt::format("{}: {}{}, expected at most {} (--max-points)", mReader.name(),
                                  frame.number ? fmt::format("frame {}: ", *frame.number) : "",
                                  counted(pairNum, "pair"), mMaxPtsNum));
    return true;
}

const MatchFrame* FrameSource::next()
{
    if (mIsStreamed) {
        mNextIdx = 0;
        if (!read(mFrames.front()))
            return nullptr;
    }
    if (mNextIdx == mFrames.size())
        return nullptr;
    const MatchFrame& frame = mFrames[mNextIdx++];
    mNonFiniteNum += frame.nonFiniteNum;
    mPairNum += static_cast<std::int64_t>(frame.pairs.size());
    return &frame;
}

}  // namespace esttform::app
