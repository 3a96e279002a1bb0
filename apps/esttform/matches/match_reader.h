// MatchReader: matched pairs from a CSV or TSV file or standard input, one frame after the other.
// Memory holds one frame; a frame is complete when a row of the next one, or the end of the input, is read.
#pragma once

#include "matches/csv_fields.h"
#include "matches/line_reader.h"
#include "matches/match_columns.h"
#include "matches/points.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

/// The rows of one step.
struct MatchFrame {
    std::optional<std::int64_t> number;  ///< the frame column's value; empty without such a column
    std::vector<Pair> pairs;
    std::vector<std::string> rows;       ///< the input rows, comma-separated, one per pair; only with keepRows
    std::int64_t nonFiniteNum = 0;       ///< pairs with a coordinate that is not finite
};

struct ReaderOptions {
    DataType pointsType = DataType::Double;
    std::vector<std::string> columns;    ///< see findColumns
    const char* columnsName = "--columns";
    bool keepRows = false;               ///< fill MatchFrame::rows
    bool isFollowed = false;             ///< wait for more at the end of the file
};

/// Reads rows of x1, y1, x2, y2 and perhaps a frame number.
///
/// Separators are commas, tabs or semicolons, whichever the first row uses most. Blank lines and lines that begin
/// with '#' are skipped, further columns ignored. Each run of rows with one frame number is a frame; the numbers are
/// labels, so a gap between two of them is no frame, and a number that comes back later begins a frame of its own.
class MatchReader {
public:
    /// Most pairs of a frame: the block counts the elements of its arrays, up to 18 a pair, in 32 bits.
    static constexpr std::size_t PAIR_MAX_NUM = 119'304'647;

    /// Opens the input and reads its first row.
    ///
    /// @param path  "-" for standard input
    /// @throws Failure  as next; also an input without rows
    MatchReader(const std::string& path, const ReaderOptions& options);

    /// The next frame; the memory of the frame given is used again.
    ///
    /// @return false at the end of the input
    /// @throws Failure  with file and line: a row with too few or too many columns, or a number that the points type
    ///                  does not hold
    bool next(MatchFrame& frame);

    bool hasFrames() const noexcept { return mColumns.frameIdx.has_value(); }
    /// The file's name as messages show it.
    const std::string& name() const noexcept { return mLines.name(); }
    /// The header, comma-separated; made up from the names of the columns if the input has none.
    const std::string& header() const noexcept { return mHeader; }

private:
    bool readRow();
    bool readFields();
    std::string makeHeader() const;

    ReaderOptions mOptions;
    LineReader mLines;
    std::optional<CsvSplitter> mSplitter;
    MatchColumns mColumns;
    std::string mHeader;

    // The row read last: it belongs to the next frame while mHasRow is set.
    std::vector<std::string> mFields;
    Pair mPair{};
    std::optional<std::int64_t> mFrameNumber;
    bool mHasRow = false;
};

}  // namespace esttform::app
