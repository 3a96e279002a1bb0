#include "batch/batch_entry.h"

#include "diagnosis/not_found.h"
#include "estimate/block_run.h"
#include "failure.h"
#include "matches/csv_fields.h"
#include "number_text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <charconv>
#include <new>
#include <utility>

namespace esttform::app {

namespace {

/// How a line of 'estimate' about step 0 starts.
constexpr std::string_view STEP_JSON = "{\"step\":0", STEP_CSV = "0", STEP_HEADER = "step";

}  // namespace

std::string packed(const BatchEntry& entry)
{
    return static_cast<char>(entry.outcome) + entry.line + entry.messages;
}

BatchEntry unpacked(const std::string& text)
{
    const std::size_t lineEnd = text.find('\n') + 1;
    return {static_cast<BatchOutcome>(text.at(0)), text.substr(1, lineEnd - 1), text.substr(lineEnd)};
}

BatchFormat::BatchFormat(Format format, const BlockSetup& setup, Layout layout, bool isDiagnosed)
    : mFormat(format), mIsDiagnosed(isDiagnosed)
{
    const bool isSquare = setup.typeText()[0] == 'p';
    mShape.tformRows = isSquare || layout == Layout::Rows ? 3 : 2;
    mShape.tformCols = isSquare || layout == Layout::Columns ? 3 : 2;
}

std::string BatchFormat::header() const
{
    return mFormat == Format::Csv ? "file,seed" + toCsvHeader(mShape, false, mIsDiagnosed).substr(STEP_HEADER.size()) : "";
}

std::string BatchFormat::start(const std::string& file, std::uint32_t seed) const
{
    return mFormat == Format::Csv ? fmt::format("{},{}", csvField(validText(file)), seed)
                                  : fmt::format("{{\"file\":{},\"seed\":{}", textJson(file), seed);
}

std::string BatchFormat::line(const std::string& file, std::uint32_t seed, const StepResult& result,
                              const Diagnosis* diagnosis) const
{
    return start(file, seed) + (mFormat == Format::Csv ? toCsvRow({}, result, false, diagnosis).substr(STEP_CSV.size())
                                                       : toJsonLine({}, result, false, diagnosis).substr(STEP_JSON.size()));
}

std::string BatchFormat::badLine(const std::string& file, std::uint32_t seed, const std::string& error) const
{
    if (mFormat == Format::Json)
        return start(file, seed) + ",\"ptsNum\":null,\"tform\":null,\"inliers\":null,\"inlierNum\":null,\"warnings\":[],\"error\":"
               + textJson(error) + (mIsDiagnosed ? ",\"diagnosis\":null}\n" : "}\n");
    const std::string noMatrix(static_cast<std::size_t>(mShape.tformRows * mShape.tformCols), ',');
    return start(file, seed) + ",,0," + noMatrix + ",," + csvField(validText(error)) + (mIsDiagnosed ? ",\n" : "\n");
}

bool BatchFormat::parse(const std::string& line, std::string& file, std::uint32_t& seed, BatchOutcome& outcome) const
{
    if (mFormat == Format::Json) {
        const auto entry = nlohmann::json::parse(line, nullptr, false);
        if (!entry.is_object() || !entry.contains("file") || !entry["file"].is_string() || !entry.contains("seed")
            || !entry["seed"].is_number_unsigned() || !entry.contains("tform"))
            return false;
        file = entry["file"];
        seed = entry["seed"];
        if (!entry["tform"].is_null() && entry["tform"].size() != static_cast<std::size_t>(mShape.tformRows))
            return false;                                // of another type or layout
        outcome = entry["tform"].is_null() ? BatchOutcome::Bad : BatchOutcome::NotFound;
        for (const auto& row : entry["tform"])
            for (const auto& value : row)
                if (!value.is_number() || value != 0.0)
                    outcome = BatchOutcome::Found;
        return true;
    }
    std::vector<std::string> fields;
    CsvSplitter splitter(',');
    if (splitter.split(line, fields) != nullptr || fields.size() < 4)
        return false;
    file = fields[0];
    outcome = fields[2].empty() ? BatchOutcome::Bad : fields[3] == "1" ? BatchOutcome::Found : BatchOutcome::NotFound;
    const char* const end = fields[1].data() + fields[1].size();
    const auto parsed = std::from_chars(fields[1].data(), end, seed);
    return parsed.ec == std::errc() && parsed.ptr == end;
}

BatchEstimator::BatchEstimator(const BlockSetup& setup, const BatchFormat& format, std::vector<std::string> columns,
                               bool isDiagnosed, bool isQuiet)
    : mSetup(setup), mFormat(format), mColumns(std::move(columns)), mIsDiagnosed(isDiagnosed), mIsQuiet(isQuiet)
{
}

BatchEntry BatchEstimator::estimate(const std::string& file, std::uint32_t seed)
{
    std::string error;
    try {
        return estimateFile(file, seed);
    } catch (const std::bad_alloc&) {
        error = file + ": out of memory";
    } catch (const std::exception& e) {
        error = e.what();
    }
    mEstimator.reset();                                  // it may have failed
    return {BatchOutcome::Bad, mFormat.badLine(file, seed, error), fmt::format("esttform: error: {}\n", error)};
}

BatchEntry BatchEstimator::estimateFile(const std::string& file, std::uint32_t seed)
{
    ReaderOptions readerOptions;
    readerOptions.pointsType = mSetup.pointsType;
    InputOptions input;
    input.path = file;
    readerOptions.columns = mColumns;
    FrameSource source(input, readerOptions, mSetup.sampleSize(), mSetup.typeText());
    const MatchFrame frame = *source.next();
    if (source.next() != nullptr)
        throw Failure(fmt::format("{}: more than one step (column frame), expected one; 'esttform estimate' takes many", file));

    if (!mEstimator) {
        Options options = mSetup.options;
        options.isVariableSize = true;
        mEstimator.emplace(mSetup.params, mSetup.pointsType, source.maxPtsNum(), options);
    }
    mEstimator->seed(seed);
    const StepResult& result = runStep(*mEstimator, mSetup, frame);

    std::string messages;
    const auto warn = [&](const std::string& text) {
        if (!mIsQuiet)
            messages += fmt::format("esttform: warning: {}: {}\n", file, text);
    };
    for (const Message& warning : result.warnings)
        warn(fmt::format("{}: {}", warning.id, warning.text));
    if (result.error)
        warn(fmt::format("{}: {}", result.error->id, result.error->text));
    else if (!result.isFound())
        warn(fmt::format("no {} transformation found: {}", mSetup.typeText(), reasonNotFound(frame.pairs, mSetup)));
    std::optional<Diagnosis> diagnosis;
    if (mIsDiagnosed)
        diagnosis = diagnose(frame.pairs, result, mEstimator->layout(), mSetup,
                             result.isFound() || result.error ? "" : reasonNotFound(frame.pairs, mSetup));
    if (diagnosis && result.isFound() && !diagnosis->isTrusted())
        warn(fmt::format("not to be trusted: {}", warningCodes(*diagnosis)));
    return {result.isFound() ? BatchOutcome::Found : result.error ? BatchOutcome::Bad : BatchOutcome::NotFound,
            mFormat.line(file, seed, result, diagnosis ? &*diagnosis : nullptr), messages};
}

}  // namespace esttform::app
