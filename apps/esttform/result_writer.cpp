#include "result_writer.h"

#include "csv_fields.h"
#include "number_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <utility>

namespace esttform::app {

namespace {

std::string errorText(const StepResult& result)
{
    return fmt::format("{}: {}", result.error->id, result.error->text);
}

nlohmann::ordered_json tformJson(const StepResult& result)
{
    auto rows = nlohmann::ordered_json::array();
    for (int row = 0; row < result.tformRows; ++row) {
        auto values = nlohmann::ordered_json::array();
        for (int col = 0; col < result.tformCols; ++col)
            values.push_back(result.tform(row, col));
        rows.push_back(std::move(values));
    }
    return rows;
}

nlohmann::ordered_json inliersJson(const StepResult& result)
{
    if (result.inliers == nullptr)
        return nullptr;
    auto mask = nlohmann::ordered_json::array();
    for (std::int32_t i = 0; i < result.ptsNum; ++i)
        mask.push_back(result.inliers[i] != 0 ? 1 : 0);
    return mask;
}

}  // namespace

std::string toJsonLine(const StepLabel& label, const StepResult& result, bool hasFrames)
{
    nlohmann::ordered_json line;
    line["step"] = label.step;
    if (hasFrames)
        line["frame"] = label.frame ? nlohmann::ordered_json(*label.frame) : nlohmann::ordered_json(nullptr);
    line["ptsNum"] = result.ptsNum;
    line["tform"] = tformJson(result);
    line["inliers"] = inliersJson(result);
    line["inlierNum"] = result.inliers == nullptr ? nlohmann::ordered_json(nullptr) : nlohmann::ordered_json(result.inlierNum);
    auto& warnings = line["warnings"] = nlohmann::ordered_json::array();
    for (const Message& warning : result.warnings)
        warnings.push_back(warning.id);
    line["error"] = result.error ? nlohmann::ordered_json(errorText(result)) : nlohmann::ordered_json(nullptr);
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

std::string toCsvHeader(const StepResult& result, bool hasFrames)
{
    std::string header = hasFrames ? "step,frame,ptsNum,found,inlierNum" : "step,ptsNum,found,inlierNum";
    for (int row = 0; row < result.tformRows; ++row)
        for (int col = 0; col < result.tformCols; ++col)
            header += fmt::format(",t{}{}", row, col);
    return header + ",warnings,error\n";
}

std::string toCsvRow(const StepLabel& label, const StepResult& result, bool hasFrames)
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
    return line + "," + csvField(warnings) + "," + (result.error ? csvField(errorText(result)) : "") + "\n";
}

ResultWriter::ResultWriter(Format format, RunLabel run, OutputFile& output)
    : mFormat(format), mRun(std::move(run)), mOutput(output)
{
}

void ResultWriter::write(const StepLabel& label, const StepResult& result)
{
    const bool isFirst = std::exchange(mIsFirst, false);
    switch (mFormat) {
    case Format::Json:
        mOutput.write(toJsonLine(label, result, mRun.hasFrames));
        break;
    case Format::Csv:
        if (isFirst)
            mOutput.write(toCsvHeader(result, mRun.hasFrames));
        mOutput.write(toCsvRow(label, result, mRun.hasFrames));
        break;
    case Format::Text:
        if (!mRun.hasFrames) {
            mOutput.write(toText(result, mRun));
            break;
        }
        if (isFirst)
            mOutput.write(toTextHead(result, mRun));
        mOutput.write(toTextLine(label, result));
        break;
    }
}

}  // namespace esttform::app
