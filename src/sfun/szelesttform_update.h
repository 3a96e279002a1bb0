// Scoring and stopping: keeps the best candidate, shortens or ends the sampling phase, and says whether the search goes on.
// Member functions of the engine; included where engines are instantiated.
#pragma once

#include <algorithm>

#include "szelesttform_engine.h"
#include "szelesttform_scoring.h"

template <typename Ti, typename Tc>
bool estTForm<Ti, Tc>::updateBest(Tc inlierDis)
{
    const bool hasImprovement = isDisThrMethod ? updateByThreshold(inlierDis) : updateByMedian();
    if (mIsRandomSamplingStep) {
        endSamplingPhaseWhenDue();
        return true;
    }
    // The median method refits as long as that improves; the threshold method at most loopNum times.
    return isRefineIteratively && hasImprovement && (!isDisThrMethod || loopCount < loopNum);
}

/// The smaller sum of truncated distances is better. @return hasImprovement
template <typename Ti, typename Tc>
bool estTForm<Ti, Tc>::updateByThreshold(Tc inlierDis)
{
    if (!(bestInlierDis > inlierDis) && loopCount != 1) return false;
    bestInlierDis = inlierDis;
    keepCandidate();
    if (mIsRandomSamplingStep && isUseConfidence) {
        const std::int32_t samplingNum = samplingNumFor(confidence, bestInlierNum, ptsNum, sampleSize);
        if (samplingNum > 0) loopNum = std::min(loopNum, samplingNum);
    }
    return true;
}

/// The smaller median distance is better, and becomes the threshold of the inliers. @return hasImprovement
template <typename Ti, typename Tc>
bool estTForm<Ti, Tc>::updateByMedian()
{
    const Tc med = medianDistance(distance, ptsNum, ptsNorm1);
    if (!(disThr > med) && loopCount != 1) return false;
    disThr = med;
    keepCandidate();
    return true;
}

template <typename Ti, typename Tc>
void estTForm<Ti, Tc>::keepCandidate()
{
    std::copy(tformCompact, tformCompact + colNum, bestTFormCompact);
    bestInlierNum = collectInliers(distance, ptsNum, disThr, bestSample);
}

template <typename Ti, typename Tc>
void estTForm<Ti, Tc>::endSamplingPhaseWhenDue()
{
    const bool isBreak = isDisThrMethod && isBreakByPercentage
        && reachesPercentage(bestInlierNum, ptsNum, breakPercentage);
    if (loopCount >= loopNum || isBreak) {
        mIsRandomSamplingStep = false;
        loopCount = 0;
    }
}
