// The generated measures of a candidate: distances of all pairs, the score of either method, and what follows from it.
#include "szelesttform_cg.h"
#include "szelesttform_points.h"

using namespace CG;
using namespace sysobj;

/// What the distance of a pair to the candidate is made of.
struct VektCGEstTForm::DistanceLocals {
    Expr idx;       ///< uint32: first value of the pair's rows in DW_CONSTRT_ALL
    Expr zeros[2];  ///< what the columns that are 0 for every pair add to the first and to the second row
    Expr dis;       ///< a row times the candidate
    Expr sumDis;    ///< squared distance
};

/// Columns that are 0 in a row of every pair need one product for all pairs: 0, or not a number where the candidate is not
/// finite. A sum that begins with them has the same value as one that meets them in between.
VektCGEstTForm::DistanceLocals VektCGEstTForm::emitDistanceLocals()
{
    DistanceLocals v;
    v.idx = createLocal("idx", DT_UINT32, 0, "first value of a pair in DW_CONSTRT_ALL");
    v.zeros[0] = createLocal("zeros1", mTc, 0, "columns that are 0 in the first row of every pair, times the candidate");
    v.zeros[1] = createLocal("zeros2", mTc, 0, "the same for the second row");
    v.dis = createLocal("dis", mTc, 0, "a constraint row times the candidate");
    v.sumDis = createLocal("sumDis", mTc, 0, "squared algebraic distance of a pair");
    const ConstraintTerms& terms = CONSTRAINT_TERMS[sampleSize - 2];
    for (int row = 0; row < 2; ++row) {
        Expr sum = constant(0);
        std::int32_t term = 0;
        for (std::int32_t col = 0; col < colNum; ++col) {
            if (term < terms.num && terms.cols[term][row] == col) {
                ++term;
            } else {
                sum = sum + constant(0) * tformCompact[col];
            }
        }
        Assign(v.zeros[row], sum);
    }
    Assign(v.idx, 0);
    return v;
}

/// Squared algebraic distance of pair i to the candidate, the first row's square first.
void VektCGEstTForm::emitDistance(const DistanceLocals& v, Expr i)
{
    const ConstraintTerms& terms = CONSTRAINT_TERMS[sampleSize - 2];
    for (int row = 0; row < 2; ++row) {
        Expr sum = v.zeros[row];
        for (std::int32_t term = 0; term < terms.num; ++term) {
            const std::int32_t col = terms.cols[term][row];
            sum = sum + constraintAll[v.idx + (row * colNum + col)] * tformCompact[col];
        }
        Assign(v.dis, sum);
        Assign(v.sumDis, row == 0 ? v.dis * v.dis : v.dis * v.dis + v.sumDis);
    }
    Assign(distance[i], v.sumDis);
    Assign(v.idx, v.idx + 2 * colNum);
}

void VektCGEstTForm::emitDistances()
{
    ScopeBlock scope(*this);
    append("Squared algebraic distance of every pair to the candidate.");
    const Expr i = createLocal("i", DT_UINT32);
    const DistanceLocals v = emitDistanceLocals();
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
    Assign(inlierDis, 0);
    Assign(i, 0);
    const DistanceLocals pair = emitDistanceLocals();
    {
        WhileBlock perPair(*this, i < ptsNum && (loopCount == 1 || inlierDis < bestInlierDis));
        emitDistance(pair, i);
        {
            IfBlock isFar(*this, !(pair.sumDis < disThr));
            Assign(pair.sumDis, disThr);
        }
        Assign(inlierDis, inlierDis + pair.sumDis);
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
