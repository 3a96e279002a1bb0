#include "estimate/result_writer.h"

#include "geometry/point_map.h"
#include "number_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace esttform::app {

namespace {

constexpr double DEGREES_PER_RADIAN = 57.29577951308232;

bool isProjective(const StepResult& result) noexcept
{
    return result.tformRows == 3 && result.tformCols == 3;
}

std::string countsOf(const StepResult& result)
{
    const std::string pairs = counted(result.ptsNum, "pair");
    if (result.inliers == nullptr)
        return pairs;
    return fmt::format("{} of {} are inliers ({:.1f} %)", result.inlierNum, pairs,
                       result.ptsNum > 0 ? 100.0 * result.inlierNum / result.ptsNum : 0.0);
}

/// Rows of TForm with the columns aligned, each row on a line of its own.
std::string matrixText(const StepResult& result)
{
    std::size_t width = 0;
    for (int row = 0; row < result.tformRows; ++row)
        for (int col = 0; col < result.tformCols; ++col)
            width = std::max(width, shortNumber(result.tform(row, col)).size());
    std::string text;
    for (int row = 0; row < result.tformRows; ++row) {
        for (int col = 0; col < result.tformCols; ++col)
            text += fmt::format("  {:>{}}", shortNumber(result.tform(row, col)), width);
        text += "\n";
    }
    return text;
}

/// What a similarity does, in words.
std::string similarityText(const PointMap& map)
{
    return fmt::format("scale {:.6g}, rotation {:.6g} degrees from x towards y\n", std::hypot(map.m[0], map.m[3]),
                       std::atan2(map.m[3], map.m[0]) * DEGREES_PER_RADIAN + 0.0);
}

}  // namespace

const char* equationOf(const StepResult& result, Layout layout) noexcept
{
    if (layout == Layout::Columns)
        return isProjective(result) ? "(x2*w, y2*w, w)' = TForm * (x1, y1, 1)', then divide by w"
                                    : "(x2, y2)' = TForm * (x1, y1, 1)'";
    return isProjective(result) ? "(x2*w, y2*w, w) = (x1, y1, 1) * TForm, then divide by w"
                                : "(x2, y2) = (x1, y1, 1) * TForm";
}

std::string toText(const StepResult& result, const RunLabel& run)
{
    std::string text = fmt::format("{}: {}\n", run.inputName, countsOf(result));
    if (result.error)
        return text + fmt::format("no result: {}: {}\n", result.error->id, result.error->text);
    if (!result.isFound())
        return text + fmt::format("no {} transformation found: TForm is all zero\n", run.typeText);
    text += fmt::format("{} transformation, {}:\n{}", run.typeText, equationOf(result, run.layout), matrixText(result));
    if (std::string(run.typeText) == "similarity")
        text += similarityText(mapOf(result, run.layout));
    return text;
}

std::string toTextHead(const StepResult& result, const RunLabel& run)
{
    return fmt::format("{}: {} transformations, {}; rows of TForm end in ';'\n", run.inputName, run.typeText,
                       equationOf(result, run.layout));
}

std::string toTextLine(const StepLabel& label, const StepResult& result)
{
    std::string line = fmt::format("step {}", label.step);
    if (label.frame)
        line += fmt::format(" (frame {})", *label.frame);
    line += ": " + countsOf(result);
    if (result.error)
        return line + fmt::format(": no result: {}: {}\n", result.error->id, result.error->text);
    if (!result.isFound())
        return line + ": no transformation found\n";
    line += ": [";
    for (int row = 0; row < result.tformRows; ++row) {
        line += row > 0 ? "; " : "";
        for (int col = 0; col < result.tformCols; ++col)
            line += (col > 0 ? " " : "") + shortNumber(result.tform(row, col));
    }
    return line + "]\n";
}

}  // namespace esttform::app
