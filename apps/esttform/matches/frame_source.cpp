#include "matches/frame_source.h"

#include "failure.h"
#include "number_text.h"
#include "options/option_checks.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace esttform::app {

namespace {

ReaderOptions readerOptionsOf(const InputOptions& input, ReaderOptions options)
{
    if (input.isFollowed && input.path == "-")
        throw Failure("--follow: got standard input, expected a file; standard input is read to its end in any case");
    options.isFollowed = input.isFollowed;
    return options;
}

bool isFile(const std::string& path) noexcept
{
    std::error_code ignored;                             // the reader says what is wrong with a path
    return std::filesystem::is_regular_file(path, ignored);
}

}  // namespace

void addColumnsOption(CLI::App& command, std::vector<std::string>& columns, const char* group)
{
    command.add_option("--columns", columns,
                       "columns of x1,y1,x2,y2 and perhaps frame: names of the header or positions counted from 1")
        ->delimiter(',')->allow_extra_args(false)->type_name("LIST")->group(group);
}

void addInputOptions(CLI::App& command, InputOptions& options)
{
    const char* const INPUT = "Input";
    command.add_option("MATCHES", options.path,
                       "CSV or TSV file of matched pairs, '-' for standard input: columns x1,y1,x2,y2 by name or, without "
                       "a header, in this order; with a column named frame, each run of rows with one frame number is a "
                       "step of its own (a number that is skipped is no step)")
        ->required()->group(INPUT);
    addColumnsOption(command, options.columns, INPUT);
    command.add_option("--max-points", options.maxPtsNum,
                       "most pairs of a step, refuses larger ones (default: the largest step of the input; of a stream, the "
                       "largest so far)")
        ->check(wholeBetween(1, static_cast<std::int64_t>(MatchReader::PAIR_MAX_NUM)))->type_name("N")->group(INPUT);
}

FrameSource::FrameSource(const InputOptions& input, const ReaderOptions& options, int sampleSize, const char* typeText)
    : mIsBounded(input.maxPtsNum.has_value()),
      mIsStreamed(mIsBounded || input.isFollowed || input.path == "-" || !isFile(input.path)),
      mSampleSize(sampleSize), mTypeText(typeText), mMaxPtsNum(input.maxPtsNum.value_or(sampleSize)),
      mReader(input.path, readerOptionsOf(input, options))
{
    if (input.isFollowed && !mReader.hasFrames())
        throw Failure(fmt::format("{}: no column frame, which says where a step ends; --follow needs one", mReader.name()));
    if (mIsBounded)
        return;
    if (mIsStreamed || !mReader.hasFrames()) {
        mHasFrame = read(mReader, mFrame);
        mStepNum = mReader.hasFrames() ? 0 : 1;
    } else {
        MatchReader scanner(input.path, options);
        while (read(scanner, mFrame))
            ++mStepNum;
        mIsBounded = true;
    }
}

/// Reads one step and refuses it if it can never be carried out.
bool FrameSource::read(MatchReader& reader, MatchFrame& frame)
{
    if (!reader.next(frame))
        return false;
    const auto pairNum = static_cast<std::int64_t>(frame.pairs.size());
    if (!reader.hasFrames() && pairNum < mSampleSize)
        throw Failure(fmt::format("{}: {}, {} {} transformation needs at least {}", reader.name(),
                                  counted(pairNum, "pair"), mTypeText[0] == 'a' ? "an" : "a", mTypeText, mSampleSize));
    if (mIsBounded && pairNum > mMaxPtsNum)
        throw Failure(fmt::format("{}: {}{}, expected at most {} (--max-points)", reader.name(),
                                  frame.number ? fmt::format("frame {}: ", *frame.number) : "",
                                  counted(pairNum, "pair"), mMaxPtsNum));
    mMaxPtsNum = std::max(mMaxPtsNum, static_cast<std::int32_t>(pairNum));
    return true;
}

const MatchFrame* FrameSource::next()
{
    if (!std::exchange(mHasFrame, false) && !read(mReader, mFrame))
        return nullptr;
    mNonFiniteNum += mFrame.nonFiniteNum;
    mPairNum += static_cast<std::int64_t>(mFrame.pairs.size());
    return &mFrame;
}

}  // namespace esttform::app
