// InlierWriter: the rows of the input with a last column that says whether the block took the pair as an inlier.
// Comma-separated whatever the input had; a header is made if there was none. Where the input is such a file itself,
// its last column is replaced.
#pragma once

#include "matches/match_reader.h"
#include "output/output_file.h"

namespace esttform::app {

class InlierWriter {
public:
    /// Opens the output.
    ///
    /// @param header  of the input, comma-separated
    /// @throws Failure  as OutputFile
    InlierWriter(const std::string& path, const std::string& header, Unfinished unfinished);

    /// Writes the rows of one step. A step that the block refused has no inliers.
    ///
    /// @param frame  read with keepRows
    void write(const MatchFrame& frame, const StepResult& result);

    void flush() { mOutput.flush(); }
    void commit() { mOutput.commit(); }

private:
    OutputFile mOutput;
    bool mReplaces;       ///< the input's last column is of this name already
    std::string mHeader;  ///< until the first step: a run without one leaves what was there
};

}  // namespace esttform::app
