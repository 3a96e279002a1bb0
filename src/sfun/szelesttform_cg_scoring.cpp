// The generated measures of a candidate: distances of all pairs, the score of either method, and what follows from it.
#include "szelesttform_cg.h"

using namespace CG;
using namespace sysobj;

/// Locals of the loops over the constraint rows of a pair.
struct VektCGEstTForm::DistanceLocals {
    Expr j, k;  ///< uint32: row of the pair, column
    Expr idx;   ///< uint32: next value of DW_CONSTRT_ALL
    Expr dis;   ///< a row times the candidate
};

VektCGEstTForm::DistanceLocals VektCGEstTForm::createDistanceLocals()
{
    DistanceLocals v;
    v.j = createLocal("j", DT_UINT32);
    v.k = createLocal("k", DT_UINT32);
    v.idx = createLocal("idx", DT_UINT32, 0, "next value of DW_CONSTRT_ALL");
    v.dis = createLocal("dis", mTc, 0, "a constraint row times the candidate");
    return v;
}

/// Squared algebraic distance of pair i to the candidate; both rows follow each other at idx.
void VektCGEstTForm::emitDistance(const DistanceLocals& v, Expr i)
{
    Assign(distance[i], 0);
    ForBlock perRow(*this, v.j, 2);
    Assign(v.dis, 0);
    {
        ForBlock perColumn(*this, v.k, colNum);
        Assign(v.dis, v.dis + constraintAll[v.idx] * tformCompact[v.k]);
        increment(v.idx);
    }
    Assign(distance[i], v.dis * v.dis + distance[i]);
}

void VektCGEstTForm::emitDistances()
{
    ScopeBlock scope(*this);
    append("Squared algebraic distance of every pair to the candidate.");
    const Expr i = createLocal("i", DT_UINT32);
    const DistanceLocals v = createDistanceLocals();
    Assign(v.idx, 0);
    ForBlock perPair(*this, i, cast(uint32T(), ptsNum));
    emitDistance(v, i);
}

/// Keeps the candidate if its score is the best: the score, the transformation, and the pairs within disThr.
void VektCGEstTForm::emitKeepBest(Expr score, Expr bestScore, Expr i)
{
    Assign(bestScore, score);
    {
        ForBlock perValue(*this, i, colNum);
        Assign(bestTFormCompact[i], tformCompact[i]);
    }
    Assign(bestInlierNum, 0);
    Assign(i, 0);
    WhileBlock perPair(*this, i < ptsNum);
    {
        IfBlock isInlier(*this, distance[i] <= disThr);
        Assign(bestSample[bestInlierNum], cast(uint32T(), i));
        increment(bestInlierNum);
    }
    increment(i);
}

/// Distances and score in one pass. Contributions are not negative, so that a sum which has reached the best score never
/// falls below it again: the candidate has lost, and nobody reads its further distances.
void VektCGEstTForm::emitThresholdScore(const StepLocals& v)
{
    append("Score: sum of the squared algebraic distances of all pairs, each at most the threshold. A candidate that has lost "
           "is given up.");
    const Expr inlierDis = createLocal("inlierDis", mTc);
    const Expr hasImprovement = createLocal("hasImprovement", DT_BOOLEAN);
    const Expr i = createLocal("i", DT_INT32);
    const DistanceLocals row = createDistanceLocals();
    Assign(inlierDis, 0);
    Assign(i, 0);
    Assign(row.idx, 0);
    {
        WhileBlock perPair(*this, i < ptsNum && (loopCount == 1 || inlierDis < bestInlierDis));
        emitDistance(row, i);
        {
            IfBlock isNear(*this, distance[i] < disThr);
            Assign(inlierDis, inlierDis + distance[i]);
            isNear.otherwise();
            Assign(inlierDis, inlierDis + disThr);
        }
        increment(i);
    }
    Assign(hasImprovement, inlierDis < bestInlierDis || loopCount == 1);
    {
        IfBlock isBest(*this, hasImprovement);
        emitKeepBest(inlierDis, bestInlierDis, i);
        if (isUseConfidence) {
            IfBlock isSampling(*this, mIsRandomSamplingStep);
            emitLoopNumFromConfidence();
        }
    }
    Expr isStop = loopCount >= loopNum;
    if (isBreakByPercentage) {
        const Expr wanted = constant(0.01) * cast(mTc, ptsNum) * breakPercentage;
        isStop = isStop || cast(mTc, bestInlierNum) >= wanted;
    }
    emitEndOfCandidate(v, hasImprovement, isStop);
}

/// Number of samples of which one holds right pairs only, with the desired confidence (Fischler and Bolles, CACM 1981).
void VektCGEstTForm::emitLoopNumFromConfidence()
{
    append("Samplings that the share of inliers needs for the desired confidence; a number out of range changes nothing.");
    const Expr denominator = createLocal("denominator", mTc);
    const Expr neededNum = createLocal("loopNum", DT_INT32);
    Assign(denominator, cast(mTc, bestInlierNum));
    Node* const power = getTargetLibFcnCall("pow", mTc);
    setTargetFcnInputData(power, 1, denominator / cast(mTc, ptsNum));
    setTargetFcnInputData(power, 2, constant(sampleSize));
    const Expr numLog = targetFcn("log", 1.0 - 0.01 * confidence);
    const Expr denLog = targetFcn("log", 1.0 - Expr(power));
    Assign(neededNum, cast(int32T(), targetFcn("ceil", numLog / denLog)));
    IfBlock isShorter(*this, neededNum > 0 && cast(uint32T(), neededNum) < loopNum);
    Assign(loopNum, cast(uint32T(), neededNum));
}

void VektCGEstTForm::emitMedianScore(const StepLocals& v)
{
    emitDistances();
    append("Score: median of the distances, found in a scratch copy.");
    const Expr inlierDis = createLocal("inlierDis", mTc);
    const Expr hasImprovement = createLocal("hasImprovement", DT_BOOLEAN);
    const Expr i = createLocal("i", DT_INT32);
    const Expr inlierDisTmp = createLocal("inlierDisTmp", mTc);
    const Expr halfPtsNum = createLocal("halfPtsNum", DT_UINT32);
    const Expr pairNum = createLocal("ptsNum", DT_UINT32);
    const auto copyDistances = [&] {
        Assign(i, 0);
        WhileBlock perPair(*this, i < ptsNum);
        Assign(ptsNorm1[i], distance[i]);
        increment(i);
    };
    copyDistances();
    Assign(halfPtsNum, cast(uint32T(), ptsNum >> 1));
    Assign(pairNum, cast(uint32T(), ptsNum));
    {
        ScopeBlock scope(*this);
        Assign(inlierDis, emitOrderStatistic(pairNum, halfPtsNum));
    }
    {
        IfBlock isEven(*this, (pairNum & 1) == 0);
        copyDistances();
        Assign(halfPtsNum, halfPtsNum - 1);
        Assign(inlierDisTmp, emitOrderStatistic(pairNum, halfPtsNum));
        Assign(inlierDis, 0.5 * (inlierDis + inlierDisTmp));
    }
    Assign(hasImprovement, inlierDis < disThr || loopCount == 1);
    {
        IfBlock isBest(*this, hasImprovement);
        emitKeepBest(inlierDis, disThr, i);
    }
    emitEndOfCandidate(v, hasImprovement, loopCount >= loopNum);
}

void VektCGEstTForm::emitEndOfCandidate(const StepLocals& v, Expr hasImprovement, Expr isStop)
{
    append("After the last sample come the refits.");
    IfBlock isSampling(*this, mIsRandomSamplingStep);
    {
        IfBlock isLast(*this, isStop);
        Assign(mIsRandomSamplingStep, 0);
        Assign(loopCount, 0);
    }
    Assign(v.isContinue, 1);
    isSampling.otherwise();
    if (isRefineIteratively) {
        Assign(v.isContinue, hasImprovement && loopCount < loopNum);
    } else {
        Assign(v.isContinue, 0);
    }
}
