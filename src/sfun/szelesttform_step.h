// The estimation step: clears, checks the count, fits all pairs or searches robustly, writes the outputs.
// Member templates of the engine; included where engines are instantiated or run with other parts.
#pragma once

#include <algorithm>

#include "orbsimcommon.h"
#include "szelesttform_engine.h"
#include "szelesttform_tform.h"

template <typename Ti, typename Tc>
template <typename Parts>
void estTForm<Ti, Tc>::estimate(std::int32_t currentPtsNum, Parts& parts)
{
    ptsNum = currentPtsNum;
    clearOutputs();
    if (isUseConfidence) loopNum = loopNumOf(maxSampleNum);
    if (ptsNum < sampleSize || ptsNum > maxPtsNum) return;

    if (!isRobust) {
        fitAll(parts);
        return;
    }
    search(parts);
    if (bestInlierNum < sampleSize) return;
    parts.writeTForm(bestTFormCompact);
    if (isOutputInliers) {
        for (std::int32_t i = 0; i < bestInlierNum; ++i) inlier[bestSample[i]] = 1;
    }
}

template <typename Ti, typename Tc>
void estTForm<Ti, Tc>::clearOutputs()
{
    std::fill_n(tform, tformWidth(sampleSize), Tc(0));
    if (isOutputInliers) std::fill_n(inlier, std::max(0, std::min(ptsNum, maxPtsNum)), std::uint8_t(0));
}

/// Where the first sample starts from: cyclic stepping from 0, 1, ...; random drawing from whatever the last step left,
/// which shows only when a draw fails, and then must be a pair of this step.
template <typename Ti, typename Tc>
void estTForm<Ti, Tc>::startSampling()
{
    for (std::int32_t i = 0; i < sampleSize; ++i) {
        if (!isRandomSampling) {
            sampleIdx[i] = static_cast<std::uint32_t>(i);
        } else if (sampleIdx[i] >= static_cast<std::uint32_t>(ptsNum)) {
            sampleIdx[i] = 0;
        }
    }
}

/// One fit to all pairs, in order.
template <typename Ti, typename Tc>
template <typename Parts>
void estTForm<Ti, Tc>::fitAll(Parts& parts)
{
    for (std::int32_t i = 0; i < ptsNum; ++i) sampleIdx[i] = static_cast<std::uint32_t>(i);
    if (parts.fitTForm(ptsNum)) parts.writeTForm(tformCompact);
}

/// The robust search: minimal samples first, then refits on the best candidate's inliers.
template <typename Ti, typename Tc>
template <typename Parts>
void estTForm<Ti, Tc>::search(Parts& parts)
{
    mIsRandomSamplingStep = ptsNum > sampleSize;
    bestInlierNum = 0;
    if (!mIsRandomSamplingStep) {                        // the only sample: refit at once on all pairs
        bestInlierNum = sampleSize;
        for (std::int32_t i = 0; i < sampleSize; ++i) bestSample[i] = static_cast<std::uint32_t>(i);
    }
    loopCount = 0;
    bestInlierDis = Tc(0);
    startSampling();
    parts.makeAllConstraints();

    std::int32_t n = sampleSize;
    bool isContinue = true;
    while (isContinue) {
        if (!prepareSample(parts, &n)) break;
        ++loopCount;
        if (parts.fitTForm(n)) {
            isContinue = updateBest(parts.computeDistances());
        } else if (mIsRandomSamplingStep) {
            isContinue = loopCount < loopNum;
        } else {
            bestInlierNum = 0;
            isContinue = false;
        }
    }
}

/// Puts the next subset into sampleIdx: a minimal sample, or the n inliers of the best candidate.
/// @return false when the best candidate has too few inliers to refit
template <typename Ti, typename Tc>
template <typename Parts>
bool estTForm<Ti, Tc>::prepareSample(Parts& parts, std::int32_t* n)
{
    if (mIsRandomSamplingStep) {
        if (!parts.drawSample()) OrbSimCommon::dspWarning(catalog::invalidRandomSamples());
        return true;
    }
    if (bestInlierNum < sampleSize) return false;
    std::copy(bestSample, bestSample + bestInlierNum, sampleIdx);
    *n = bestInlierNum;
    return true;
}
