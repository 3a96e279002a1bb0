#include "dialog_params.h"
#include "estimator.h"

#include <fmt/format.h>

namespace esttform {

namespace {

/// Values that Settings{} leaves unused still have to pass the block's checks.
constexpr double DEFAULT_CONFIDENCE = 99.9;
constexpr double DEFAULT_INLIER_PERCENTAGE = 99.0;

constexpr const char* NO = "no";
constexpr const char* SQUARED = "squared point units";

constexpr std::array<ParamInfo, PARAM_NUM> TABLE{{
    {0, "transformType", "1, 2 or 3", "", 3, NO, "Transformation: 1 nonreflective similarity, 2 affine, 3 projective."},
    {1, "excludeOutliers", "0 or 1", "", 1, NO,
     "1: robust estimation by random sampling; 0: one fit to all points, no inlier output."},
    {2, "method", "1 or 2", "", 1, NO,
     "Score of a candidate: 1 distances truncated at the threshold, 2 median of the distances."},
    {3, "disThrProjective", "0 or more", SQUARED, 9, "when transformType is 3 and robust estimation uses the threshold",
     "Squared algebraic distance up to which a pair is an inlier, for projective transformations."},
    {4, "disThrAffine", "0 or more", SQUARED, 9, "when transformType is 1 or 2 and robust estimation uses the threshold",
     "Squared algebraic distance up to which a pair is an inlier, for similarities and affine transformations."},
    {5, "sampleNumSource", "1 or 2", "", 2, NO,
     "Number of samplings: 1 as specified (numRandomSampling), 2 from the desired confidence."},
    {6, "maxRandomSampling", "whole number, 0 or more", "samplings", 10000,
     "when robust estimation takes the number of samplings from the confidence (method 1, sampleNumSource 2)",
     "Largest number of random samplings when the confidence decides."},
    {7, "numRandomSampling", "whole number, 0 or more", "samplings", 10000,
     "when robust estimation specifies the number of samplings (method 2, or sampleNumSource 1)",
     "Number of random samplings when it is specified."},
    {8, "desiredConfidence", "0 to 100", "percent", DEFAULT_CONFIDENCE,
     "when robust estimation takes the number of samplings from the confidence (method 1, sampleNumSource 2)",
     "Confidence that the best sample found holds inliers only."},
    {9, "breakByPercentage", "0 or 1", "", 0, NO, "1: sampling stops once inlierPercentage of the pairs are inliers."},
    {10, "inlierPercentage", "0 to 100", "percent", DEFAULT_INLIER_PERCENTAGE,
     "when robust estimation uses the threshold and breakByPercentage is 1",
     "Percentage of inliers at which sampling stops."},
    {11, "refineIteratively", "0 or 1", "", 1, NO, "1: the refit to the inliers is repeated while it improves."},
    {12, "outputInliers", "0 or 1", "", 1, NO, "1: the block has an inlier output (with excludeOutliers only)."},
    {13, "reserved13", "1, 2 or 3", "", 1, NO, "Checked, without effect."},
    {14, "tformTypeForIntegers", "1 or 2", "", 2, NO, "Data type of TForm for integer points: 1 single, 2 double."},
    {15, "reserved15", "0 or 1", "", 0, NO, "Checked, without effect."},
    {16, "randomSampling", "0 or 1", "", 1, NO, "1: samples are drawn at random; 0: sample indices step cyclically."},
    {17, "pointsInRows", "0 or 1", "", 0, NO, "1: each point is a row (M-by-2); 0: each point is a column (2-by-M)."},
}};

/// Data types of TForm and of the points have to agree before the block is asked.
void checkTypes(const Settings& settings)
{
    if (settings.tformType != DataType::Double && settings.tformType != DataType::Single)
        throw Error(ErrorKind::Usage, fmt::format("tformType: got data type {}, expected double (0) or single (1)",
                                                  static_cast<int>(settings.tformType)));
    const bool isReal = settings.pointsType == DataType::Double || settings.pointsType == DataType::Single;
    if (isReal && settings.tformType != settings.pointsType)
        throw Error(ErrorKind::Usage,
                    fmt::format("tformType: got {0}, expected {1}: {1} points give a {1} transformation",
                                settings.tformType == DataType::Single ? "single" : "double",
                                settings.pointsType == DataType::Single ? "single" : "double"));
}

}  // namespace

const std::array<ParamInfo, PARAM_NUM>& paramTable() noexcept
{
    return TABLE;
}

Params toParams(const Settings& settings)
{
    checkTypes(settings);
    const auto code = [](auto value) { return static_cast<double>(value); };
    Params params{};
    params[TRANSFORM_TYPE] = code(settings.type);
    params[EXCLUDE_OUTLIERS] = code(settings.isRobust);
    params[METHOD] = code(settings.method);
    params[DIS_THR_PROJECTIVE] = settings.threshold;
    params[DIS_THR_AFFINE] = settings.threshold;
    params[SAMPLE_NUM_SOURCE] = settings.confidence ? SAMPLE_NUM_FROM_CONFIDENCE : SAMPLE_NUM_SPECIFIED;
    params[MAX_RANDOM_SAMPLING] = settings.sampleNum;
    params[NUM_RANDOM_SAMPLING] = settings.sampleNum;
    params[DESIRED_CONFIDENCE] = settings.confidence.value_or(DEFAULT_CONFIDENCE);
    params[BREAK_BY_PERCENTAGE] = code(settings.stopAtInliers.has_value());
    params[INLIER_PERCENTAGE] = settings.stopAtInliers.value_or(DEFAULT_INLIER_PERCENTAGE);
    params[REFINE_ITERATIVELY] = code(settings.isRefineIteratively);
    params[OUTPUT_INLIERS] = code(settings.isOutputInliers);
    params[RESERVED_CODE] = 1;
    params[TFORM_TYPE_FOR_INTEGERS] = settings.tformType == DataType::Single ? TFORM_SINGLE : TFORM_DOUBLE;
    params[RESERVED_FLAG] = 0;
    params[RANDOM_SAMPLING] = code(settings.sampling);
    params[POINTS_IN_ROWS] = code(settings.layout);
    return params;
}

}  // namespace esttform
