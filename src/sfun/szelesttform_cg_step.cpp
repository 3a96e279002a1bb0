// The generated step: sizes, set-up, the search loop with its two phases, and the outputs of the best candidate.
#include "szelesttform_cg.h"
#include "szelesttform_cg_points.h"
#include "szelesttform_tform.h"

#include "block_ports.h"

using namespace CG;
using namespace sysobj;

void VektCGEstTForm::output()
{
    ptsNum = createLocal("ptsNum", DT_INT32, 0, "point pairs of this step");
    StepLocals v;
    v.i = createLocal("i", DT_INT32);
    v.inlierNum = createLocal("inlierNum", DT_INT32, 0, "pairs handed to the fit");
    v.isContinue = createLocal("isContinue", DT_BOOLEAN, 0, "the search goes on");
    v.isSizeValid = createLocal("isSizeValid", DT_BOOLEAN);
    v.oneValue = createLocal("oneValue", DT_BOOLEAN);
    v.result = createLocal("result", DT_BOOLEAN, 0, "the fit gave a transformation");
    Assign(v.oneValue, 1);
    Assign(v.isSizeValid, 1);

    emitSize(v);
    allConstraintsFcn();
    emitClear(v);
    IfBlock isEnough(*this, ptsNum >= sampleSize);
    if (!isRobust) {
        emitDirectFit(v);
        return;
    }
    emitSearchSetUp(v);
    emitSearchLoop(v);
    emitBestOutputs(v);
}

void VektCGEstTForm::emitSize(const StepLocals& v)
{
    if (bhGetInputPortDimensionsMode(block, 0) != DIMS_MODE_VARIABLE) {
        Assign(ptsNum, maxPtsNum);
        return;
    }
    const int pointDim = mIsInRows ? 0 : 1;
    Assign(ptsNum, blockInterface->GetCurrentInputDim(0, pointDim));
    const Expr numRow1 = createLocal("numRow1", DT_INT32);
    const Expr numCol1 = createLocal("numCol1", DT_INT32);
    const Expr numRow2 = createLocal("numRow2", DT_INT32);
    const Expr numCol2 = createLocal("numCol2", DT_INT32);
    Assign(numRow1, blockInterface->GetCurrentInputDim(0, 0));
    Assign(numCol1, blockInterface->GetCurrentInputDim(0, 1));
    Assign(numRow2, blockInterface->GetCurrentInputDim(1, 0));
    Assign(numCol2, blockInterface->GetCurrentInputDim(1, 1));
    append("Two coordinates a point, at least one minimal sample, as many points in both sets.");
    Assign(v.isSizeValid, mIsInRows ? numCol1 == 2 && numCol2 == 2 : numRow1 == 2 && numRow2 == 2);
    Assign(v.isSizeValid, v.isSizeValid && (mIsInRows ? numRow1 : numCol1) >= sampleSize);
    Assign(v.isSizeValid, v.isSizeValid && numRow1 == numRow2 && numCol1 == numCol2);
    blockInterface->insertSizeEqCheck1D(v.isSizeValid.node(), v.oneValue.node());
}

void VektCGEstTForm::emitClear(const StepLocals& v)
{
    append("No transformation and no inliers unless found below.");
    {
        ForBlock perElement(*this, v.i, tformWidth(sampleSize));
        Assign(tform[v.i], 0);
    }
    if (isOutputInliers) {
        ForBlock perPair(*this, v.i, ptsNum);
        Assign(inlier[v.i], 0);
    }
}

/// Robust estimation off: one fit to all pairs.
void VektCGEstTForm::emitDirectFit(const StepLocals& v)
{
    append("Fit to all pairs.");
    Assign(v.i, 0);
    {
        WhileBlock perPair(*this, v.i < ptsNum);
        Assign(sampleIdx[v.i], cast(uint32T(), v.i));
        increment(v.i);
    }
    emitFit(ptsNum, v.result);
    IfBlock isFound(*this, v.result);
    emitWriteTForm(tformCompact);
}

void VektCGEstTForm::emitSearchSetUp(const StepLocals& v)
{
    append("With no pair to spare there is nothing to sample: the first refit takes all pairs.");
    {
        IfBlock isMinimal(*this, ptsNum == sampleSize);
        {
            ForBlock perPair(*this, v.i, sampleSize);
            Assign(bestSample[v.i], cast(uint32T(), v.i));
        }
        Assign(bestInlierNum, sampleSize);
        Assign(mIsRandomSamplingStep, 0);
        isMinimal.otherwise();
        Assign(bestInlierNum, 0);
        Assign(mIsRandomSamplingStep, 1);
    }
    if (!isDisThrMethod) Assign(disThr, 0);
    if (!isRandomSampling) {
        ForBlock perIndex(*this, v.i, sampleSize);
        Assign(sampleIdx[v.i], cast(uint32T(), v.i));
    }
    Assign(loopNum, maxSampleNum);
    Assign(bestInlierDis, 0);
    Assign(loopCount, 0);
    Assign(v.isContinue, 1);
    Assign(v.inlierNum, sampleSize);
    append("Constraints of all pairs in input coordinates, for the distances.");
    emitAllConstraints();
}

Fcn* VektCGEstTForm::allConstraintsFcn()
{
    generateMakeConstraintMatrixFcn generator(blockInterface->GetCfg(), sampleSize, inDataType, outDataType,
                                              GetCGType(inDataType), mTc, mIsInRows);
    generator.setUtilityFcnScope(DSPCG::UtilityFcnScope());
    return generator.findOrCreateFcn();
}

void VektCGEstTForm::emitAllConstraints()
{
    const Expr pairNum = cast(uint32T(), ptsNum);
    callOutlined(allConstraintsFcn(), pts1[0], pts2[0], pairNum, pairNum, constraintAll[0]);
}

void VektCGEstTForm::emitSearchLoop(const StepLocals& v)
{
    WhileBlock search(*this, v.isContinue);
    {
        IfBlock isSampling(*this, mIsRandomSamplingStep);
        emitDrawSample(v);
        isSampling.otherwise();
        emitRefitSample(v);
    }
    IfBlock hasSample(*this, v.isContinue);
    emitCandidate(v);
}

void VektCGEstTForm::emitRefitSample(const StepLocals& v)
{
    append("Refit on the inliers of the best candidate.");
    IfBlock isEnough(*this, bestInlierNum >= sampleSize);
    Assign(v.i, 0);
    {
        WhileBlock perInlier(*this, cast(uint32T(), v.i) < bestInlierNum);
        Assign(sampleIdx[v.i], bestSample[v.i]);
        increment(v.i);
    }
    Assign(v.inlierNum, cast(int32T(), bestInlierNum));
    isEnough.otherwise();
    Assign(v.isContinue, 0);
}

void VektCGEstTForm::emitCandidate(const StepLocals& v)
{
    increment(loopCount);
    emitFit(v.inlierNum, v.result);
    IfBlock isFound(*this, v.result);
    if (isDisThrMethod) {
        emitThresholdScore(v);
    } else {
        emitMedianScore(v);
    }
    isFound.otherwise();
    IfBlock isRefit(*this, !mIsRandomSamplingStep);
    append("A failed refit leaves no result.");
    Assign(v.isContinue, 0);
    Assign(bestInlierNum, 0);
    isRefit.otherwise();
    IfBlock isLast(*this, loopCount >= loopNum);
    Assign(v.isContinue, 0);
}

void VektCGEstTForm::emitBestOutputs(const StepLocals& v)
{
    append("Outputs from the best candidate.");
    IfBlock isFound(*this, bestInlierNum >= sampleSize);
    emitWriteTForm(bestTFormCompact);
    if (!isOutputInliers) return;
    Assign(v.i, 0);
    WhileBlock perInlier(*this, cast(uint32T(), v.i) < bestInlierNum);
    Assign(inlier[bestSample[v.i]], 1);
    increment(v.i);
}
