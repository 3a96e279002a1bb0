// Positions of the block's dialog values in Params, under the names that the block gives them.
#pragma once

#include <cstddef>

namespace esttform {

enum DialogParam : std::size_t {
    TRANSFORM_TYPE = 0,           ///< code: TransformType
    EXCLUDE_OUTLIERS = 1,         ///< flag: robust estimation
    METHOD = 2,                   ///< code: Method
    DIS_THR_PROJECTIVE = 3,       ///< squared point units
    DIS_THR_AFFINE = 4,           ///< squared point units; similarity and affine
    SAMPLE_NUM_SOURCE = 5,        ///< code: SAMPLE_NUM_SPECIFIED or SAMPLE_NUM_FROM_CONFIDENCE
    MAX_RANDOM_SAMPLING = 6,      ///< number of samplings when the confidence decides
    NUM_RANDOM_SAMPLING = 7,      ///< number of samplings otherwise
    DESIRED_CONFIDENCE = 8,       ///< percent
    BREAK_BY_PERCENTAGE = 9,      ///< flag
    INLIER_PERCENTAGE = 10,       ///< percent
    REFINE_ITERATIVELY = 11,      ///< flag
    OUTPUT_INLIERS = 12,          ///< flag
    RESERVED_CODE = 13,           ///< 1 to 3, checked only
    TFORM_TYPE_FOR_INTEGERS = 14, ///< code: TFORM_SINGLE or TFORM_DOUBLE
    RESERVED_FLAG = 15,           ///< flag, checked only
    RANDOM_SAMPLING = 16,         ///< flag: Sampling
    POINTS_IN_ROWS = 17,          ///< flag: Layout
};

/// Codes of SAMPLE_NUM_SOURCE.
constexpr double SAMPLE_NUM_SPECIFIED = 1.0, SAMPLE_NUM_FROM_CONFIDENCE = 2.0;
/// Codes of TFORM_TYPE_FOR_INTEGERS.
constexpr double TFORM_SINGLE = 1.0, TFORM_DOUBLE = 2.0;

}  // namespace esttform
