#include "options/block_settings.h"

#include "blockhost/dialog_params.h"
#include "failure.h"
#include "matches/points.h"
#include "number_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace esttform::app {

const std::vector<std::string> TYPE_WORDS{"similarity", "affine", "projective"};
const std::vector<std::string> METHOD_WORDS{"threshold", "median"};
const std::vector<std::string> SAMPLING_WORDS{"random", "cyclic"};
const std::vector<std::string> LAYOUT_WORDS{"columns", "rows"};
const std::vector<std::string> TFORM_TYPE_WORDS{"double", "single"};

namespace {

constexpr std::array<const char*, 4> TYPE_TEXTS{"unknown", "similarity", "affine", "projective"};

// ---- Values and contradictions

/// The word of an option, refused when it is none of those that it takes.
void refuseOther(const std::string& word, const std::vector<std::string>& words, const std::string& name)
{
    if (std::find(words.begin(), words.end(), word) == words.end())
        throw Failure(fmt::format("{}: got {}, expected {}", name, inQuotes(word), fmt::join(words, ", ")));
}

void refuseOutside(std::optional<double> value, const RealRange& range, const std::string& name)
{
    if (value && !range.admits(*value))
        throw Failure(fmt::format("{}: got {}, expected {}", name, *value, range.text()));
}

/// Refuses less than one percent, which nobody asks for but who means a fraction; a raw dialog value still may be.
void refuseFraction(std::optional<double> percent, const std::string& name)
{
    if (percent && *percent > 0.0 && *percent < 1.0)
        throw Failure(fmt::format("{}: got {}, which is less than one percent, expected percent: {:.6g} for this fraction", name, *percent,
                                  100.0 * *percent));
}

void refuseNone(std::optional<std::uint32_t> sampleNum, const std::string& name)
{
    if (sampleNum && (*sampleNum < 1 || *sampleNum > SAMPLE_NUM_MAX))
        throw Failure(fmt::format("{}: got {}, expected a whole number from 1 to {}", name, *sampleNum, SAMPLE_NUM_MAX));
}

void refuseBadValues(const BlockOptions& o, OptionSpelling spelling)
{
    refuseOther(o.type, TYPE_WORDS, spelling("type"));
    refuseOther(o.layout, LAYOUT_WORDS, spelling("layout"));
    refuseOther(o.pointsType, typeNames(), spelling("points-type"));
    refuseOther(o.method.value_or(METHOD_WORDS.front()), METHOD_WORDS, spelling("method"));
    refuseOther(o.sampling.value_or(SAMPLING_WORDS.front()), SAMPLING_WORDS, spelling("sampling"));
    refuseOther(o.tformType.value_or(TFORM_TYPE_WORDS.front()), TFORM_TYPE_WORDS, spelling("tform-type"));
    refuseOutside(o.threshold, SQUARED_UNITS, spelling("threshold"));
    refuseOutside(o.thresholdPx, POINT_UNITS, spelling("threshold-px"));
    refuseOutside(o.confidence, PERCENT, spelling("confidence"));
    refuseOutside(o.stopAtInliers, PERCENT, spelling("stop-at-inliers"));
    refuseFraction(o.confidence, spelling("confidence"));
    refuseFraction(o.stopAtInliers, spelling("stop-at-inliers"));
    refuseNone(o.sampleNum, spelling("samples"));
    refuseNone(o.maxSampleNum, spelling("max-samples"));
}

struct GivenOption {
    bool isGiven;
    const char* name;
};

void refuseContradictions(const BlockOptions& o, OptionSpelling spelling)
{
    // Refuses the first option of a list that was given.
    const auto refuseGiven = [&](std::initializer_list<GivenOption> options, const std::string& reason) {
        for (const GivenOption& option : options)
            if (option.isGiven)
                throw Failure(fmt::format("{}: {}", spelling(option.name), reason));
    };
    const auto refuseBoth = [&](bool areGiven, const char* one, const char* other) {
        if (areGiven)
            throw Failure(fmt::format("{} and {}: both given, expected one", spelling(one), spelling(other)));
    };
    refuseBoth(o.threshold && o.thresholdPx, "threshold", "threshold-px");
    refuseBoth(o.isRefine && o.isNoRefine, "refine", "no-refine");
    if (o.sampleNum)
        refuseGiven({{o.maxSampleNum.has_value(), "max-samples"}, {o.confidence.has_value(), "confidence"}},
                    fmt::format("has no effect with the fixed number of {}; leave one of them out", spelling("samples")));
    if (o.isNotRobust)
        refuseGiven({{o.method.has_value(), "method"},
                     {o.threshold.has_value(), "threshold"},
                     {o.thresholdPx.has_value(), "threshold-px"},
                     {o.sampleNum.has_value(), "samples"},
                     {o.maxSampleNum.has_value(), "max-samples"},
                     {o.confidence.has_value(), "confidence"},
                     {o.stopAtInliers.has_value(), "stop-at-inliers"},
                     {o.sampling.has_value(), "sampling"},
                     {o.isRefine, "refine"}},
                    fmt::format("has no effect with {}, which fits all pairs once; leave one of them out", spelling("no-robust")));
    if (o.method && *o.method == "median") {
        refuseGiven({{o.threshold.has_value(), "threshold"}, {o.thresholdPx.has_value(), "threshold-px"}},
                    fmt::format("has no effect with {} median, which takes the better half of the pairs; leave one of them out",
                                spelling("method")));
        refuseGiven({{o.confidence.has_value(), "confidence"},
                     {o.stopAtInliers.has_value(), "stop-at-inliers"},
                     {o.maxSampleNum.has_value(), "max-samples"}},
                    fmt::format("has no effect with {} median, which takes the number of {}; leave one of them out",
                                spelling("method"), spelling("samples")));
    }
}

// ---- Settings

DataType tformTypeOf(const BlockOptions& o, DataType pointsType, OptionSpelling spelling)
{
    const bool isReal = pointsType == DataType::Double || pointsType == DataType::Single;
    if (!o.tformType)
        return pointsType == DataType::Single ? DataType::Single : DataType::Double;
    const DataType type = *o.tformType == "single" ? DataType::Single : DataType::Double;
    if (isReal && type != pointsType)
        throw Failure(fmt::format("{}: {} with {} points, expected {}; use {} {} or an integer type", spelling("tform-type"),
                                  *o.tformType, o.pointsType, o.pointsType, spelling("points-type"), *o.tformType));
    return type;
}

Settings settingsOf(const BlockOptions& o, OptionSpelling spelling)
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
    s.pointsType = *typeOfName(o.pointsType);
    s.tformType = tformTypeOf(o, s.pointsType, spelling);
    return s;
}

// ---- Raw dialog values

/// Position of the parameter that a name or an index stands for.
std::size_t paramIndexOf(const std::string& key, OptionSpelling spelling)
{
    for (const ParamInfo& info : paramTable())
        if (key == info.name || key == std::to_string(info.index))
            return static_cast<std::size_t>(info.index);
    throw Failure(fmt::format("{}: got {}, expected a parameter's name or an index from 0 to {}; 'esttform params' lists them",
                              spelling("param"), inQuotes(key), PARAM_NUM - 1));
}

void applyParam(Params& params, const std::string& text, OptionSpelling spelling)
{
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos)
        throw Failure(fmt::format("{}: got {}, expected NAME=VALUE or INDEX=VALUE", spelling("param"), inQuotes(text)));
    const std::size_t index = paramIndexOf(text.substr(0, equals), spelling);
    const auto value = parseReal(std::string_view(text).substr(equals + 1));
    if (!value)
        throw Failure(fmt::format("{}: {}: got {}, expected a number", spelling("param"), text.substr(0, equals),
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
    if (!isRobust || codeOf(params[METHOD]) != static_cast<int>(Method::Threshold))
        return {};
    return params[transformType == static_cast<int>(TransformType::Projective) ? DIS_THR_PROJECTIVE : DIS_THR_AFFINE];
}

const char* BlockSetup::typeText() const noexcept
{
    return TYPE_TEXTS[static_cast<std::size_t>(transformType)];
}

std::string commandLineOption(std::string_view name)
{
    return "--" + std::string(name);
}

BlockSetup resolveBlockOptions(const BlockOptions& options, OptionSpelling spelling)
{
    refuseBadValues(options, spelling);
    refuseContradictions(options, spelling);
    const Settings settings = settingsOf(options, spelling);
    BlockSetup setup;
    setup.params = toParams(settings);
    for (const std::string& text : options.params)
        applyParam(setup.params, text, spelling);
    setup.pointsType = settings.pointsType;
    setup.options.blockPath = options.blockPath;
    setup.options.seed = options.seed;
    setup.transformType = codeOf(setup.params[TRANSFORM_TYPE]);
    setup.isRobust = codeOf(setup.params[EXCLUDE_OUTLIERS]) != 0;
    setup.hasInlierOutput = setup.isRobust && codeOf(setup.params[OUTPUT_INLIERS]) != 0;
    return setup;
}

}  // namespace esttform::app
