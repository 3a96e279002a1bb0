#include "options/block_options.h"

#include "failure.h"
#include "matches/points.h"
#include "number_text.h"
#include "options/option_checks.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <limits>

namespace esttform::app {

namespace {

constexpr double PERCENT_MAX = 100.0;
constexpr double REAL_MAX = std::numeric_limits<double>::infinity();
/// Samplings are counted in a signed 32-bit integer.
constexpr std::int64_t SAMPLE_NUM_MAX = std::numeric_limits<std::int32_t>::max();

constexpr int PARAM_TRANSFORM_TYPE = 0;
constexpr int PARAM_EXCLUDE_OUTLIERS = 1;
constexpr int PARAM_METHOD = 2;
constexpr int PARAM_THRESHOLD_PROJECTIVE = 3;
constexpr int PARAM_THRESHOLD_AFFINE = 4;
constexpr int PARAM_OUTPUT_INLIERS = 12;

constexpr std::array<const char*, 4> TYPE_TEXTS{"unknown", "similarity", "affine", "projective"};

// ---- Contradictions

/// Refuses the first option of a list that was given.
struct GivenOption {
    bool isGiven;
    const char* name;
};

void refuseGiven(std::initializer_list<GivenOption> options, const char* reason)
{
    for (const GivenOption& option : options)
        if (option.isGiven)
            throw Failure(fmt::format("{}: {}", option.name, reason));
}

void refuseContradictions(const BlockOptions& o)
{
    if (o.threshold && o.thresholdPx)
        throw Failure("--threshold and --threshold-px: both given, expected one");
    if (o.isRefine && o.isNoRefine)
        throw Failure("--refine and --no-refine: both given, expected one");
    if (o.sampleNum)
        refuseGiven({{o.maxSampleNum.has_value(), "--max-samples"}, {o.confidence.has_value(), "--confidence"}},
                    "has no effect with the fixed number of --samples; leave one of them out");
    if (o.isNotRobust)
        refuseGiven({{o.method.has_value(), "--method"},
                     {o.threshold.has_value(), "--threshold"},
                     {o.thresholdPx.has_value(), "--threshold-px"},
                     {o.sampleNum.has_value(), "--samples"},
                     {o.maxSampleNum.has_value(), "--max-samples"},
                     {o.confidence.has_value(), "--confidence"},
                     {o.stopAtInliers.has_value(), "--stop-at-inliers"},
                     {o.sampling.has_value(), "--sampling"},
                     {o.isRefine, "--refine"}},
                    "has no effect with --no-robust, which fits all pairs once; leave one of them out");
    if (o.method && *o.method == "median")
        refuseGiven({{o.threshold.has_value(), "--threshold"},
                     {o.thresholdPx.has_value(), "--threshold-px"},
                     {o.confidence.has_value(), "--confidence"},
                     {o.stopAtInliers.has_value(), "--stop-at-inliers"},
                     {o.maxSampleNum.has_value(), "--max-samples"}},
                    "has no effect with --method median, which takes the number of --samples; leave one of them out");
}

// ---- Settings

DataType pointsTypeOf(const BlockOptions& o)
{
    const auto type = typeOfName(o.pointsType);
    if (!type)
        throw Failure(fmt::format("--points-type: got {}, expected {}", inQuotes(o.pointsType), fmt::join(typeNames(), ", ")));
    return *type;
}

DataType tformTypeOf(const BlockOptions& o, DataType pointsType)
{
    const bool isReal = pointsType == DataType::Double || pointsType == DataType::Single;
    if (!o.tformType)
        return pointsType == DataType::Single ? DataType::Single : DataType::Double;
    const DataType type = *o.tformType == "single" ? DataType::Single : DataType::Double;
    if (isReal && type != pointsType)
        throw Failure(fmt::format("--tform-type: {} with {} points, expected {}; use --points-type {} or an integer type",
                                  *o.tformType, o.pointsType, o.pointsType, *o.tformType));
    return type;
}

Settings settingsOf(const BlockOptions& o)
{
    Settings s;
    s.type = o.type == "similarity" ? TransformType::Similarity
             : o.type == "affine"   ? TransformType::Affine
                                    : TransformType::Projective;
    s.isRobust = !o.isNotRobust;
    if (o.method && *o.method == "median") {
        s.method = Method::Median;
        s.sampleNum = MEDIAN_SAMPLE_NUM;
        s.confidence.reset();
    }
    if (o.threshold)
        s.threshold = *o.threshold;
    if (o.thresholdPx)
        s.threshold = *o.thresholdPx * *o.thresholdPx;
    if (o.sampleNum) {
        s.sampleNum = *o.sampleNum;
        s.confidence.reset();
    }
    if (o.maxSampleNum)
        s.sampleNum = *o.maxSampleNum;
    if (o.confidence)
        s.confidence = *o.confidence;
    s.stopAtInliers = o.stopAtInliers;
    s.isRefineIteratively = !o.isNoRefine;
    s.isOutputInliers = !o.isNoInlierOutput;
    if (o.sampling && *o.sampling == "cyclic")
        s.sampling = Sampling::Cyclic;
    s.layout = o.layout == "rows" ? Layout::Rows : Layout::Columns;
    s.pointsType = pointsTypeOf(o);
    s.tformType = tformTypeOf(o, s.pointsType);
    return s;
}

// ---- Raw dialog values

/// Position of the parameter that a name or an index stands for.
std::size_t paramIndexOf(const std::string& key)
{
    for (const ParamInfo& info : paramTable())
        if (key == info.name || key == std::to_string(info.index))
            return static_cast<std::size_t>(info.index);
    throw Failure(fmt::format("--param: got {}, expected a parameter's name or an index from 0 to {}; "
                              "'esttform params' lists them", inQuotes(key), PARAM_NUM - 1));
}

void applyParam(Params& params, const std::string& text)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        throw Failure(fmt::format("--param: got {}, expected NAME=VALUE or INDEX=VALUE", inQuotes(text)));
    const std::size_t index = paramIndexOf(text.substr(0, equals));
    const auto value = parseReal(std::string_view(text).substr(equals + 1));
    if (!value)
        throw Failure(fmt::format("--param: {}: got {}, expected a number", text.substr(0, equals),
                                  inQuotes(text.substr(equals + 1))));
    params[index] = *value;
}

/// Reads a dialog value as a code: truncated toward zero. Out of the range of the codes: 0.
int codeOf(double value) noexcept
{
    return value > -1.0 && value < 4.0 ? static_cast<int>(value) : 0;
}

}  // namespace

int BlockSetup::sampleSize() const noexcept
{
    return transformType == 0 ? 0 : transformType + 1;
}

std::optional<double> BlockSetup::threshold() const noexcept
{
    if (!isRobust || codeOf(params[PARAM_METHOD]) != static_cast<int>(Method::Threshold))
        return {};
    return params[transformType == static_cast<int>(TransformType::Projective) ? PARAM_THRESHOLD_PROJECTIVE : PARAM_THRESHOLD_AFFINE];
}

const char* BlockSetup::typeText() const noexcept
{
    return TYPE_TEXTS[static_cast<std::size_t>(transformType)];
}

BlockSetup resolveBlockOptions(const BlockOptions& options)
{
    refuseContradictions(options);
    const Settings settings = settingsOf(options);
    BlockSetup setup;
    setup.params = toParams(settings);
    for (const std::string& text : options.params)
        applyParam(setup.params, text);
    setup.pointsType = settings.pointsType;
    setup.options.blockPath = options.blockPath;
    setup.options.seed = options.seed;
    setup.transformType = codeOf(setup.params[PARAM_TRANSFORM_TYPE]);
    setup.isRobust = codeOf(setup.params[PARAM_EXCLUDE_OUTLIERS]) != 0;
    setup.hasInlierOutput = setup.isRobust && codeOf(setup.params[PARAM_OUTPUT_INLIERS]) != 0;
    return setup;
}

void addBlockOptions(CLI::App& command, BlockOptions& o)
{
    const Settings defaults;
    const auto typeWords = typeNames();

    const char* const WHAT = "What is estimated";
    command.add_option("--type", o.type, "similarity, affine or projective (default projective)")
        ->check(oneOf({"similarity", "affine", "projective"}))->type_name("TYPE")->group(WHAT);
    command.add_option("--points-type", o.pointsType,
                       "element type of the points: double, single, int8 to uint32 (default double)")
        ->check(oneOf(typeWords))->type_name("TYPE")->group(WHAT);
    command.add_option("--tform-type", o.tformType,
                       "element type of the result for integer points: double or single (default double); "
                       "double and single points give their own")
        ->check(oneOf({"double", "single"}))->type_name("TYPE")->group(WHAT);
    command.add_option("--layout", o.layout,
                       "columns: TForm maps columns (x,y,1)'; rows: TForm is transposed and maps rows (default columns)")
        ->check(oneOf({"columns", "rows"}))->type_name("LAYOUT")->group(WHAT);
    command.add_flag("--no-inlier-output", o.isNoInlierOutput, "leave out the block's inlier mask")->group(WHAT);

    const char* const ROBUST = "Robust estimation";
    command.add_flag("--no-robust", o.isNotRobust, "one least-squares fit to all pairs, wrong ones included")->group(ROBUST);
    command.add_option("--method", o.method,
                       "threshold: inliers lie within a distance; median: inliers are the better half (default threshold)")
        ->check(oneOf({"threshold", "median"}))->type_name("METHOD")->group(ROBUST);
    command.add_option("--threshold", o.threshold,
                       fmt::format("largest distance of an inlier, SQUARED: in squared point units (default {})",
                                   defaults.threshold))
        ->check(realBetween(0.0, REAL_MAX, "squared point units"))->type_name("T")->group(ROBUST);
    command.add_option("--threshold-px", o.thresholdPx,
                       fmt::format("the same, not squared: in point units, pixels as a rule (default {})",
                                   std::sqrt(defaults.threshold)))
        ->check(realBetween(0.0, REAL_MAX, "point units"))->type_name("T")->group(ROBUST);
    command.add_flag("--refine", o.isRefine, "refit on the inliers while that improves the score (default)")->group(ROBUST);
    command.add_flag("--no-refine", o.isNoRefine, "refit on the inliers once")->group(ROBUST);

    const char* const SAMPLING = "Random sampling";
    command.add_option("--samples", o.sampleNum,
                       fmt::format("fixed number of samplings (default with --method median: {})", MEDIAN_SAMPLE_NUM))
        ->check(wholeBetween(1, SAMPLE_NUM_MAX))->type_name("N")->group(SAMPLING);
    command.add_option("--max-samples", o.maxSampleNum,
                       fmt::format("most samplings; fewer when the confidence is reached (default {})", defaults.sampleNum))
        ->check(wholeBetween(1, SAMPLE_NUM_MAX))->type_name("N")->group(SAMPLING);
    command.add_option("--confidence", o.confidence,
                       fmt::format("confidence to have drawn one sample of right pairs only, in percent (default {})",
                                   *defaults.confidence))
        ->check(realBetween(0.0, PERCENT_MAX, "percent"))->type_name("P")->group(SAMPLING);
    command.add_option("--stop-at-inliers", o.stopAtInliers,
                       "stop sampling once this many of the pairs are inliers, in percent (default: off)")
        ->check(realBetween(0.0, PERCENT_MAX, "percent"))->type_name("P")->group(SAMPLING);
    command.add_option("--sampling", o.sampling, "random, or cyclic: steps through the pairs (default random)")
        ->check(oneOf({"random", "cyclic"}))->type_name("KIND")->group(SAMPLING);
    command.add_option("--seed", o.seed,
                       "start of the random numbers; without it the block takes the processor time, so that two runs may "
                       "differ a little")
        ->check(wholeBetween(0, std::numeric_limits<std::uint32_t>::max()))->type_name("N")->group(SAMPLING);

    const char* const BLOCK = "Block";
    command.add_option("--param", o.params,
                       "raw dialog value, NAME=VALUE or INDEX=VALUE, over all other options; repeatable ('esttform "
                       "params' lists them)")
        ->type_name("KEY=VALUE")->allow_extra_args(false)->group(BLOCK);
    command.add_option("--block", o.blockPath, "path of the block's library (default: $ESTTFORM_BLOCK, else beside the program)")
        ->type_name("PATH")->group(BLOCK);
}

}  // namespace esttform::app
