// The settings record that simulation and code generation derive from the dialog parameters.
#pragma once

#include "block_ports.h"
#include "szelesttform_params.h"

/// Fills the settings fields of a record, each from its parameter.  [after the sizes are settled; host thread]
///
/// @tparam Record  has the integer fields sampleSize, maxPtsNum, minEqnNum, colNum and the Boolean fields isRobust,
///                 isDisThrMethod, isRefineIteratively, isUseSampleNum, isUseConfidence, isBreakByPercentage,
///                 isOutputInliers, isRandomSampling, isPtsNumFromSize
///
/// isUseConfidence looks at the robust flag and the source only; confidence mode (isConfidenceMode) asks for the
/// threshold method too.
template <typename Record>
void readSettings(sysobj::SysObjAdaptorSFun* S, Record& record)
{
    record.sampleSize = readSampleSize(S);
    record.maxPtsNum = sysobj::bhGetInputPortDimensionSize(S, 0, pointAxis(S));
    record.minEqnNum = 2 * record.sampleSize;
    record.colNum = 2 * record.sampleSize + 1;
    record.isRobust = readFlag(S, EXCLUDE_OUTLIERS);
    record.isDisThrMethod = isThresholdMethod(S);
    record.isRefineIteratively = record.isRobust && readFlag(S, REFINE_ITERATIVELY);
    record.isUseSampleNum = record.isRobust && readCode(S, SAMPLE_NUM_SOURCE) == 1;
    record.isUseConfidence = record.isRobust && readCode(S, SAMPLE_NUM_SOURCE) == 2;
    record.isBreakByPercentage = record.isRobust && readFlag(S, BREAK_BY_PERCENTAGE);
    record.isOutputInliers = hasInlierOutput(S);
    record.isRandomSampling = readFlag(S, RANDOM_SAMPLING);
    record.isPtsNumFromSize = true;
}
