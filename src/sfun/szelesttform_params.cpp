#include "szelesttform_params.h"

#include "block_setup.h"
#include "szelesttform_convert.h"

using namespace sysobj;

namespace {

/// Run-time indices of kinds 0 to 3 and their number.
struct RtpRow {
    int idx[RTP_NUM];
    int num;
};

constexpr RtpRow NO_RTP = {{NONE, NONE, NONE, NONE}, 0};
constexpr RtpRow MEDIAN_RTP = {{0, NONE, NONE, NONE}, 1};

/// Threshold method, by [break by percentage][confidence mode].
constexpr RtpRow THRESHOLD_RTP[2][2] = {
    {{{0, NONE, 1, NONE}, 2}, {{0, 1, 2, NONE}, 3}},
    {{{0, NONE, 1, 2}, 3}, {{0, 1, 2, 3}, 4}},
};

const RtpRow& rtpRow(SysObjAdaptorSFun* S)
{
    if (!readFlag(S, EXCLUDE_OUTLIERS)) return NO_RTP;
    if (!isThresholdMethod(S)) return MEDIAN_RTP;
    const std::int32_t source = readCode(S, SAMPLE_NUM_SOURCE);
    if (source != 1 && source != 2) return NO_RTP;
    return THRESHOLD_RTP[readFlag(S, BREAK_BY_PERCENTAGE) ? 1 : 0][source - 1];
}

}  // namespace

double readReal(SysObjAdaptorSFun* S, DialogParam idx)
{
    return bhGetArrayReal(bhGetSFcnParam(S, idx))[0];
}

std::int32_t readCode(SysObjAdaptorSFun* S, DialogParam idx)
{
    return truncateTo<std::int32_t>(readReal(S, idx));
}

bool readFlag(SysObjAdaptorSFun* S, DialogParam idx)
{
    return (truncateTo<std::int64_t>(readReal(S, idx)) & 0xFF) != 0;
}

std::int32_t readSampleSize(SysObjAdaptorSFun* S)
{
    const std::int32_t transformType = readCode(S, TRANSFORM_TYPE);
    return transformType >= 1 && transformType <= 3 ? transformType + 1 : 0;
}

bool isThresholdMethod(SysObjAdaptorSFun* S)
{
    return readFlag(S, EXCLUDE_OUTLIERS) && readCode(S, METHOD) == 1;
}

bool hasInlierOutput(SysObjAdaptorSFun* S)
{
    return readFlag(S, EXCLUDE_OUTLIERS) && readFlag(S, OUTPUT_INLIERS);
}

bool isConfidenceMode(SysObjAdaptorSFun* S)
{
    return isThresholdMethod(S) && readCode(S, SAMPLE_NUM_SOURCE) == 2;
}

int rtpIndex(SysObjAdaptorSFun* S, RunTimeParam kind)
{
    const RtpRow& row = rtpRow(S);
    return kind == RTP_NUM ? row.num : row.idx[kind];
}

DialogParam dialogParamOf(SysObjAdaptorSFun* S, RunTimeParam kind)
{
    switch (kind) {
    case SAMPLENUM_RTP: return isConfidenceMode(S) ? MAX_RANDOM_SAMPLING : NUM_RANDOM_SAMPLING;
    case CONFIDENCE_RTP: return DESIRED_CONFIDENCE;
    case DIST_THR_RTP: return readCode(S, TRANSFORM_TYPE) == 3 ? DIS_THR_PROJECTIVE : DIS_THR_AFFINE;
    default: return INLIER_PERCENTAGE;
    }
}

bool isTunable(SysObjAdaptorSFun* S, DialogParam idx)
{
    for (int kind = 0; kind < RTP_NUM; ++kind) {
        const auto rtp = static_cast<RunTimeParam>(kind);
        if (dialogParamOf(S, rtp) == idx && rtpIndex(S, rtp) != NONE) return true;
    }
    return false;
}

int pointAxis(SysObjAdaptorSFun* S)
{
    return readFlag(S, POINTS_IN_ROWS) ? 0 : 1;
}
