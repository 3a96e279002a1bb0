// The eighteen dialog parameters: indices, reading, and what follows from them alone.
// A value is read from the host afresh on every use; nothing here keeps one.
#pragma once

#include <cstdint>

#include "block_types.h"

/// Dialog parameters by index.
enum DialogParam : int {
    TRANSFORM_TYPE = 0,           ///< code: 1 nonreflective similarity, 2 affine, 3 projective
    EXCLUDE_OUTLIERS = 1,         ///< flag: robust estimation
    METHOD = 2,                   ///< code: 1 distance threshold, 2 median
    DIS_THR_PROJECTIVE = 3,       ///< squared point units
    DIS_THR_AFFINE = 4,           ///< squared point units; similarity and affine
    SAMPLE_NUM_SOURCE = 5,        ///< code: 1 specified number, 2 desired confidence
    MAX_RANDOM_SAMPLING = 6,      ///< number of samplings in confidence mode
    NUM_RANDOM_SAMPLING = 7,      ///< number of samplings otherwise
    DESIRED_CONFIDENCE = 8,       ///< percent
    BREAK_BY_PERCENTAGE = 9,      ///< flag
    INLIER_PERCENTAGE = 10,       ///< percent
    REFINE_ITERATIVELY = 11,      ///< flag
    OUTPUT_INLIERS = 12,          ///< flag
    RESERVED_CODE = 13,           ///< code 1 to 3, validated only
    TFORM_TYPE_FOR_INTEGERS = 14, ///< code: 1 single, 2 double
    RESERVED_FLAG = 15,           ///< flag, validated only
    RANDOM_SAMPLING = 16,         ///< flag, not validated
    POINTS_IN_ROWS = 17,          ///< flag, not validated
    DIALOG_PARAM_NUM = 18,
};

/// Run-time parameters by kind. Which exist, and at which run-time index, says rtpIndex.
enum RunTimeParam : int {
    SAMPLENUM_RTP = 0,
    CONFIDENCE_RTP = 1,
    DIST_THR_RTP = 2,
    BREAKPERCENTAGE_RTP = 3,
    RTP_NUM = 4,  ///< the number of run-time parameters, and of kinds
};

/// A kind of run-time parameter or of port that the settings do not bring about.
constexpr int NONE = -1;

// ---- Reading  [any callback; host thread]

/// First real element of a dialog parameter.
double readReal(sysobj::SysObjAdaptorSFun* S, DialogParam idx);
/// A parameter truncated toward zero to 32 bits; out of range gives the most negative integer.
std::int32_t readCode(sysobj::SysObjAdaptorSFun* S, DialogParam idx);
/// True when the low 8 bits of a parameter, truncated toward zero to 64 bits, are not all zero; out of range is clear.
bool readFlag(sysobj::SysObjAdaptorSFun* S, DialogParam idx);

// ---- What follows from the values  [any callback; host thread]

/// Point pairs of a minimal sample: 2, 3 or 4 by transformation type, 0 for any other code.
std::int32_t readSampleSize(sysobj::SysObjAdaptorSFun* S);
/// True when candidates are scored by the distance threshold: robust, method 1.
bool isThresholdMethod(sysobj::SysObjAdaptorSFun* S);
/// True when the block has the inlier output: robust, flag 12.
bool hasInlierOutput(sysobj::SysObjAdaptorSFun* S);
/// True when the sampling number follows from the desired confidence: robust, threshold method, source 2.
bool isConfidenceMode(sysobj::SysObjAdaptorSFun* S);
/// Run-time index of a kind, NONE when it does not exist; for RTP_NUM the number that exist.
/// A sample-number source that is neither 1 nor 2 gives none: it is rejected before anything is registered.
int rtpIndex(sysobj::SysObjAdaptorSFun* S, RunTimeParam kind);
/// Dialog parameter behind a kind of run-time parameter with the present settings.
DialogParam dialogParamOf(sysobj::SysObjAdaptorSFun* S, RunTimeParam kind);
/// Whether a dialog parameter may change between steps: it is a run-time parameter with the present settings.
bool isTunable(sysobj::SysObjAdaptorSFun* S, DialogParam idx);
/// Dimension of the point inputs along which points are counted: 0 for points in rows, else 1.
int pointAxis(sysobj::SysObjAdaptorSFun* S);
