// Steps: every pair of data types, every size, repetition, bad points; and the description of code.
#include "../ir/model.h"
#include "checks.h"
#include "trial.h"

#include <fmt/format.h>

#include <cmath>

namespace blockhost::check {

using esttform::DataType;
using esttform::Layout;
using esttform::TransformType;

namespace {

constexpr int RANDOM_TRIAL_NUM = 1000;
constexpr int STEPS_OF_A_TRIAL = 3;

bool isReal(DataType type) noexcept
{
    return type == DataType::Double || type == DataType::Single;
}

/// Runs a function for the fourteen pairs of types, both layouts and all transformations.
template <typename Function>
void forEachKind(Function function)
{
    for (int points = 0; points < 8; ++points) {
        for (const DataType tform : {DataType::Double, DataType::Single}) {
            esttform::Settings settings = plainSettings();
            settings.pointsType = static_cast<DataType>(points);
            settings.tformType = tform;
            if (isReal(settings.pointsType) && settings.pointsType != tform)
                continue;
            for (const Layout layout : {Layout::Columns, Layout::Rows}) {
                for (const TransformType type : {TransformType::Similarity, TransformType::Affine, TransformType::Projective}) {
                    settings.layout = layout;
                    settings.type = type;
                    function(settings);
                }
            }
        }
    }
}

std::string kindText(const esttform::Settings& settings)
{
    constexpr const char* TYPES[] = {"double", "single", "int8", "uint8", "int16", "uint16", "int32", "uint32"};
    return fmt::format("{} points in {}, TForm of {}, transformation {}", TYPES[static_cast<int>(settings.pointsType)],
                       settings.layout == Layout::Rows ? "rows" : "columns", TYPES[static_cast<int>(settings.tformType)],
                       static_cast<int>(settings.type));
}

/// Where the shift in x stands in TForm.
int shiftIndexOf(const esttform::Settings& settings)
{
    const bool isProjective = settings.type == TransformType::Projective;
    if (settings.layout == Layout::Rows)
        return 2;
    return isProjective ? 6 : 4;
}

}  // namespace

void checkTypes(const std::string& path, unsigned)
{
    forEachKind([&path](const esttform::Settings& settings) {
        Trial trial(path, settings);
        openOrFind(trial, kindText(settings));
        const Outcome outcome = trial.stepTwice(shiftedMatches(12));
        const double shift = trial.tform(shiftIndexOf(settings));
        if (!outcome.error.empty() || !(std::fabs(shift - 2.0) < 0.01))
            throw Finding(fmt::format("{}: pairs that are shifted by 2 give a shift of {}{}", kindText(settings), shift,
                                      outcome.error.empty() ? "" : ", error " + outcome.error));
    });
}

/// Every number of pairs from 0 to the bound; too few are refused, and the next step is as if nothing had been.
void checkSizes(const std::string& path, unsigned)
{
    forEachKind([&path](const esttform::Settings& settings) {
        TrialOptions options;
        options.isVariableSize = true;
        Trial trial(path, settings, options);
        openOrFind(trial, kindText(settings));
        const int sampleSize = static_cast<int>(settings.type) + 1;
        for (int num = 0; num <= options.maxPtsNum; ++num) {
            const Outcome outcome = trial.stepTwice(shiftedMatches(num));
            if (outcome.error.empty() != (num >= sampleSize))
                throw Finding(fmt::format("{}: {} pairs: {}", kindText(settings), num,
                                          outcome.error.empty() ? "no error" : outcome.error));
        }
    });
}

void checkRepeatedSteps(const std::string& path, unsigned)
{
    esttform::Settings settings = plainSettings();
    settings.sampling = esttform::Sampling::Random;
    Matches matches = shiftedMatches(12);
    matches[2][3] += 30.0;
    Trial trial(path, settings);
    openOrFind(trial, "the block");
    const Outcome first = trial.stepTwice(matches);
    for (int i = 0; i < 50; ++i) {
        trial.step(shiftedMatches(12));
        if (trial.step(matches) != first)
            throw Finding("the same step with the same seed gives another result later on");
    }
}

/// Any settings and points: a step ends, keeps to its memory, and its mask holds 0 and 1 only.
void checkRandomSteps(const std::string& path, unsigned seed)
{
    for (unsigned trialSeed = seed; trialSeed < seed + RANDOM_TRIAL_NUM; ++trialSeed) {
        std::mt19937 random(trialSeed);
        const esttform::Settings settings = randomSettings(random);
        TrialOptions options;
        options.isVariableSize = random() % 2 == 0;
        options.maxPtsNum = 4 + static_cast<int>(random() % 30);
        try {
            Trial trial(path, settings, options);
            openOrFind(trial, kindText(settings));
            for (int i = 0; i < STEPS_OF_A_TRIAL; ++i) {
                const int ptsNum = options.isVariableSize ? static_cast<int>(random() % static_cast<unsigned>(options.maxPtsNum + 1))
                                                          : options.maxPtsNum;
                const Outcome outcome = trial.step(badMatches(random, ptsNum, isReal(settings.pointsType)));
                const bool hasMask = settings.isRobust && settings.isOutputInliers;
                const std::size_t maskLength = hasMask && outcome.error.empty() ? static_cast<std::size_t>(ptsNum) : 0;
                for (std::size_t k = outcome.outputs.size() - maskLength; k < outcome.outputs.size(); ++k)
                    if (outcome.outputs[k] > 1)
                        throw Finding(fmt::format("{}: the mask holds {}", kindText(settings), outcome.outputs[k]));
            }
        } catch (const std::exception& error) {
            throw Finding(fmt::format("seed {}: {}", trialSeed, error.what()));
        }
    }
}

/// The description of code for every kind keeps to the rules of the tree.
void checkCode(const std::string& path, unsigned)
{
    forEachKind([&path](const esttform::Settings& settings) {
        for (const bool isVariableSize : {false, true}) {
            TrialOptions options;
            options.isVariableSize = isVariableSize;
            Trial trial(path, settings, options);
            ir::Model model;
            try {
                trial.block().prepare();
                trial.block().describe(model, {});
            } catch (const esttform::Error& error) {
                throw Finding(fmt::format("{}: {}", kindText(settings), error.what()));
            }
            const std::vector<ir::Violation> violations = ir::verify(model);
            if (!violations.empty())
                throw Finding(fmt::format("{}: {}", kindText(settings), violations.front().text));
        }
    });
}

}  // namespace blockhost::check
