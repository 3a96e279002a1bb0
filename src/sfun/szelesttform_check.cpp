// mdlCheckParameters: validates the dialog values that take effect.
#include "callbacks.h"
#include "orbsimcommon.h"
#include "szelesttform_params.h"

using namespace OrbSimCommon;
using sysobj::SysObjAdaptorSFun;

namespace {

constexpr int ERROR_MODE = 0;
constexpr int CHECK_ALWAYS = 0;

/// A checker for real scalars of at least 0.
dspParamCheckerID makeChecker()
{
    dspParamCheckerID checker(PRODUCT_BLOCKS);
    checker.setRealOnly(1);
    checker.setScalarOnly(1);
    checker.setNumericClass(dspParamCheckerID::REAL_NUMBERS);
    checker.setRangeKind(dspParamCheckerID::AT_LEAST_LOWER);
    checker.setLowerBound(0, 0.0);
    return checker;
}

bool checkNumber(SysObjAdaptorSFun* S, const dspParamCheckerID& checker, DialogParam idx,
                 const resource_core::BaseMsgID& name)
{
    return checker.check(S, idx, name, ERROR_MODE, CHECK_ALWAYS);
}

/// First the lower bound alone, then both bounds, so that a negative value gets the message of the lower bound.
bool checkPercentage(SysObjAdaptorSFun* S, DialogParam idx, const resource_core::BaseMsgID& name)
{
    dspParamCheckerID checker = makeChecker();
    if (!checkNumber(S, checker, idx, name)) return false;
    checker.setRangeKind(dspParamCheckerID::BETWEEN_LOWER_AND_UPPER);
    checker.setUpperBound(100, 100.0);
    return checkNumber(S, checker, idx, name);
}

/// Codes and flags, in the order in which their errors take precedence.
bool checkChoices(SysObjAdaptorSFun* S)
{
    if (!dspIsPopupParamValid(S, TRANSFORM_TYPE, 1, 3)) return false;
    if (!dspIsCheckboxParamValid(S, EXCLUDE_OUTLIERS)) return false;
    if (!dspIsPopupParamValid(S, METHOD, 1, 2)) return false;
    if (isThresholdMethod(S) && !dspIsPopupParamValid(S, SAMPLE_NUM_SOURCE, 1, 2)) return false;
    return dspIsCheckboxParamValid(S, BREAK_BY_PERCENTAGE) && dspIsCheckboxParamValid(S, REFINE_ITERATIVELY)
        && dspIsCheckboxParamValid(S, OUTPUT_INLIERS) && dspIsPopupParamValid(S, RESERVED_CODE, 1, 3)
        && dspIsPopupParamValid(S, TFORM_TYPE_FOR_INTEGERS, 1, 2) && dspIsCheckboxParamValid(S, RESERVED_FLAG);
}

}  // namespace

/// Validates the choices, then the numbers that are run-time parameters; a number without effect may have any value.
/// The first failure ends the check, except that the percentage is checked even if the confidence failed.
void mdlCheckParameters(SysObjAdaptorSFun* S)
{
    if (!checkChoices(S)) return;

    dspParamCheckerID checker = makeChecker();
    if (rtpIndex(S, DIST_THR_RTP) != NONE) {
        if (!checkNumber(S, checker, dialogParamOf(S, DIST_THR_RTP), catalog::mapBlkAlgebraicDistanceThreshold())) return;
    }
    if (rtpIndex(S, SAMPLENUM_RTP) != NONE) {
        checker.setNumericClass(dspParamCheckerID::WHOLE_NUMBERS);
        if (!checkNumber(S, checker, dialogParamOf(S, SAMPLENUM_RTP), catalog::mapBlkNumberOfRandomSampling())) return;
    }
    if (rtpIndex(S, CONFIDENCE_RTP) != NONE) {
        checkPercentage(S, DESIRED_CONFIDENCE, catalog::mapBlkDesiredConfidence());
    }
    if (rtpIndex(S, BREAKPERCENTAGE_RTP) != NONE) {
        checkPercentage(S, INLIER_PERCENTAGE, catalog::mapBlkInlierPercentage());
    }
}
