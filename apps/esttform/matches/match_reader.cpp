#include "matches/match_reader.h"

#include "failure.h"
#include "number_text.h"

#include <fmt/format.h>

namespace esttform::app {

namespace {

bool isSkipped(std::string_view line) noexcept
{
    const std::size_t first = line.find_first_not_of(" \t");
    return first == std::string_view::npos || line[first] == '#';
}

}  // namespace

MatchReader::MatchReader(const std::string& path, const ReaderOptions& options) : mOptions(options), mLines(path, options.isFollowed)
{
    if (!readFields())
        throw Failure(fmt::format("{}: no rows, expected rows of x1,y1,x2,y2", name()));
    mColumns = findColumns(mFields, mOptions.columns, mOptions.columnsName, mLines.place());
    if (mColumns.hasHeader) {
        mHeader = csvRow(mFields);
        if (!readFields())
            throw Failure(fmt::format("{}: no rows after the header, expected rows of matched points", name()));
    } else {
        mHeader = makeHeader();
    }
    mHasRow = readRow();
}

/// Names for the columns of an input without header; a column that is not used is called by its position.
std::string MatchReader::makeHeader() const
{
    std::vector<std::string> names(mColumns.columnNum);
    for (std::size_t i = 0; i < names.size(); ++i)
        names[i] = fmt::format("column{}", i + 1);
    if (mColumns.frameIdx)
        names[*mColumns.frameIdx] = "frame";
    for (std::size_t i = 0; i < COORD_NAMES.size(); ++i)
        names[mColumns.coordIdx[i]] = COORD_NAMES[i];
    return csvRow(names);
}

/// Splits the next line that is a row into mFields.
bool MatchReader::readFields()
{
    std::string_view line;
    do
        if (!mLines.next(line))
            return false;
    while (isSkipped(line));
    if (!mSplitter)
        mSplitter.emplace(findSeparator(line));
    if (const char* const fault = mSplitter->split(line, mFields))
        throw Failure(fmt::format("{}: {}", mLines.place(), fault));
    return true;
}

/// Takes the coordinates and the frame number out of mFields.
bool MatchReader::readRow()
{
    if (mFields.size() != mColumns.columnNum)
        throw Failure(fmt::format("{}: {}, expected {}", mLines.place(),
                                  counted(static_cast<std::int64_t>(mFields.size()), "column"), mColumns.expected));
    for (std::size_t i = 0; i < mPair.size(); ++i) {
        const std::string& text = mFields[mColumns.coordIdx[i]];
        const auto value = parseCoordinate(text, mOptions.pointsType);
        if (!value)
            throw Failure(fmt::format("{}: {}: {}", mLines.place(), COORD_NAMES[i], refusalOf(text, mOptions.pointsType)));
        mPair[i] = *value;
    }
    if (mColumns.frameIdx) {
        const std::string& text = mFields[*mColumns.frameIdx];
        mFrameNumber = parseWhole(text);
        if (!mFrameNumber)
            throw Failure(fmt::format("{}: frame: got {}, expected a whole number", mLines.place(), inQuotes(text)));
    }
    return true;
}

bool MatchReader::next(MatchFrame& frame)
{
    frame.pairs.clear();
    frame.rows.clear();
    frame.nonFiniteNum = 0;
    if (!mHasRow)
        return false;
    frame.number = mFrameNumber;
    while (mHasRow && mFrameNumber == frame.number) {
        if (frame.pairs.size() == PAIR_MAX_NUM)
            throw Failure(fmt::format("{}: more than {} pairs in one step", mLines.place(), PAIR_MAX_NUM));
        frame.pairs.push_back(mPair);
        if (mOptions.keepRows)
            frame.rows.push_back(csvRow(mFields));
        frame.nonFiniteNum += isFinite(mPair) ? 0 : 1;
        mHasRow = readFields() && readRow();
    }
    return true;
}

}  // namespace esttform::app
