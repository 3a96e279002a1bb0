#include "matches/match_columns.h"

#include "failure.h"
#include "matches/csv_fields.h"
#include "number_text.h"

#include <fmt/format.h>

#include <algorithm>

namespace esttform::app {

const std::array<const char*, 4> COORD_NAMES{"x1", "y1", "x2", "y2"};

namespace {

constexpr std::size_t COORD_NUM = 4;
/// A header of more columns is not repeated in messages.
constexpr std::size_t SHOWN_COLUMN_MAX = 8;

std::string lower(std::string text)
{
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

/// Position of the only column with the name, whatever its case; empty if there is none.
std::optional<std::size_t> columnOf(const std::vector<std::string>& header, const std::string& name,
                                    const std::string& place)
{
    const auto isNamed = [&name](const std::string& field) { return lower(field) == lower(name); };
    const auto found = std::find_if(header.begin(), header.end(), isNamed);
    if (found == header.end())
        return std::nullopt;
    if (std::find_if(found + 1, header.end(), isNamed) != header.end())
        throw Failure(fmt::format("{}: two columns named {}, expected one", place, name));
    return static_cast<std::size_t>(found - header.begin());
}

bool isHeader(const std::vector<std::string>& row)
{
    const auto isKnownName = [](const std::string& field) {
        const std::string name = lower(field);
        return name == "frame" || std::find(COORD_NAMES.begin(), COORD_NAMES.end(), name) != COORD_NAMES.end();
    };
    const auto isNumber = [](const std::string& field) { return parseReal(field).has_value(); };
    return std::any_of(row.begin(), row.end(), isKnownName) || std::none_of(row.begin(), row.end(), isNumber);
}

std::string shownHeader(const std::vector<std::string>& header)
{
    std::vector<std::string> shown = header;
    if (shown.size() > SHOWN_COLUMN_MAX) {
        shown.resize(SHOWN_COLUMN_MAX);
        shown.emplace_back("...");
    }
    const std::string text = inQuotes(csvRow(shown));
    return text.substr(1, text.size() - 2);
}

/// Position that one entry of the choice stands for: a name of the header, or a position counted from 1.
std::size_t chosenColumn(const std::string& entry, const std::vector<std::string>& firstRow, bool hasHeader,
                         const char* choiceName, const std::string& place)
{
    if (hasHeader)
        if (const auto idx = columnOf(firstRow, entry, place))
            return *idx;
    const auto position = parseWhole(entry);
    if (!position)
        throw Failure(fmt::format("{}: {}: no column {}{}", place, choiceName, inQuotes(entry),
                                  hasHeader ? " in the header (" + shownHeader(firstRow) + ")"
                                            : std::string(", the file has no header: expected positions counted from 1")));
    if (*position < 1 || static_cast<std::size_t>(*position) > firstRow.size())
        throw Failure(fmt::format("{}: {}: got position {}, expected 1 to {}", place, choiceName, *position, firstRow.size()));
    return static_cast<std::size_t>(*position - 1);
}

void applyChoice(MatchColumns& columns, const std::vector<std::string>& firstRow,
                 const std::vector<std::string>& choice, const char* choiceName, const std::string& place)
{
    if (choice.size() != COORD_NUM && choice.size() != COORD_NUM + 1)
        throw Failure(fmt::format("{}: got {}, expected 4 or 5 (x1,y1,x2,y2 and frame)", choiceName,
                                  counted(static_cast<std::int64_t>(choice.size()), "column")));
    for (std::size_t i = 0; i < COORD_NUM; ++i)
        columns.coordIdx[i] = chosenColumn(choice[i], firstRow, columns.hasHeader, choiceName, place);
    if (choice.size() > COORD_NUM)
        columns.frameIdx = chosenColumn(choice[COORD_NUM], firstRow, columns.hasHeader, choiceName, place);
}

void applyHeader(MatchColumns& columns, const std::vector<std::string>& header, const char* choiceName,
                 const std::string& place)
{
    for (std::size_t i = 0; i < COORD_NUM; ++i) {
        const auto idx = columnOf(header, COORD_NAMES[i], place);
        if (!idx)
            throw Failure(fmt::format("{}: no column {} in the header ({}); name the columns by {}", place,
                                      COORD_NAMES[i], shownHeader(header), choiceName));
        columns.coordIdx[i] = *idx;
    }
    columns.frameIdx = columnOf(header, "frame", place);
}

void applyPosition(MatchColumns& columns, const char* choiceName, const std::string& place)
{
    if (columns.columnNum > COORD_NUM)
        throw Failure(fmt::format("{}: {} columns without a header, expected 4 (x1,y1,x2,y2); choose by {}, "
                                  "for example {} 1,2,3,4", place, columns.columnNum, choiceName, choiceName));
    for (std::size_t i = 0; i < COORD_NUM; ++i)
        columns.coordIdx[i] = i;
}

}  // namespace

MatchColumns findColumns(const std::vector<std::string>& firstRow, const std::vector<std::string>& choice, const char* choiceName,
                         const std::string& place)
{
    MatchColumns columns;
    columns.columnNum = firstRow.size();
    columns.hasHeader = isHeader(firstRow);
    columns.expected = "4 (x1,y1,x2,y2)";
    if (columns.columnNum < COORD_NUM)
        throw Failure(fmt::format("{}: {}, expected {}{}", place,
                                  counted(static_cast<std::int64_t>(columns.columnNum), "column"), columns.expected,
                                  columns.columnNum == 1 ? " separated by commas, tabs or semicolons" : ""));
    if (!choice.empty())
        applyChoice(columns, firstRow, choice, choiceName, place);
    else if (columns.hasHeader)
        applyHeader(columns, firstRow, choiceName, place);
    else
        applyPosition(columns, choiceName, place);
    if (columns.hasHeader)
        columns.expected = fmt::format("{} ({})", columns.columnNum, shownHeader(firstRow));
    else if (columns.columnNum > COORD_NUM)
        columns.expected = fmt::format("{} as in the first row", columns.columnNum);
    return columns;
}

}  // namespace esttform::app
