#include "code_labels.h"

#include "data_types.h"
#include "dialog_params.h"
#include "point_block.h"

#include <fmt/format.h>

namespace esttform {

using blockhost::ir::BlockLabels;

namespace {

int codeAt(const Params& params, std::size_t idx) noexcept
{
    return blockhost::toInteger<int>(params[idx]);
}

std::vector<std::string> settingsOf(const Params& params)
{
    if (!blockhost::isFlagSet(params[EXCLUDE_OUTLIERS]))
        return {"one least-squares fit to all pairs, wrong ones included"};
    const bool isMedian = codeAt(params, METHOD) == static_cast<int>(Method::Median);
    std::vector<std::string> lines;
    if (isMedian)
        lines.emplace_back("score of a candidate: median of the squared algebraic distances of all pairs");
    else
        lines.push_back(fmt::format("score of a candidate: sum of the squared algebraic distances of all pairs, each at most {}",
                                    params[sampleSizeOf(params) == 4 ? DIS_THR_PROJECTIVE : DIS_THR_AFFINE]));
    lines.push_back(fmt::format("samples: {} distinct pairs each, {}", sampleSizeOf(params),
                                blockhost::isFlagSet(params[RANDOM_SAMPLING]) ? "drawn at random" : "stepping cyclically through the pairs"));
    if (!isMedian && codeAt(params, SAMPLE_NUM_SOURCE) == static_cast<int>(SAMPLE_NUM_FROM_CONFIDENCE))
        lines.push_back(fmt::format("number of samples: at most {}, fewer when a confidence of {} percent is reached",
                                    params[MAX_RANDOM_SAMPLING], params[DESIRED_CONFIDENCE]));
    else
        lines.push_back(fmt::format("number of samples: {}", params[NUM_RANDOM_SAMPLING]));
    if (!isMedian && blockhost::isFlagSet(params[BREAK_BY_PERCENTAGE]))
        lines.push_back(fmt::format("sampling stops once {} percent of the pairs are inliers", params[INLIER_PERCENTAGE]));
    lines.emplace_back(blockhost::isFlagSet(params[REFINE_ITERATIVELY])
                           ? "refits on the inliers: while they improve the score, at most as many as samples"
                                                        : "refits on the inliers: one");
    lines.push_back(fmt::format("work of a step: for each sample and refit one fit and {}",
                                isMedian ? "a selection among the distances of all pairs" : "at most one pass over all pairs"));
    return lines;
}

}  // namespace

int sampleSizeOf(const Params& params) noexcept
{
    return codeAt(params, TRANSFORM_TYPE) + 1;
}

std::string purposeOf(const PointModel& model)
{
    constexpr const char* TYPES[] = {"a nonreflective similarity", "an affine", "a projective"};
    const int sampleSize = sampleSizeOf(model.params);
    const bool isInRows = blockhost::layoutOf(model.params) == Layout::Rows;
    const std::string image = sampleSize == 4 ? "(x2*w, y2*w, w)" : "(x2, y2)";
    const std::string action = isInRows ? image + " = (x1, y1, 1) * TForm" : image + "' = TForm * (x1, y1, 1)'";
    return fmt::format("Estimates {} transformation from {}{} matched points{}: {} for a point (x1, y1) of Pts1 and its match "
                       "(x2, y2) in Pts2.",
                       TYPES[sampleSize - 2], model.isVariableSize ? "up to " : "", model.maxPtsNum,
                       blockhost::isFlagSet(model.params[EXCLUDE_OUTLIERS]) ? " in spite of wrong matches" : " by least squares", action);
}

BlockLabels labelsOf(const PointModel& model)
{
    const char* const points =
        blockhost::layoutOf(model.params) == Layout::Rows ? "x of all points, then y of all points" : "x and y of each point in turn";
    return {{{"Pts1", points}, {"Pts2", points}},
            {{"TForm", "all zero: no transformation was found"}, {"Inlier", "true: the pair agrees with TForm"}},
            settingsOf(model.params)};
}

}  // namespace esttform
