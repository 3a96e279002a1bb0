// The fourteen engines: construction, scoring, the parts of a step, and their instantiation.
#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <limits>

#include "block_run.h"
#include "szelesttform_engine.h"
#include "szelesttform_fit.h"
#include "szelesttform_ports.h"
#include "szelesttform_sampling.h"
#include "szelesttform_scoring.h"
#include "szelesttform_settings.h"
#include "szelesttform_step.h"
#include "szelesttform_work.h"

using namespace sysobj;

// ---- Construction

template <typename Ti, typename Tc>
estTForm<Ti, Tc>::estTForm(SysObjAdaptorSFun* S, QrCache* cache) : block(S), qrCache(cache)
{
    pts1 = static_cast<const Ti*>(bhGetInputPortSignal(S, 0));
    pts2 = static_cast<const Ti*>(bhGetInputPortSignal(S, 1));
    tform = static_cast<Tc*>(bhGetOutputPortSignal(S, outputPortIndex(S, TFORM_PORT)));
    const int inlierPort = outputPortIndex(S, INLIER_PORT);
    if (inlierPort >= 0) inlier = static_cast<std::uint8_t*>(bhGetOutputPortSignal(S, inlierPort));

    const bool isRobustBlock = readFlag(S, EXCLUDE_OUTLIERS);  // the settings are read below, in their order
    sampleIdx = static_cast<std::uint32_t*>(bhGetDWork(S, DW_SAMPLEIDX));
    bestSample = static_cast<std::uint32_t*>(bhGetDWork(S, DW_BEST_SAMPLE));
    ptsNorm1 = static_cast<Tc*>(bhGetDWork(S, DW_PTSNORM1));
    ptsNorm2 = static_cast<Tc*>(bhGetDWork(S, DW_PTSNORM2));
    if (isRobustBlock) distance = static_cast<Tc*>(bhGetDWork(S, DW_DISTANCE));
    constraint = static_cast<Tc*>(bhGetDWork(S, DW_CONSTRAINT));
    if (isRobustBlock) constraintAll = static_cast<Tc*>(bhGetDWork(S, DW_CONSTRT_ALL));
    factor = static_cast<Tc*>(bhGetDWork(S, DW_FACTOR));

    readSettings(S, *this);
    processParameters(S);
    std::srand(static_cast<unsigned>(std::clock()));
}

template <typename Ti, typename Tc>
estTForm<Ti, Tc>::~estTForm()
{
    delete qrCache;
}

template <typename Ti, typename Tc>
void estTForm<Ti, Tc>::processParameters(SysObjAdaptorSFun* S)
{
    readRunTimeParams(S, maxSampleNum, confidence, disThr, breakPercentage);
    loopNum = loopNumOf(maxSampleNum);
}

// ---- The step

template <typename Ti, typename Tc>
void estTForm<Ti, Tc>::output(std::int32_t currentPtsNum)
{
    EngineParts<Ti, Tc> parts(*this, currentPtsNum);
    estimate(currentPtsNum, parts);
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

// ---- Scoring and stopping

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

// ---- The parts of a step

template <typename Ti, typename Tc>
EngineParts<Ti, Tc>::EngineParts(estTForm<Ti, Tc>& engine, std::int32_t ptsNum)
    : mEngine(engine), mIsInRows(readFlag(engine.block, POINTS_IN_ROWS)), mLayout(PointLayout::of(mIsInRows, ptsNum))
{
}

template <typename Ti, typename Tc>
void EngineParts<Ti, Tc>::makeAllConstraints()
{
    switch (mEngine.sampleSize) {
    case 2: makeAllConstraintsSized<2>(); break;
    case 3: makeAllConstraintsSized<3>(); break;
    default: makeAllConstraintsSized<4>(); break;
    }
}

template <typename Ti, typename Tc>
template <std::int32_t SAMPLE_SIZE>
void EngineParts<Ti, Tc>::makeAllConstraintsSized()
{
    makeConstraintMatrix(mEngine.pts1, mEngine.pts2, mLayout, FixedSize<SAMPLE_SIZE>{}, mEngine.ptsNum,
                         mEngine.constraintAll);
}

template <typename Ti, typename Tc>
bool EngineParts<Ti, Tc>::drawSample()
{
    return ::drawSample(mEngine.sampleSize, static_cast<std::uint32_t>(mEngine.ptsNum), mEngine.maxDuplicateTries,
                        mEngine.isRandomSampling, mEngine.sampleIdx);
}

template <typename Ti, typename Tc>
bool EngineParts<Ti, Tc>::fitTForm(std::int32_t n)
{
    switch (mEngine.sampleSize) {
    case 2: return fitSized<2>(n);
    case 3: return fitSized<3>(n);
    default: return fitSized<4>(n);
    }
}

template <typename Ti, typename Tc>
template <std::int32_t SAMPLE_SIZE>
bool EngineParts<Ti, Tc>::fitSized(std::int32_t n)
{
    constexpr std::int32_t COL_NUM = 2 * SAMPLE_SIZE + 1;
    estTForm<Ti, Tc>& engine = mEngine;
    const PointLayout layoutNorm = PointLayout::of(mIsInRows, n);
    Normalization<Tc> norm;
    normPts(engine.pts1, mLayout, engine.sampleIdx, n, engine.ptsNorm1, layoutNorm, &norm.scale1, norm.cents1);
    normPts(engine.pts2, mLayout, engine.sampleIdx, n, engine.ptsNorm2, layoutNorm, &norm.scale2, norm.cents2);

    Tc h[COL_NUM];
    if (n == SAMPLE_SIZE) {
        Tc constraint[2 * SAMPLE_SIZE * COL_NUM];
        makeConstraintMatrix(engine.ptsNorm1, engine.ptsNorm2, layoutNorm, FixedSize<SAMPLE_SIZE>{}, n, constraint);
        solveMinimalSet<SAMPLE_SIZE>(*engine.qrCache, constraint, h);
    } else {
        makeConstraintMatrix(engine.ptsNorm1, engine.ptsNorm2, layoutNorm, FixedSize<SAMPLE_SIZE>{}, n, engine.factor);
        const LeastSquaresWork<Tc> arrays = {engine.constraint, engine.factor, engine.ptsNorm1, engine.ptsNorm2};
        if (!solveLargerSet<SAMPLE_SIZE>(n, arrays, h)) return false;
    }
    denormalizeTForm<SAMPLE_SIZE>(h, norm, engine.tformCompact);
    return scaleToLastOne<COL_NUM>(engine.tformCompact);
}

template <typename Ti, typename Tc>
Tc EngineParts<Ti, Tc>::computeDistances()
{
    switch (mEngine.sampleSize) {
    case 2: return computeDistancesSized<2>();
    case 3: return computeDistancesSized<3>();
    default: return computeDistancesSized<4>();
    }
}

template <typename Ti, typename Tc>
template <std::int32_t SAMPLE_SIZE>
Tc EngineParts<Ti, Tc>::computeDistancesSized()
{
    constexpr std::int32_t COL_NUM = 2 * SAMPLE_SIZE + 1;
    const estTForm<Ti, Tc>& engine = mEngine;
    if (!engine.isDisThrMethod) {
        ::computeDistances<COL_NUM>(engine.constraintAll, engine.ptsNum, engine.tformCompact, engine.distance);
        return Tc(0);
    }
    // The first candidate of a phase is accepted whatever its score; a refit leaves the distances of all pairs.
    const bool canGiveUp = engine.mIsRandomSamplingStep && engine.loopCount != 1 && engine.disThr >= Tc(0);
    const Tc limit = canGiveUp ? engine.bestInlierDis : std::numeric_limits<Tc>::infinity();
    return scoreDistances<COL_NUM>(engine.constraintAll, engine.ptsNum, engine.tformCompact, engine.disThr, limit,
                                   engine.distance);
}

template <typename Ti, typename Tc>
void EngineParts<Ti, Tc>::writeTForm(const Tc* compact)
{
    ::writeTForm(mEngine.sampleSize, mIsInRows, compact, mEngine.tform);
}

#define SZELESTTFORM_DEFINE_ENGINE(Ti, Tc)                                                                             \
    template class EngineParts<Ti, Tc>;                                                                                \
    template class estTForm<Ti, Tc>;
SZELESTTFORM_ENGINES(SZELESTTFORM_DEFINE_ENGINE)
#undef SZELESTTFORM_DEFINE_ENGINE
