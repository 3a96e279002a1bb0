#include "estimate/inlier_writer.h"

#include <string_view>
#include <utility>

namespace esttform::app {

namespace {

constexpr std::string_view COLUMN = ",inlier";

bool endsWithColumn(const std::string& header)
{
    return header.size() >= COLUMN.size() && header.compare(header.size() - COLUMN.size(), COLUMN.size(), COLUMN) == 0;
}

}  // namespace

InlierWriter::InlierWriter(const std::string& path, const std::string& header, Unfinished unfinished)
    : mOutput(path, unfinished),
      mReplaces(endsWithColumn(header)),
      mHeader(header + (mReplaces ? "\n" : ",inlier\n"))
{
}

void InlierWriter::write(const MatchFrame& frame, const StepResult& result)
{
    mOutput.write(std::exchange(mHeader, ""));
    for (std::size_t i = 0; i < frame.rows.size(); ++i) {
        const bool isInlier = result.inliers != nullptr && result.inliers[i] != 0;
        mOutput.write(mReplaces ? frame.rows[i].substr(0, frame.rows[i].rfind(',')) : frame.rows[i]);
        mOutput.write(isInlier ? ",1\n" : ",0\n");
    }
}

}  // namespace esttform::app
