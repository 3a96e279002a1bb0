#include "estimate/inlier_writer.h"

#include <utility>

namespace esttform::app {

InlierWriter::InlierWriter(const std::string& path, const std::string& header, Unfinished unfinished)
    : mOutput(path, unfinished), mHeader(header + ",inlier\n")
{
}

void InlierWriter::write(const MatchFrame& frame, const StepResult& result)
{
    mOutput.write(std::exchange(mHeader, ""));
    for (std::size_t i = 0; i < frame.rows.size(); ++i) {
        const bool isInlier = result.inliers != nullptr && result.inliers[i] != 0;
        mOutput.write(frame.rows[i]);
        mOutput.write(isInlier ? ",1\n" : ",0\n");
    }
}

}  // namespace esttform::app
