// CSV, one line at a time: splitting a line into fields, and writing a field.
// Quoted fields may hold separators and doubled quotes; a quoted line break is refused, so that line numbers hold.
#pragma once

#include <csv.h>

#include <string>
#include <string_view>
#include <vector>

namespace esttform::app {

/// The separator that a line uses most, of comma, tab and semicolon, outside quotes; a comma if it has none.
char findSeparator(std::string_view line) noexcept;

/// Splits lines. Space around an unquoted field is dropped.
class CsvSplitter {
public:
    explicit CsvSplitter(char separator);
    ~CsvSplitter();
    CsvSplitter(const CsvSplitter&) = delete;
    CsvSplitter& operator=(const CsvSplitter&) = delete;

    /// @param fields  out, the line's fields; the strings' memory is used again
    /// @return null, or what is wrong with the line; the splitter is of no more use then
    const char* split(std::string_view line, std::vector<std::string>& fields);

private:
    csv_parser mParser;
};

/// A field for comma-separated output: quoted only where it must be.
std::string csvField(std::string_view text);

/// Fields joined by commas.
std::string csvRow(const std::vector<std::string>& fields);

}  // namespace esttform::app
