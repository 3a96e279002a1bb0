// Which columns of a matches file hold the coordinates and the frame number.
// Found from a header's names, from the --columns option, or from the position.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace esttform::app {

struct MatchColumns {
    std::array<std::size_t, 4> coordIdx{};  ///< columns of x1, y1, x2, y2
    std::optional<std::size_t> frameIdx;    ///< column of the frame number
    std::size_t columnNum = 0;              ///< columns that every row has
    bool hasHeader = false;                 ///< the first row names the columns
    std::string expected;                   ///< "4 (x1,y1,x2,y2)": what a row should have, for messages
};

/// Names of the four coordinates in the order of MatchColumns::coordIdx.
extern const std::array<const char*, 4> COORD_NAMES;

/// Finds the columns from the file's first row.
///
/// The first row is a header if one of its fields is x1, y1, x2, y2 or frame (upper or lower case) or none is a number.
/// Without a header, four columns are x1, y1, x2, y2; more need a choice.
///
/// @param firstRow    fields of the first row
/// @param choice      header names or positions counted from 1, in the order x1, y1, x2, y2 and, with a fifth, frame;
///                    empty: by name or position
/// @param choiceName  what the caller calls the choice, for messages
/// @param place       "FILE:LINE" of the first row, for messages
/// @throws Failure    a column is missing, named twice, or cannot be told
MatchColumns findColumns(const std::vector<std::string>& firstRow, const std::vector<std::string>& choice, const char* choiceName,
                         const std::string& place);

}  // namespace esttform::app
