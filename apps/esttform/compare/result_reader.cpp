#include "compare/result_reader.h"

#include "failure.h"
#include "number_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <limits>

namespace esttform::app {

namespace {

using nlohmann::json;

/// A list of rows as rows of numbers; a null, which stands for a value that is not finite, becomes NaN.
std::vector<std::vector<double>> rowsOf(const json& matrix)
{
    std::vector<std::vector<double>> rows;
    for (const json& row : matrix) {
        rows.emplace_back();
        for (const json& value : row)
            rows.back().push_back(value.is_null() ? std::numeric_limits<double>::quiet_NaN() : value.get<double>());
    }
    return rows;
}

/// The map of TForm's rows; empty when all is zero, which stands for no transformation.
///
/// @throws std::invalid_argument  another shape than 2-by-3, 3-by-2 or 3-by-3
std::optional<PointMap> mapOfRows(const std::vector<std::vector<double>>& rows, bool isInRows)
{
    const std::size_t rowNum = rows.size(), colNum = rows.empty() ? 0 : rows[0].size();
    const bool isOblong = rowNum + colNum == 5 && rowNum >= 2 && colNum >= 2;
    const bool isEven = std::all_of(rows.begin(), rows.end(), [colNum](const auto& row) { return row.size() == colNum; });
    if (!isEven || !(isOblong || (rowNum == 3 && colNum == 3)))
        throw std::invalid_argument("a transformation that is not 2-by-3, 3-by-2 or 3-by-3");
    const bool isTransposed = isOblong ? rowNum == 3 : isInRows;
    PointMap map;
    bool isZero = true;
    for (std::size_t row = 0; row < rowNum; ++row) {
        for (std::size_t col = 0; col < colNum; ++col) {
            map.m[isTransposed ? 3 * col + row : 3 * row + col] = rows[row][col];
            isZero = isZero && rows[row][col] == 0.0;
        }
    }
    return isZero ? std::nullopt : std::optional(map);
}

ReadStep stepOf(const json& line, bool isInRows)
{
    ReadStep step;
    step.step = line.value("step", std::int64_t{0});
    if (line.contains("frame") && !line["frame"].is_null())
        step.frame = line["frame"].get<std::int64_t>();
    if (line.contains("file"))
        step.file = line["file"].get<std::string>();
    if (!line.at("tform").is_null())
        step.map = mapOfRows(rowsOf(line["tform"]), isInRows);
    if (line.contains("inliers") && !line["inliers"].is_null())
        step.inliers = line["inliers"].get<std::vector<std::uint8_t>>();
    return step;
}

ReadResult truthOf(const json& truth)
{
    ReadResult result;
    result.isTruth = true;
    const bool hasFrames = truth.contains("matrices");
    const json matrices = hasFrames ? truth["matrices"] : json::array({truth.at("matrix")});
    for (const json& matrix : matrices) {
        ReadStep step;
        step.step = static_cast<std::int64_t>(result.steps.size());
        if (hasFrames)
            step.frame = step.step;
        if (!matrix.is_null())
            step.map = mapOfRows(rowsOf(matrix), false);
        result.steps.push_back(step);
    }
    for (const char* const key : {"size1", "frame_size"})
        if (truth.contains(key))
            result.size = truth[key].get<std::array<int, 2>>();
    return result;
}

/// What an exception says, without the mark in front that the JSON library gives its own.
std::string plainText(const std::string& what)
{
    return validText(what[0] == '[' ? what.substr(what.find(']') + 2) : what);
}

ReadResult readStream(std::istream& stream, const std::string& name, bool isInRows)
{
    ReadResult result;
    std::string line;
    std::int64_t lineNo = 0;
    try {
        while (std::getline(stream, line)) {
            ++lineNo;
            if (line.find_first_not_of(" \t\r") == std::string::npos)
                continue;
            const json object = json::parse(line, nullptr, lineNo > 1);
            if (lineNo == 1 && (object.is_discarded() || !object.contains("tform"))) {
                line.append("\n").append(std::istreambuf_iterator<char>(stream), {});
                return truthOf(json::parse(line));
            }
            result.steps.push_back(stepOf(object, isInRows));
        }
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& e) {                  // of the JSON library, or a shape that is not ours
        throw Failure(fmt::format("{}:{}: {}; expected lines of 'esttform estimate --format json' or a truth with matrix "
                                  "or matrices", name, std::max<std::int64_t>(1, lineNo), plainText(e.what())));
    }
    if (stream.bad())
        throw Failure(fmt::format("{}: cannot read: {}", name, std::strerror(errno)));
    if (result.steps.empty())
        throw Failure(fmt::format("{}: no steps, expected lines of 'esttform estimate --format json' or a truth", name));
    return result;
}

}  // namespace

ReadResult readResult(const std::string& path, bool isInRows)
{
    const std::string name = path == "-" ? "standard input" : validText(path);
    std::ifstream file;
    if (path != "-") {
        file.open(path, std::ios::binary);
        if (!file || file.peek() == std::ifstream::traits_type::eof())
            throw Failure(fmt::format("{}: {}", name, file.is_open() && errno == 0 ? "empty" : std::strerror(errno)));
    }
    ReadResult result = readStream(path == "-" ? std::cin : file, name, isInRows);
    result.name = name;
    return result;
}

}  // namespace esttform::app
