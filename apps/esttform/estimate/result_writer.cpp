#include "estimate/result_writer.h"

#include "matches/csv_fields.h"
#include "number_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <cmath>
#include <utility>

namespace esttform::app {

namespace {

std::string errorText(const StepResult& result)
{
    return fmt::format("{}: {}", result.error->id, result.error->text);
}

/// Shortest text that reads back to the same double, not taken for an integer; null for a value that is not finite.
std::string numberJson(double value)
{
    if (!std::isfinite(value))
        return "null";
    const std::string text = exactText(value);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string tformJson(const StepResult& result)
{
    std::string rows;
    for (int row = 0; row < result.tformRows; ++row) {
        for (int col = 0; col < result.tformCols; ++col) {
            rows += col > 0 ? "," : row > 0 ? "],[" : "[";
            rows += numberJson(result.tform(row, col));
        }
    }
    return "[" + rows + "]]";
}

/// The mask and its sum.
std::string inliersJson(const StepResult& result)
{
    if (result.inliers == nullptr)
        return "\"inliers\":null,\"inlierNum\":null";
    std::string mask;
    for (std::int32_t i = 0; i < result.ptsNum; ++i)
        mask += fmt::format("{}{:d}", i > 0 ? "," : "", result.inliers[i] != 0);
    return fmt::format("\"inliers\":[{}],\"inlierNum\":{}", mask, result.inlierNum);
}

}  // namespace

std::string textJson(const std::string& text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

Format formatOf(const std::string& name) noexcept
{
    return name == "json" ? Format::Json : name == "csv" ? Format::Csv : Format::Text;
}

std::string toJsonLine(const StepLabel& label, const StepResult& result, bool hasFrames, const Diagnosis* diagnosis)
{
    std::string line = fmt::format("{{\"step\":{}", label.step);
    if (hasFrames)
        line += ",\"frame\":" + (label.frame ? std::to_string(*label.frame) : "null");
    line += fmt::format(",\"ptsNum\":{},\"tform\":{},{},\"warnings\":[", result.ptsNum, tformJson(result), inliersJson(result));
    for (const Message& warning : result.warnings)
        line += (&warning == result.warnings.data() ? "" : ",") + textJson(warning.id);
    line += "],\"error\":" + (result.error ? textJson(errorText(result)) : "null");
    return line + (diagnosis != nullptr ? ",\"diagnosis\":" + toJson(*diagnosis) : "") + "}\n";
}

std::string toCsvHeader(const StepResult& result, bool hasFrames, bool isDiagnosed)
{
    std::string header = hasFrames ? "step,frame,ptsNum,found,inlierNum" : "step,ptsNum,found,inlierNum";
    for (int row = 0; row < result.tformRows; ++row)
        for (int col = 0; col < result.tformCols; ++col)
            header += fmt::format(",t{}{}", row, col);
    return header + (isDiagnosed ? ",warnings,error,diagnosis\n" : ",warnings,error\n");
}

std::string toCsvRow(const StepLabel& label, const StepResult& result, bool hasFrames, const Diagnosis* diagnosis)
{
    std::string line = std::to_string(label.step);
    if (hasFrames)
        line += fmt::format(",{}", label.frame.value_or(0));
    line += fmt::format(",{},{:d},", result.ptsNum, result.isFound());
    if (result.inliers != nullptr)
        line += std::to_string(result.inlierNum);
    for (int row = 0; row < result.tformRows; ++row)
        for (int col = 0; col < result.tformCols; ++col)
            line += "," + exactText(result.tform(row, col));
    std::string warnings;
    for (const Message& warning : result.warnings)
        warnings += (warnings.empty() ? "" : " ") + warning.id;
    line += "," + csvField(warnings) + "," + (result.error ? csvField(errorText(result)) : "");
    return line + (diagnosis != nullptr ? "," + csvField(warningCodes(*diagnosis)) : "") + "\n";
}

ResultWriter::ResultWriter(Format format, RunLabel run, OutputFile& output)
    : mFormat(format), mRun(std::move(run)), mOutput(output)
{
}

void ResultWriter::write(const StepLabel& label, const StepResult& result, const Diagnosis* diagnosis)
{
    const bool isFirst = std::exchange(mIsFirst, false);
    switch (mFormat) {
    case Format::Json:
        mOutput.write(toJsonLine(label, result, mRun.hasFrames, diagnosis));
        break;
    case Format::Csv:
        if (isFirst)
            mOutput.write(toCsvHeader(result, mRun.hasFrames, diagnosis != nullptr));
        mOutput.write(toCsvRow(label, result, mRun.hasFrames, diagnosis));
        break;
    case Format::Text:
        if (!mRun.hasFrames) {
            mOutput.write(toText(result, mRun));
            if (diagnosis != nullptr)
                mOutput.write(toText(*diagnosis));
            break;
        }
        if (isFirst)
            mOutput.write(toTextHead(result, mRun));
        mOutput.write(toTextLine(label, result));
        break;
    }
}

}  // namespace esttform::app
